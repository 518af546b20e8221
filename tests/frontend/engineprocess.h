#pragma once
// Runs the real engine binary on a given standard input and captures what it
// writes, for transcript tests that compare the output byte for byte.

#include <string>

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

}  // namespace testing_support
