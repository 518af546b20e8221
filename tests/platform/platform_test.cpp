// The POSIX layer: tick, sleep, thread start with a stack size, the lock,
// and the program's own directory.

#include <gtest/gtest.h>

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <cstring>

#include "frontend/engine.h"
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
    testing_support::EngineSession engine;
    ASSERT_TRUE(engine.running());
    engine.send("new\nping 1\n");
    ASSERT_TRUE(engine.waitForPrefix("pong 1", 20000));  // start-up done: the signal lands in the command loop
    kill(engine.pid(), SIGINT);
    platform::sleepMs(100);
    engine.send("ping 7\n");
    EXPECT_TRUE(engine.waitForPrefix("pong 7", 20000));
    EXPECT_EQ(engine.finish(20000), 0);
}
