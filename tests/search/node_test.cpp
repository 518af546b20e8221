// The search node on hand-made positions: mate distances seen from both
// colours, the draws and repetitions it scores itself, the table rule after
// a double step, and the abort. Its pruning and ordering move the bench
// signature when they change.

#include <gtest/gtest.h>

#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <string>

#include "board/movetext.h"
#include "eval/pawnhash.h"
#include "eval/setup.h"
#include "position/make.h"
#include "search/hashtable.h"
#include "search/lines.h"
#include "search/ordering.h"
#include "search/search.h"
#include "search/think.h"
#include "support/roots.h"

namespace {

using namespace board;
using namespace search;
using position::NodeState;
using position::SearchBoard;
using position::searchBoard;

Move moveOf(const char* from, const char* to) { return makeMove(squareOf(from), squareOf(to)); }

class SearchNodeTest : public testing::Test {
protected:
    static void SetUpTestSuite() { setHashSize(std::int64_t(4) << 20); }

    // Every test starts from empty learned tables, so node counts repeat.
    void SetUp() override {
        clearHash();
        eval::clearPawnHash();
        clearHistory();
        clearKillers();
        clearCounters();
        abortSearch.store(0);
        timeCheckCounter = 0;
        extensionPlyLimit = 4;
    }

    // A full-window root search of `plies` plies, run through the driver's
    // startSearch as one aspiration try; the head's score.
    static int rootSearch(const char* fen, int plies) {
        rootNode(fen);
        copyToRootMoves(game.legalMoves);
        extensionPlyLimit = 2 * plies;
        pvHeads[0]->word = std::uint32_t(withScore(NoMove, -InfiniteScore));
        startSearch(game.sideToMove ^ 1, NoMove, RootNode, plies, -InfiniteScore, InfiniteScore, *game.position);
        return scoreHalf(Move(pvHeads[0]->word));
    }

    static int childOfWhite(const NodeState& root, Move move, int depth, int alpha = -InfiniteScore,
                            int beta = InfiniteScore) {
        return searchBlack(move, CheckLegality, depth, alpha, beta, &root);
    }
};

// Mated at ply p scores p - 32700, so a mate in n moves scores 32701 - 2n at
// the root. The colours reversed give the same; a deeper search no longer.
TEST_F(SearchNodeTest, MatesScoreTheirDistanceForEitherColour) {
    const struct {
        const char* fen;
        const char* mirrored;
        int plies, score;
    } cases[] = {
        {"k7/8/1K6/8/8/8/8/7R w - - 0 1", "7r/8/8/8/8/1k6/8/K7 b - - 0 1", 2, 32699},
        {"k7/8/2K5/8/8/8/8/7R w - - 0 1", "7r/8/8/8/8/2k5/8/K7 b - - 0 1", 4, 32697},
        {"7k/R7/8/8/8/8/8/1R4K1 b - - 0 1", "1r4k1/8/8/8/8/8/r7/7K w - - 0 1", 4, -32698},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(rootSearch(c.fen, c.plies), c.score) << c.fen;
        EXPECT_EQ(rootSearch(c.mirrored, c.plies), c.score) << c.mirrored;
        EXPECT_EQ(rootSearch(c.fen, c.plies + 2), c.score) << c.fen;
    }
    // The line ends with the mating move.
    ASSERT_EQ(rootSearch("k7/8/2K5/8/8/8/8/7R w - - 0 1", 4), 32697);
    std::string line;
    for (const PvNode* n = pvHeads[0]; n != nullptr && n->word != 0; n = n->next) {
        char text[8];
        formatCoordinateMove(moveHalf(Move(n->word)), text);
        line += std::string(line.empty() ? "" : " ") + text;
    }
    EXPECT_TRUE(line == "c6b6 a8b8 h1h8" || line == "c6c7 a8a7 h1a1") << line;
}

// Mate, illegality (a move onto the king is refused before any make),
// stalemate and dead material, with the board as it was afterwards.
TEST_F(SearchNodeTest, MateIllegalStalemateAndDeadMaterial) {
    NodeState root = rootNode("k7/8/1K6/8/8/8/8/7R w - - 0 1");
    EXPECT_EQ(childOfWhite(root, moveOf("h1", "h8"), 2 * OnePly), 1 - MateBase);
    EXPECT_EQ(childOfWhite(root, moveOf("b6", "b7"), 2 * OnePly), IllegalScore);
    const SearchBoard before = searchBoard;
    EXPECT_EQ(searchWhite(moveOf("a8", "b6"), 0, 0, -InfiniteScore, InfiniteScore, &root), IllegalScore);
    EXPECT_EQ(std::memcmp(&before, &searchBoard, sizeof before), 0);

    root = rootNode("7k/8/8/6Q1/8/8/8/K7 w - - 0 1");
    EXPECT_EQ(childOfWhite(root, moveOf("g5", "g6"), 2 * OnePly), 0);
    EXPECT_NE(childOfWhite(root, moveOf("g5", "f6"), 2 * OnePly), 0);
    root = rootNode("7k/8/8/8/8/8/1r6/K2N4 w - - 0 1");
    EXPECT_EQ(childOfWhite(root, moveOf("d1", "b2") | CaptureMark, 4 * OnePly), 0);

    const struct {
        const char* fen;
        int drawn;
    } material[] = {
        {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", 1},     {"4kn2/8/8/8/8/8/8/4K3 w - - 0 1", 1},
        {"2b1k3/8/8/8/8/8/8/4KB2 w - - 0 1", 1},  {"2b1k3/8/8/8/8/8/8/2B1K3 w - - 0 1", 0},
        {"4k3/8/8/8/8/8/8/1NN1K3 w - - 0 1", 0},  {"4k3/p7/8/8/8/8/8/4K3 w - - 0 1", 0},
    };
    for (const auto& c : material) EXPECT_EQ(isMaterialDraw(rootNode(c.fen)), c.drawn) << c.fen;
}

// Repetitions by where the earlier occurrences lie. The game's moves are
// played, then historyTop is lowered so that the last of them lie "inside
// the search" of the node under test.
class SearchRepetitionTest : public SearchNodeTest {
protected:
    static NodeState play(const char* fen, std::initializer_list<const char*> moves, int pliesInTree) {
        EXPECT_EQ(setupFromFen(game, fen), 0);
        for (const char* m : moves) EXPECT_GE(playMove(m), 0) << m;
        Position& root = *game.position;
        computeKeys(root);
        eval::setupEvaluation(root);
        root.ply = 0;
        NodeState node;
        position::buildNodeState(node, root);
        node.ply = pliesInTree;
        game.historyTop -= pliesInTree;
        return node;
    }
    void TearDown() override { setupFromFen(game, "4k3/8/8/8/8/8/8/4K3 w - - 0 1"); }
};

constexpr const char* Knights = "4k1n1/4p3/8/8/8/8/4P3/4K1N1 w - - 0 1";

TEST_F(SearchRepetitionTest, OneEarlierOccurrenceCountsOnlyInsideTheTree) {
    // After six plies Ng1 recreates the position after ply 3: a draw (2) if
    // those plies belong to the tree, nothing if they were played.
    const auto dance = {"g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6"};
    NodeState played = play(Knights, dance, 0);
    played.ply = 1;
    const int captured = position::makeMoveOf<White>(played, moveOf("f3", "g1"));
    EXPECT_EQ(countRepetitions(1, played), 0);
    position::unmakeMoveOf<White>(moveOf("f3", "g1"), captured);
    EXPECT_EQ(childOfWhite(play(Knights, dance, 4), moveOf("f3", "g1"), 2 * OnePly), 2);
    // Two earlier occurrences are a threefold (1) anywhere.
    EXPECT_EQ(childOfWhite(play(Knights, {"g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6", "f3g1", "f6g8", "g1f3",
                                          "g8f6"}, 0),
                           moveOf("f3", "g1"), 2 * OnePly),
              1);
}

// Four plies after a pawn move the position after it recurs: the pawn
// move's own entry is the earlier occurrence, and the walk must read it
// before it stops at the irreversible move.
TEST_F(SearchRepetitionTest, RepetitionExactlyFourPliesAfterAnIrreversibleMove) {
    const NodeState node = play(Knights, {"e2e3", "g8f6", "g1f3", "f6g8"}, 3);
    EXPECT_EQ(childOfWhite(node, moveOf("f3", "g1"), 2 * OnePly), 2);
}

// The abort leaves through abortJump from inside the recursion, before
// anything is made.
TEST_F(SearchNodeTest, TheAbortJumpsOutOfTheRecursion) {
    const NodeState root = rootNode("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1");
    nodeCount.store(0);
    volatile int jumped = 0;
    if (setjmp(abortJump) == 0) {
        abortSearch.store(1);
        childOfWhite(root, moveOf("e2", "a6") | CaptureMark, 4 * OnePly);
    } else {
        jumped = 1;
    }
    abortSearch.store(0);
    EXPECT_EQ(jumped, 1);
    EXPECT_EQ(nodeCount.load(), 0u) << "the stop is tested before anything is made";
}

}  // namespace
