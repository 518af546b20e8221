#include "frontend/enginesession.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace testing_support {

long long nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Standard error goes to an unlinked file, which can't fill up and block the
// engine the way an unread pipe would.
EngineSession::EngineSession() {
    signal(SIGPIPE, SIG_IGN);  // an engine that died makes a write fail, not the test
    int in[2], out[2];
    if (pipe(in) != 0) return;
    if (pipe(out) != 0) {
        close(in[0]);
        close(in[1]);
        return;
    }
    char name[] = "/tmp/morvane-session-XXXXXX";
    errorFile_ = mkstemp(name);
    if (errorFile_ >= 0) unlink(name);
    child_ = fork();
    if (child_ == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        if (errorFile_ >= 0) dup2(errorFile_, STDERR_FILENO);
        close(in[0]);
        close(in[1]);
        close(out[0]);
        close(out[1]);
        execl(MORVANE_BIN_DIR "/morvane", "morvane", static_cast<char*>(nullptr));
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
    if (toEngine_ < 0) return;
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(toEngine_, text.data() + done, text.size() - done);
        if (n <= 0) return;
        done += std::size_t(n);
    }
}

bool EngineSession::readSome(int ms) {
    if (outputEnded_ || fromEngine_ < 0) return false;
    pollfd p{fromEngine_, POLLIN, 0};
    if (poll(&p, 1, ms) <= 0) return true;
    char chunk[4096];
    for (;;) {
        const ssize_t n = read(fromEngine_, chunk, sizeof chunk);
        if (n == 0) {
            outputEnded_ = true;
            if (!partial_.empty()) lines_.push_back(partial_);
            partial_.clear();
            return false;
        }
        if (n < 0) return true;
        for (ssize_t i = 0; i < n; ++i) {
            if (chunk[i] == '\n') {
                lines_.push_back(partial_);
                partial_.clear();
            } else {
                partial_ += chunk[i];
            }
        }
    }
}

std::string EngineSession::waitFor(const std::function<bool(const std::string&)>& accept, int timeoutMs,
                                   bool* found) {
    const long long deadline = nowMs() + timeoutMs;
    std::size_t looked = consumed_;
    for (;;) {
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

std::vector<std::string> EngineSession::takeRest() {
    std::vector<std::string> rest(lines_.begin() + long(consumed_), lines_.end());
    consumed_ = lines_.size();
    return rest;
}

void EngineSession::drain(int ms) {
    const long long deadline = nowMs() + ms;
    while (nowMs() < deadline && readSome(int(deadline - nowMs()))) {
    }
}

int EngineSession::finish(int timeoutMs) {
    if (toEngine_ >= 0) {
        close(toEngine_);
        toEngine_ = -1;
    }
    if (child_ <= 0) return -1;
    const long long deadline = nowMs() + timeoutMs;
    int status = 0;
    int code = -1;
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
    lseek(errorFile_, 0, SEEK_SET);
    char chunk[4096];
    for (;;) {
        const ssize_t n = read(errorFile_, chunk, sizeof chunk);
        if (n <= 0) break;
        text.append(chunk, std::size_t(n));
    }
    return text;
}

}  // namespace testing_support
