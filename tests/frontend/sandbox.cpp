#include "frontend/sandbox.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace testing_support {

EngineSandbox::EngineSandbox() {
    char pattern[] = "/tmp/morvane-sandbox-XXXXXX";
    if (mkdtemp(pattern) == nullptr) return;
    directory_ = pattern;
    std::error_code error;
    std::filesystem::copy_file(MORVANE_BIN_DIR "/morvane", programPath(), error);
    chmod(programPath().c_str(), 0755);
}

EngineSandbox::~EngineSandbox() {
    if (directory_.empty()) return;
    std::error_code error;
    std::filesystem::remove_all(directory_, error);
}

void EngineSandbox::writeConfig(const std::string& text) const {
    std::ofstream(directory_ + "/morvane.cfg", std::ios::binary) << text;
}

std::string EngineSandbox::readFile(const std::string& name) const {
    std::ifstream file(directory_ + "/" + name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

EngineRun EngineSandbox::run(const std::string& input, const std::vector<std::string>& arguments,
                             int timeoutMs) const {
    return runProgram(programPath(), arguments, input, timeoutMs);
}

}  // namespace testing_support
