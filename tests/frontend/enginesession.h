#pragma once
// A conversation with the real engine binary over pipes: commands go in as
// the test decides, and the test waits for the replies it expects, so that
// commands can arrive while a think runs. Every wait has a deadline, so a
// hang fails the test instead of stalling the suite.

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace testing_support {

class EngineSession {
public:
    EngineSession();
    ~EngineSession();
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;

    bool running() const { return child_ > 0; }

    // Writes `text` as it is; a command needs its own line feed.
    void send(const std::string& text);

    // Reads until a line that `accept` takes has arrived behind the lines
    // already consumed, and consumes up to and including it. Result: that
    // line, or nothing on timeout or end of output (`found` says which).
    std::string waitFor(const std::function<bool(const std::string&)>& accept, int timeoutMs, bool* found = nullptr);
    // The same for a line that opens with `prefix`.
    bool waitForPrefix(const std::string& prefix, int timeoutMs, std::string* line = nullptr);

    // Lines consumed by the waits and those still unconsumed, in order.
    const std::vector<std::string>& lines() const { return lines_; }
    std::size_t consumed() const { return consumed_; }
    // The unconsumed lines, which are then consumed.
    std::vector<std::string> takeRest();
    // Reads whatever arrives within `ms`.
    void drain(int ms);

    // Closes standard input and waits for the exit; kills the engine after
    // `timeoutMs`. Result: the exit code, or -1 if it was killed or crashed.
    int finish(int timeoutMs);
    // Standard error, once finished.
    std::string errorText() const;

private:
    // Reads what is available within `ms`; false at the end of output.
    bool readSome(int ms);

    pid_t child_ = -1;
    int toEngine_ = -1;
    int fromEngine_ = -1;
    int errorFile_ = -1;
    bool outputEnded_ = false;
    std::string partial_;
    std::vector<std::string> lines_;
    std::size_t consumed_ = 0;
};

// Milliseconds of a steady clock, for deadlines and generous timing checks.
long long nowMs();

}  // namespace testing_support
