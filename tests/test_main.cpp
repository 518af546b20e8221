// Test entry: every test sees the tables and the global game built once.
#include <gtest/gtest.h>

#include "board/game.h"

int main(int argc, char** argv) {
    board::initGame();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
