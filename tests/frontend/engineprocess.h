#pragma once
// Runs the real engine binary on a given standard input and captures what it
// writes, for transcript tests that compare the output byte for byte.

#include <string>
#include <vector>

namespace testing_support {

struct EngineRun {
    std::string out;   // standard output
    std::string err;   // standard error
    int exitCode = -1; // -1 if killed or not started
    bool timedOut = false;
};

// Feeds `input` as the whole of standard input. A run that outlives
// `timeoutMs` is killed and marked timed out, so a hang fails a test rather
// than stalling the suite.
EngineRun runEngine(const std::string& input, int timeoutMs = 20000);

// The same for any program file, with its arguments behind the program name.
// Start-up tests run a copy of the engine in a directory of their own, since
// the configuration file lies beside the executable.
EngineRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                     const std::string& input, int timeoutMs = 20000);

}  // namespace testing_support
