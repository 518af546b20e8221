// The POSIX layer: tick, sleep, thread start with a stack size, the lock,
// and the program's own directory.

#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <string>

#include "platform/clock.h"
#include "platform/fatal.h"
#include "platform/path.h"
#include "platform/thread.h"

namespace {

TEST(Platform, SleepAdvancesTheTick) {
    const std::uint32_t before = platform::tickCount();
    platform::sleepMs(30);
    const std::uint32_t elapsed = platform::tickCount() - before;
    EXPECT_GE(elapsed, 30u);
    EXPECT_LT(elapsed, 2000u);
}

TEST(Platform, LocalDateIsPlausible) {
    platform::LocalDate date;
    ASSERT_TRUE(platform::localDate(date));
    EXPECT_GE(date.year, 2020);
    EXPECT_GE(date.month, 1);
    EXPECT_LE(date.month, 12);
    EXPECT_GE(date.day, 1);
    EXPECT_LE(date.day, 31);
}

struct ThreadProbe {
    std::atomic<int> done{0};
    std::size_t stackSize = 0;
};

void probeBody(void* argument) {
    auto* probe = static_cast<ThreadProbe*>(argument);
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        pthread_attr_getstacksize(&attributes, &probe->stackSize);
        pthread_attr_destroy(&attributes);
    }
    probe->done.store(1);
}

// A think asks for 128 KB; the thread gets at least that, and never less
// than the system's minimum even when asked for less.
TEST(Platform, DetachedThreadRunsWithTheStackAskedFor) {
    for (std::size_t asked : {std::size_t(131072), std::size_t(1)}) {
        ThreadProbe probe;
        ASSERT_TRUE(platform::startDetachedThread(probeBody, &probe, asked));
        for (int i = 0; i < 500 && !probe.done.load(); ++i) platform::sleepMs(2);
        ASSERT_EQ(probe.done.load(), 1);
        EXPECT_GE(probe.stackSize, asked);
        EXPECT_GE(probe.stackSize, static_cast<std::size_t>(PTHREAD_STACK_MIN));
        EXPECT_GE(platform::effectiveStackSize(asked), asked);
    }
}

TEST(Platform, CriticalSectionExcludesTheOtherThread) {
    struct Shared {
        platform::CriticalSection section;
        long counter = 0;
        std::atomic<int> finished{0};
    } shared;
    auto body = [](void* argument) {
        auto* s = static_cast<Shared*>(argument);
        for (int i = 0; i < 100000; ++i) {
            platform::SectionGuard guard(s->section);
            ++s->counter;
        }
        s->finished.fetch_add(1);
    };
    ASSERT_TRUE(platform::startDetachedThread(body, &shared, 131072));
    ASSERT_TRUE(platform::startDetachedThread(body, &shared, 131072));
    for (int i = 0; i < 2500 && shared.finished.load() < 2; ++i) platform::sleepMs(2);
    ASSERT_EQ(shared.finished.load(), 2);
    EXPECT_EQ(shared.counter, 200000);
}

TEST(Platform, ProgramDirectoryEndsInTheSeparator) {
    char path[4096], directory[4096];
    ASSERT_GT(platform::programPath(path, sizeof path), 0u);
    const std::size_t length = platform::programDirectoryOf(directory, sizeof directory);
    ASSERT_GT(length, 0u);
    EXPECT_EQ(directory[length - 1], platform::PathSeparator);
    EXPECT_EQ(std::strncmp(path, directory, length), 0);
    EXPECT_EQ(std::strchr(path + length, platform::PathSeparator), nullptr);
    // Too small a buffer gives nothing rather than a cut path.
    char tiny[4];
    EXPECT_EQ(platform::programPath(tiny, sizeof tiny), 0u);
    EXPECT_EQ(tiny[0], '\0');
}

// The line goes to standard output, which a death test doesn't see; the
// exit code is what a caller acts on.
TEST(PlatformDeathTest, FatalExitsWithCodeOne) {
    EXPECT_EXIT(platform::fatal("no memory for %d tables", 2), ::testing::ExitedWithCode(1), "");
}

}  // namespace

// xboard sends SIGINT to the engine during every game; the engine must
// survive it and keep answering.
TEST(Signals, EngineSurvivesAnInterrupt) {
    int toEngine[2], fromEngine[2];
    ASSERT_EQ(pipe(toEngine), 0);
    ASSERT_EQ(pipe(fromEngine), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGINT, SIG_DFL);  // as an interface starts it
        dup2(toEngine[0], 0);
        dup2(fromEngine[1], 1);
        close(toEngine[1]);
        close(fromEngine[0]);
        const std::string engine = std::string(MORVANE_BIN_DIR) + "/morvane";
        execl(engine.c_str(), engine.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(toEngine[0]);
    close(fromEngine[1]);
    ASSERT_EQ(write(toEngine[1], "new\n", 4), 4);
    usleep(300000);  // start-up done, the signal lands in the command loop
    kill(child, SIGINT);
    usleep(100000);
    ASSERT_EQ(write(toEngine[1], "ping 7\nquit\n", 12), 12);
    close(toEngine[1]);
    std::string out;
    char buffer[256];
    for (ssize_t n; (n = read(fromEngine[0], buffer, sizeof buffer)) > 0;) out.append(buffer, std::size_t(n));
    close(fromEngine[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_FALSE(WIFSIGNALED(status));
    EXPECT_NE(out.find("pong 7"), std::string::npos);
}
