#pragma once
// The processes a match starts: the virtual X server, one xboard per game in
// a process group of its own (its engines inherit it), and the thin wrapper
// that runs each engine and records how it ended. Only these are ever
// signalled: the server by its pid, a game by its group.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

extern char** environ;

namespace matchsupport {

// Debian puts games, and so xboard, its engines and polyglot, in /usr/games,
// which a root shell's PATH often lacks.
constexpr const char* GamesDirectory = "/usr/games";

inline std::string searchPath() {
    const char* path = std::getenv("PATH");
    std::string value = path ? path : "/usr/local/bin:/usr/bin:/bin";
    if ((":" + value + ":").find(std::string(":") + GamesDirectory + ":") == std::string::npos)
        value += std::string(":") + GamesDirectory;
    return value;
}

inline bool isExecutableFile(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

// The full path of a program named as a shell would find it, or "".
inline std::string findProgram(const std::string& name) {
    if (name.empty()) return "";
    if (name.find('/') != std::string::npos) return isExecutableFile(name) ? name : "";
    std::string path = searchPath();
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find(':', start);
        if (end == std::string::npos) end = path.size();
        std::string candidate = path.substr(start, end - start) + "/" + name;
        if (end > start && isExecutableFile(candidate)) return candidate;
        start = end + 1;
    }
    return "";
}

// Quotes a word for /bin/sh.
inline std::string shellQuote(const std::string& word) {
    std::string quoted = "'";
    for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

inline double monotonicSeconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

inline void sleepSeconds(double seconds) {
    timespec pause{static_cast<time_t>(seconds), static_cast<long>((seconds - static_cast<time_t>(seconds)) * 1e9)};
    nanosleep(&pause, nullptr);
}

// Set by the runner's SIGINT/SIGTERM handler: stop the match, clean up.
inline volatile sig_atomic_t stopRequested = 0;

struct VirtualDisplay {
    pid_t pid = -1;
    int number = -1;
};

// Starts Xvfb and lets it pick a free display number itself (-displayfd),
// which avoids racing other servers for a number. Its chatter goes to
// `logFile`.
inline bool startVirtualDisplay(const std::string& xvfb, const std::string& logFile, VirtualDisplay& display,
                                std::string& error) {
    int channel[2];
    if (pipe(channel) != 0) {
        error = "pipe failed";
        return false;
    }
    pid_t pid = fork();
    if (pid < 0) {
        error = "fork failed";
        return false;
    }
    if (pid == 0) {
        setpgid(0, 0);
        close(channel[0]);
        int out = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int in = open("/dev/null", O_RDONLY);
        if (out >= 0) dup2(out, 1), dup2(out, 2);
        if (in >= 0) dup2(in, 0);
        std::string fd = std::to_string(channel[1]);
        execl(xvfb.c_str(), xvfb.c_str(), "-displayfd", fd.c_str(), "-screen", "0", "1280x1024x24", "-nolisten",
              "tcp", static_cast<char*>(nullptr));
        _exit(127);
    }
    setpgid(pid, pid);
    close(channel[1]);
    std::string number;
    double deadline = monotonicSeconds() + 15;
    while (number.find('\n') == std::string::npos && monotonicSeconds() < deadline) {
        pollfd ready{channel[0], POLLIN, 0};
        if (poll(&ready, 1, 200) <= 0) continue;
        char buffer[32];
        ssize_t n = read(channel[0], buffer, sizeof buffer);
        if (n <= 0) break;
        number.append(buffer, n);
    }
    close(channel[0]);
    if (number.find('\n') == std::string::npos) {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        error = "Xvfb did not start (see " + logFile + ")";
        return false;
    }
    display.pid = pid;
    display.number = std::atoi(number.c_str());
    return true;
}

inline void stopVirtualDisplay(VirtualDisplay& display) {
    if (display.pid <= 0) return;
    kill(display.pid, SIGTERM);
    double deadline = monotonicSeconds() + 5;
    while (waitpid(display.pid, nullptr, WNOHANG) == 0) {
        if (monotonicSeconds() > deadline) {
            kill(display.pid, SIGKILL);
            waitpid(display.pid, nullptr, 0);
            break;
        }
        sleepSeconds(0.05);
    }
    display.pid = -1;
}

// Starts `argv` as the leader of a new process group, in `directory`, with
// `environment`, its output in `outputFile` and no input.
inline pid_t spawnGroupLeader(const std::vector<std::string>& argv, const std::vector<std::string>& environment,
                              const std::string& directory, const std::string& outputFile) {
    std::vector<char*> args, env;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    for (const std::string& e : environment) env.push_back(const_cast<char*>(e.c_str()));
    env.push_back(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        signal(SIGINT, SIG_DFL);
        signal(SIGTERM, SIG_DFL);
        int out = open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int in = open("/dev/null", O_RDONLY);
        if (out >= 0) dup2(out, 1), dup2(out, 2);
        if (in >= 0) dup2(in, 0);
        if (chdir(directory.c_str()) != 0) _exit(126);
        execve(args[0], args.data(), env.data());
        _exit(127);
    }
    if (pid > 0) setpgid(pid, pid);
    return pid;
}

// Ends a process group: a polite SIGTERM, then SIGKILL for whatever is left.
inline void killGroup(pid_t group) {
    if (group <= 0 || kill(-group, 0) != 0) return;
    kill(-group, SIGTERM);
    double deadline = monotonicSeconds() + 2;
    while (kill(-group, 0) == 0 && monotonicSeconds() < deadline) {
        while (waitpid(group, nullptr, WNOHANG) > 0) {}
        sleepSeconds(0.05);
    }
    kill(-group, SIGKILL);
}

enum class WaitOutcome { Exited, TimedOut, Stopped };

// Waits for the group leader to end, at most `seconds`, or until the user
// stops the match. On a time-out or stop the whole group is killed.
inline WaitOutcome waitWithWatchdog(pid_t leader, double seconds, int& status) {
    double deadline = monotonicSeconds() + seconds;
    for (;;) {
        pid_t done = waitpid(leader, &status, WNOHANG);
        if (done == leader || (done < 0 && errno != EINTR)) return WaitOutcome::Exited;
        if (stopRequested || monotonicSeconds() > deadline) {
            killGroup(leader);
            waitpid(leader, &status, 0);
            return stopRequested ? WaitOutcome::Stopped : WaitOutcome::TimedOut;
        }
        sleepSeconds(0.1);
    }
}

// ---- engine wrapper ----

inline volatile sig_atomic_t wrappedEngine = 0;

// The interface signals the wrapper's pid; the engine is the one meant.
extern "C" inline void forwardToEngine(int sig) {
    if (wrappedEngine > 0) kill(wrappedEngine, sig);
}

// True when a line of the interface's input is the "quit" command.
inline bool isQuitLine(const std::string& line) {
    std::size_t first = line.find_first_not_of(" \t\r");
    std::size_t last = line.find_last_not_of(" \t\r");
    return first != std::string::npos && line.compare(first, last - first + 1, "quit") == 0;
}

// Runs `command` through /bin/sh as the engine, relaying the interface's
// input to it and watching it for "quit", and writes one ExitRecord line to
// `statusFile` when the engine ends. Output isn't touched: the engine writes
// straight to the interface. Returns the engine's exit code.
inline int runEngineWrapper(const char* statusFile, const char* command) {
    int toEngine[2];
    if (pipe(toEngine) != 0) return 127;
    std::string script = std::string("exec ") + command;
    pid_t child = fork();
    if (child < 0) return 127;
    if (child == 0) {
        dup2(toEngine[0], 0);
        close(toEngine[0]);
        close(toEngine[1]);
        execl("/bin/sh", "sh", "-c", script.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(toEngine[0]);
    wrappedEngine = child;
    struct sigaction forward {};
    forward.sa_handler = forwardToEngine;
    forward.sa_flags = SA_RESTART;
    sigemptyset(&forward.sa_mask);
    for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaction(sig, &forward, nullptr);
    signal(SIGPIPE, SIG_IGN);

    bool sawQuit = false;
    bool inputOpen = true;
    std::string line;
    int status = 0;
    for (;;) {
        pid_t done = waitpid(child, &status, inputOpen ? WNOHANG : 0);
        if (done == child) break;
        if (done < 0 && errno != EINTR) break;
        if (!inputOpen) continue;
        pollfd ready{0, POLLIN, 0};
        if (poll(&ready, 1, 50) <= 0) continue;
        char buffer[4096];
        ssize_t n = read(0, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            close(toEngine[1]);
            inputOpen = false;
            continue;
        }
        for (ssize_t i = 0; i < n; i++) {
            if (buffer[i] != '\n') {
                line += buffer[i];
                continue;
            }
            if (isQuitLine(line)) sawQuit = true;
            line.clear();
        }
        // A dead engine makes the write fail; its exit is seen next round.
        for (ssize_t sent = 0; sent < n;) {
            ssize_t w = write(toEngine[1], buffer + sent, n - sent);
            if (w < 0 && errno == EINTR) continue;
            if (w <= 0) break;
            sent += w;
        }
    }
    int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    int sig = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    if (FILE* out = std::fopen(statusFile, "a")) {
        std::fprintf(out, "quit=%d code=%d signal=%d\n", sawQuit ? 1 : 0, code, sig);
        std::fclose(out);
    }
    return sig != 0 ? 128 + sig : code;
}

}  // namespace matchsupport
