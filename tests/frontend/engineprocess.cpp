#include "frontend/engineprocess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
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

std::string readAll(int fd) {
    std::string text;
    lseek(fd, 0, SEEK_SET);
    char chunk[65536];
    for (;;) {
        const ssize_t n = read(fd, chunk, sizeof chunk);
        if (n <= 0) break;
        text.append(chunk, static_cast<std::size_t>(n));
    }
    return text;
}

bool writeAll(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

EngineRun runEngine(const std::string& input, int timeoutMs) {
    return runProgram(MORVANE_BIN_DIR "/morvane", {}, input, timeoutMs);
}

EngineRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                     const std::string& input, int timeoutMs) {
    EngineRun run;
    // Built before the fork: the child only execs.
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const int in = anonymousFile(), out = anonymousFile(), err = anonymousFile();
    if (in < 0 || out < 0 || err < 0 || !writeAll(in, input)) return run;
    lseek(in, 0, SEEK_SET);

    const pid_t child = fork();
    if (child == 0) {
        dup2(in, STDIN_FILENO);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    if (child > 0) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        int status = 0;
        for (;;) {
            const pid_t done = waitpid(child, &status, WNOHANG);
            if (done == child) {
                if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
                break;
            }
            if (done < 0) break;
            if (std::chrono::steady_clock::now() > deadline) {
                kill(child, SIGKILL);
                waitpid(child, &status, 0);
                run.timedOut = true;
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        run.out = readAll(out);
        run.err = readAll(err);
    }
    close(in);
    close(out);
    close(err);
    return run;
}

}  // namespace testing_support
