#pragma once
// A private copy of the engine in a fresh temporary directory, so that a test
// controls the configuration file and the log that lie beside the program.

#include <string>
#include <vector>

#include "frontend/engineprocess.h"

namespace testing_support {

class EngineSandbox {
public:
    EngineSandbox();   // copies the built engine into a new directory
    ~EngineSandbox();  // removes the directory and all in it
    EngineSandbox(const EngineSandbox&) = delete;
    EngineSandbox& operator=(const EngineSandbox&) = delete;

    // The directory, without a closing '/'; empty if it couldn't be made.
    const std::string& directory() const { return directory_; }
    std::string programPath() const { return directory_ + "/morvane"; }

    // Writes morvane.cfg beside the copy.
    void writeConfig(const std::string& text) const;
    // Text of a file in the directory, empty if there is none.
    std::string readFile(const std::string& name) const;

    EngineRun run(const std::string& input, const std::vector<std::string>& arguments = {},
                  int timeoutMs = 20000) const;

private:
    std::string directory_;
};

}  // namespace testing_support
