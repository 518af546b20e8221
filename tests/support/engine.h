#pragma once
// The real engine binary under test, over pipes. A transcript feeds a whole
// standard input and compares the output; a session sends commands as it
// goes and waits for replies, so that they can arrive during a think. Every
// wait has a deadline, so a hang fails a test instead of stalling the suite.
// Standard error goes to an unlinked file, which can't fill up and block the
// engine the way an unread pipe would.

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace testing_support {

class EngineSession {
public:
    // `program` defaults to the built engine. With `input`, standard input is
    // that text and nothing can be sent; without it, a pipe for send().
    explicit EngineSession(const std::string& program = {}, const std::vector<std::string>& arguments = {},
                           const std::string* input = nullptr);
    ~EngineSession();
    EngineSession(const EngineSession&) = delete;
    EngineSession& operator=(const EngineSession&) = delete;

    bool running() const { return child_ > 0; }
    pid_t pid() const { return child_; }
    // Writes `text` as it is; a command needs its own line feed.
    void send(const std::string& text);
    // Reads until a line that `accept` takes arrives behind the lines already
    // consumed, and consumes up to it. The line, or "" on timeout or end of
    // output (`found` says which).
    std::string waitFor(const std::function<bool(const std::string&)>& accept, int timeoutMs, bool* found = nullptr);
    bool waitForPrefix(const std::string& prefix, int timeoutMs, std::string* line = nullptr);
    const std::vector<std::string>& lines() const { return lines_; }
    std::size_t consumed() const { return consumed_; }
    // Reads whatever arrives within `ms`.
    void drain(int ms);
    // Closes standard input and waits for the exit, killing the engine after
    // `timeoutMs`. The exit code, or -1 if it was killed or crashed.
    int finish(int timeoutMs);
    bool timedOut() const { return timedOut_; }
    const std::string& outputText() const { return output_; }
    std::string errorText() const;

private:
    bool readSome(int ms);  // false at the end of output

    pid_t child_ = -1;
    int toEngine_ = -1, fromEngine_ = -1, errorFile_ = -1;
    bool outputEnded_ = false, timedOut_ = false;
    std::string output_;
    std::size_t lineStart_ = 0, consumed_ = 0;
    std::vector<std::string> lines_;
};

struct EngineRun {
    std::string out, err;
    int exitCode = -1;  // -1 if killed or not started
    bool timedOut = false;
};

// One transcript: `input` as the whole of standard input.
EngineRun runEngine(const std::string& input, const std::vector<std::string>& arguments = {},
                    const std::string& program = {}, int timeoutMs = 20000);
// Standard output of one transcript of the built engine that ended with code 0.
std::string transcript(const std::string& input);

// A private copy of the engine in a fresh temporary directory, so that a test
// controls the configuration file and the log beside the program.
class EngineSandbox {
public:
    EngineSandbox();
    ~EngineSandbox();
    EngineSandbox(const EngineSandbox&) = delete;
    EngineSandbox& operator=(const EngineSandbox&) = delete;

    const std::string& directory() const { return directory_; }
    void writeConfig(const std::string& text) const;
    std::string readFile(const std::string& name) const;  // "" if there is none
    EngineRun run(const std::string& input, const std::vector<std::string>& arguments = {}) const {
        return runEngine(input, arguments, directory_ + "/morvane");
    }

private:
    std::string directory_;
};

}  // namespace testing_support
