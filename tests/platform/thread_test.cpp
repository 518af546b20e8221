// Thread start with a stack size and the lock that guards the line buffers.

#include <gtest/gtest.h>

#include <pthread.h>

#include <atomic>

#include "platform/clock.h"
#include "platform/thread.h"

namespace {

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

}  // namespace

// The thread gets at least the stack asked for, never less than the
// system's minimum even when asked for less.
TEST(Thread, DetachedThreadRunsWithTheStackAskedFor) {
    for (std::size_t asked : {std::size_t(131072), std::size_t(1)}) {
        ThreadProbe probe;
        ASSERT_TRUE(platform::startDetachedThread(probeBody, &probe, asked));
        for (int i = 0; i < 500 && !probe.done.load(); ++i) platform::sleepMs(2);
        ASSERT_EQ(probe.done.load(), 1);
        EXPECT_GE(probe.stackSize, asked);
        EXPECT_GE(probe.stackSize, static_cast<std::size_t>(PTHREAD_STACK_MIN));
    }
}

TEST(Thread, CriticalSectionExcludesTheOtherThread) {
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
