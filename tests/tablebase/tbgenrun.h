#pragma once
// Runs the built table generator, as a user would, and keeps what it says.

#include <cstdio>
#include <string>

namespace tbtest {

// Output of `tbgen ARGS` on standard output, its exit status in `status`.
inline std::string runTbgen(const std::string& args, int* status = nullptr) {
    const std::string command = std::string(MORVANE_BIN_DIR) + "/tbgen " + args + " 2>/dev/null";
    std::FILE* pipe = popen(command.c_str(), "r");
    std::string out;
    if (pipe == nullptr) return out;
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) out += buffer;
    const int code = pclose(pipe);
    if (status) *status = code;
    return out;
}

}  // namespace tbtest
