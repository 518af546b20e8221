// The search's generators at their limit. That they list exactly the legal
// moves, with the words the search expects, is perft's and bench's to check.

#include <gtest/gtest.h>

#include "position/movegen.h"
#include "support/roots.h"

namespace {

using namespace board;
using namespace position;

// A list never grows past its room: the generator keeps the first moves.
TEST(Movegen, GeneratorRespectsTheListRoom) {
    const NodeState node = rootNode("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - -");
    Move list[SearchListRoom + 1];
    list[SearchListRoom] = FromToSpecialMask;
    EXPECT_EQ(generateAll<White>(list, 0, 0, 0, node), SearchListRoom - 1);
    EXPECT_EQ(list[SearchListRoom - 1], NoMove);
    EXPECT_EQ(list[SearchListRoom], FromToSpecialMask);
}

}  // namespace
