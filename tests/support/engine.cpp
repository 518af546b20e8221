#include "support/engine.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace testing_support {

namespace {

// An unlinked temporary file: it vanishes with its last descriptor.
int anonymousFile() {
    char name[] = "/tmp/morvane-test-XXXXXX";
    const int fd = mkstemp(name);
    if (fd >= 0) unlink(name);
    return fd;
}

bool writeAll(int fd, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return false;
        done += std::size_t(n);
    }
    return true;
}

long long nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The built engine stands beside the default book, which would answer the
// opening moves of every test. Tests run a copy in a directory of its own,
// one per test process, unless they ask for a program.
const std::string& defaultEngine() {
    static const std::string path = [] {
        static char directory[] = "/tmp/morvane-engine-XXXXXX";
        if (mkdtemp(directory) == nullptr) return std::string(MORVANE_BIN_DIR "/morvane");
        const std::string copy = std::string(directory) + "/morvane";
        std::error_code error;
        std::filesystem::copy_file(MORVANE_BIN_DIR "/morvane", copy, error);
        chmod(copy.c_str(), 0755);
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(directory, ignored);
        });
        return copy;
    }();
    return path;
}

}  // namespace

EngineSession::EngineSession(const std::string& program, const std::vector<std::string>& arguments,
                             const std::string* input) {
    signal(SIGPIPE, SIG_IGN);  // an engine that died makes a write fail, not the test
    const std::string path = program.empty() ? defaultEngine() : program;
    // Built before the fork: the child only execs.
    std::vector<char*> argv{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    int in[2] = {-1, -1}, out[2];
    if (input) {
        in[0] = anonymousFile();
        if (in[0] < 0 || !writeAll(in[0], *input)) return;
        lseek(in[0], 0, SEEK_SET);
    } else if (pipe(in) != 0) {
        return;
    }
    if (pipe(out) != 0) return;
    errorFile_ = anonymousFile();
    child_ = fork();
    if (child_ == 0) {
        signal(SIGINT, SIG_DFL);  // as an interface starts it
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        if (errorFile_ >= 0) dup2(errorFile_, STDERR_FILENO);
        // Our end of its standard input would keep the engine from seeing EOF.
        for (int fd : {in[0], in[1], out[0], out[1]})
            if (fd > STDERR_FILENO) close(fd);
        execv(path.c_str(), argv.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    toEngine_ = in[1];
    fromEngine_ = out[0];
    fcntl(fromEngine_, F_SETFL, fcntl(fromEngine_, F_GETFL) | O_NONBLOCK);
}

EngineSession::~EngineSession() {
    if (child_ > 0) finish(5000);
    if (fromEngine_ >= 0) close(fromEngine_);
    if (errorFile_ >= 0) close(errorFile_);
}

void EngineSession::send(const std::string& text) {
    readSome(0);  // keeps the engine's output pipe from filling while we write
    if (toEngine_ >= 0) writeAll(toEngine_, text);
}

bool EngineSession::readSome(int ms) {
    if (outputEnded_ || fromEngine_ < 0) return false;
    pollfd p{fromEngine_, POLLIN, 0};
    if (poll(&p, 1, ms) <= 0) return true;
    char chunk[65536];
    for (;;) {
        const ssize_t n = read(fromEngine_, chunk, sizeof chunk);
        if (n < 0) return true;
        if (n == 0) outputEnded_ = true;
        output_.append(chunk, std::size_t(n));
        for (std::size_t end; (end = output_.find('\n', lineStart_)) != std::string::npos; lineStart_ = end + 1)
            lines_.push_back(output_.substr(lineStart_, end - lineStart_));
        if (outputEnded_) {
            if (lineStart_ < output_.size()) lines_.push_back(output_.substr(lineStart_));
            return false;
        }
    }
}

std::string EngineSession::waitFor(const std::function<bool(const std::string&)>& accept, int timeoutMs,
                                   bool* found) {
    const long long deadline = nowMs() + timeoutMs;
    for (std::size_t looked = consumed_;;) {
        for (; looked < lines_.size(); ++looked) {
            if (!accept(lines_[looked])) continue;
            consumed_ = looked + 1;
            if (found) *found = true;
            return lines_[looked];
        }
        const long long left = deadline - nowMs();
        if (outputEnded_ || left <= 0) {
            if (found) *found = false;
            return {};
        }
        readSome(int(left < 50 ? left : 50));
    }
}

bool EngineSession::waitForPrefix(const std::string& prefix, int timeoutMs, std::string* line) {
    bool found = false;
    const std::string got =
        waitFor([&](const std::string& l) { return l.compare(0, prefix.size(), prefix) == 0; }, timeoutMs, &found);
    if (line) *line = got;
    return found;
}

void EngineSession::drain(int ms) {
    const long long deadline = nowMs() + ms;
    while (nowMs() < deadline && readSome(int(deadline - nowMs()))) {
    }
}

int EngineSession::finish(int timeoutMs) {
    if (toEngine_ >= 0) close(toEngine_);
    toEngine_ = -1;
    if (child_ <= 0) return -1;
    const long long deadline = nowMs() + timeoutMs;
    int status = 0, code = -1;
    for (;;) {
        readSome(0);
        const pid_t done = waitpid(child_, &status, WNOHANG);
        if (done == child_) {
            if (WIFEXITED(status)) code = WEXITSTATUS(status);
            break;
        }
        if (done < 0) break;
        if (nowMs() > deadline) {
            kill(child_, SIGKILL);
            waitpid(child_, &status, 0);
            timedOut_ = true;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    while (readSome(0)) {
    }
    child_ = -1;
    return code;
}

std::string EngineSession::errorText() const {
    std::string text;
    if (errorFile_ < 0) return text;
    char chunk[65536];
    for (off_t at = 0;;) {
        const ssize_t n = pread(errorFile_, chunk, sizeof chunk, at);
        if (n <= 0) break;
        text.append(chunk, std::size_t(n));
        at += n;
    }
    return text;
}

EngineRun runEngine(const std::string& input, const std::vector<std::string>& arguments, const std::string& program,
                    int timeoutMs) {
    EngineSession engine(program, arguments, &input);
    EngineRun run;
    run.exitCode = engine.finish(timeoutMs);
    run.timedOut = engine.timedOut();
    run.out = engine.outputText();
    run.err = engine.errorText();
    return run;
}

std::string transcript(const std::string& input) {
    const EngineRun run = runEngine(input);
    EXPECT_FALSE(run.timedOut) << "input:\n" << input;
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return run.out;
}

EngineSandbox::EngineSandbox() {
    char pattern[] = "/tmp/morvane-sandbox-XXXXXX";
    if (mkdtemp(pattern) == nullptr) return;
    directory_ = pattern;
    std::error_code error;
    std::filesystem::copy_file(MORVANE_BIN_DIR "/morvane", directory_ + "/morvane", error);
    chmod((directory_ + "/morvane").c_str(), 0755);
}

EngineSandbox::~EngineSandbox() {
    std::error_code error;
    if (!directory_.empty()) std::filesystem::remove_all(directory_, error);
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

}  // namespace testing_support
