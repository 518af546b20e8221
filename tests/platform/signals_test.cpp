// xboard sends SIGINT to the engine during every game; the engine must
// survive it and keep answering.

#include <gtest/gtest.h>

#include <signal.h>

#include "platform/clock.h"
#include "support/engine.h"

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
