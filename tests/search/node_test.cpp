// The search node on hand-made positions: mate distances seen from both
// colours, the draws that the node scores itself, the table rule after a
// double step, the lazy stand-still of quiescence, and the null move's
// absence where a side has only king and pawns.

#include <gtest/gtest.h>

#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <utility>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/keys.h"
#include "board/movetext.h"
#include "eval/setup.h"
#include "eval/pawnhash.h"
#include "search/hashtable.h"
#include "position/attacks.h"
#include "position/make.h"
#include "position/movegen.h"
#include "search/ordering.h"
#include "search/lines.h"
#include "search/search.h"
#include "search/roots.h"
#include "search/think.h"

namespace {

using namespace board;
using namespace search;
using namespace position;

Move moveOf(const char* from, const char* to, int special = SpecialNone) {
    return makeMove(squareOf(from), squareOf(to), special);
}

std::string moveText(std::uint32_t word) {
    char text[8];
    formatCoordinateMove(Move(word & LowMoveMask), text);
    return text;
}

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
        extensionPlyLimit = 0;
    }

    // A full-window root search of `plies` plies from `fen`, run through the
    // driver's startSearch as one aspiration try; returns the head's score
    // and leaves the principal variation in pvHeads[0].
    static int rootSearch(const char* fen, int plies) {
        rootNode(fen);
        Position& position = *game.position;
        copyToRootMoves(game.legalMoves);
        extensionPlyLimit = 2 * plies;
        pvHeads[0]->word = std::uint32_t(withScore(NoMove, -InfiniteScore));
        startSearch(game.sideToMove ^ 1, NoMove, RootNode, plies, -InfiniteScore, InfiniteScore, position);
        return scoreHalf(Move(pvHeads[0]->word));
    }

    // The line that the root search left, as coordinate moves.
    static std::string principalLine() {
        std::string line;
        for (const PvNode* n = pvHeads[0]; n != nullptr && n->word != 0; n = n->next) {
            if (!line.empty()) line += ' ';
            line += moveText(n->word);
        }
        return line;
    }
};

// Mated at ply p scores p - 32700, so a mate in n moves scores 32701 - 2n at
// the root. Each position is also searched with the colours reversed: the
// twins must agree.
TEST_F(SearchNodeTest, MatesScoreTheirDistanceForEitherColour) {
    struct Case {
        const char* fen;
        const char* mirrored;
        int plies;
        int score;
    };
    const Case cases[] = {
        {"k7/8/1K6/8/8/8/8/7R w - - 0 1", "7r/8/8/8/8/1k6/8/K7 b - - 0 1", 2, 32699},
        {"k7/8/2K5/8/8/8/8/7R w - - 0 1", "7r/8/8/8/8/2k5/8/K7 b - - 0 1", 4, 32697},
        {"8/7k/8/8/8/8/8/RR4K1 w - - 0 1", "rr4k1/8/8/8/8/8/7K/8 b - - 0 1", 6, 32695},
        // The side to move is mated after two plies.
        {"7k/R7/8/8/8/8/8/1R4K1 b - - 0 1", "1r4k1/8/8/8/8/8/r7/7K w - - 0 1", 4, -32698},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(rootSearch(c.fen, c.plies), c.score) << c.fen;
        EXPECT_EQ(rootSearch(c.mirrored, c.plies), c.score) << c.mirrored;
        // A deeper search finds the same distance, not a longer one.
        EXPECT_EQ(rootSearch(c.fen, c.plies + 2), c.score) << c.fen;
    }
}

// The line of a mate ends with the mating move and nothing behind it.
TEST_F(SearchNodeTest, MateLineIsSplicedBehindTheRootMove) {
    ASSERT_EQ(rootSearch("k7/8/2K5/8/8/8/8/7R w - - 0 1", 4), 32697);
    const std::string line = principalLine();
    EXPECT_TRUE(line == "c6b6 a8b8 h1h8" || line == "c6c7 a8a7 h1a1") << line;
}

// The mated node itself, one ply below the root, returns 1 - 32700; a move
// that leaves the own king attacked, or lands on the enemy king, is refused.
TEST_F(SearchNodeTest, ChildReportsMateAndIllegality) {
    const NodeState root = rootNode("k7/8/1K6/8/8/8/8/7R w - - 0 1");
    extensionPlyLimit = 4;
    EXPECT_EQ(searchBlack(moveOf("h1", "h8"), CheckLegality, 2 * OnePly, -InfiniteScore, InfiniteScore, &root),
              1 - MateBase);
    EXPECT_EQ(searchBlack(moveOf("b6", "b7"), CheckLegality, 2 * OnePly, -InfiniteScore, InfiniteScore, &root),
              IllegalScore);
    const SearchBoard before = searchBoard;
    EXPECT_EQ(searchWhite(moveOf("a8", "b6"), 0, 0, -InfiniteScore, InfiniteScore, &root), IllegalScore)
        << "a target square holding the king is refused before any make";
    EXPECT_EQ(std::memcmp(&before, &searchBoard, sizeof before), 0);
}

// A stalemate found in the tree is exactly 0, not an evaluation; and the
// board comes back as it was.
TEST_F(SearchNodeTest, StalemateScoresZero) {
    const NodeState root = rootNode("7k/8/8/6Q1/8/8/8/K7 w - - 0 1");
    const SearchBoard before = searchBoard;
    extensionPlyLimit = 4;
    EXPECT_EQ(searchBlack(moveOf("g5", "g6"), CheckLegality, 2 * OnePly, -InfiniteScore, InfiniteScore, &root), 0);
    EXPECT_EQ(std::memcmp(&before, &searchBoard, sizeof before), 0);
    // The same queen a square further is no stalemate: Black's king walks.
    EXPECT_NE(searchBlack(moveOf("g5", "f6"), CheckLegality, 2 * OnePly, -InfiniteScore, InfiniteScore, &root), 0);
}

// Material that can't mate ends the node after the capture that left it.
TEST_F(SearchNodeTest, CaptureIntoDeadMaterialIsADraw) {
    const NodeState root = rootNode("7k/8/8/8/8/8/1r6/K2N4 w - - 0 1");
    EXPECT_EQ(searchBlack(moveOf("d1", "b2") | CaptureMark, CheckLegality, 4 * OnePly, -InfiniteScore,
                          InfiniteScore, &root),
              0);
}

TEST(SearchDraws, MaterialDrawCases) {
    struct Case {
        const char* fen;
        int drawn;
    };
    const Case cases[] = {
        {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", 1},     // bare kings
        {"4kn2/8/8/8/8/8/8/4K3 w - - 0 1", 1},    // Black's lone knight
        {"2b1k3/8/8/8/8/8/8/4KB2 w - - 0 1", 1},  // bishops on light squares
        {"2b1k3/8/8/8/8/8/8/2B1K3 w - - 0 1", 0}, // opposite colours
        {"4k3/8/8/8/8/8/8/1NN1K3 w - - 0 1", 0},  // two knights
        {"4k3/p7/8/8/8/8/8/4K3 w - - 0 1", 0},    // any pawn
    };
    for (const Case& c : cases) EXPECT_EQ(isMaterialDraw(rootNode(c.fen)), c.drawn) << c.fen;
}

// Repetitions by where the earlier occurrences lie. The game plays knights
// out and back; the entries the search writes are in the same history
// array, so lowering historyTop makes the later game moves "inside the
// search" for the node under test.
class SearchRepetitionTest : public SearchNodeTest {
protected:
    // Plays `count` plies of Nf3 Nf6 Ng1 Ng8 ... in the game and returns the
    // node of the position reached, as seen from a root `pliesInTree` back.
    static NodeState playKnights(int count, int pliesInTree) {
        EXPECT_EQ(setupFromFen(game, "4k1n1/8/8/8/8/8/8/4K1N1 w - - 0 1"), 0);
        const Move dance[4] = {moveOf("g1", "f3"), moveOf("g8", "f6"), moveOf("f3", "g1"), moveOf("f6", "g8")};
        for (int i = 0; i < count; ++i) makeGameMove(game, dance[i % 4]);
        Position& position = *game.position;
        computeKeys(position);
        eval::setupEvaluation(position);
        position.ply = 0;
        NodeState node;
        buildNodeState(node, position);
        node.ply = pliesInTree;
        game.historyTop -= pliesInTree;
        return node;
    }
    void TearDown() override { setupFromFen(game, "4k3/8/8/8/8/8/8/4K3 w - - 0 1"); }
};

TEST_F(SearchRepetitionTest, OneEarlierOccurrenceCountsOnlyInsideTheTree) {
    // After 6 plies, White's Ng1 recreates the position after ply 3.
    const Move back = moveOf("f3", "g1");
    {
        // All six plies were played: the earlier occurrence is the game's.
        NodeState child = playKnights(6, 0);
        child.ply = 1;
        makeMoveOf<White>(child, back);
        EXPECT_EQ(countRepetitions(1, child), 0);
        unmakeMoveOf<White>(back, NoPiece);
    }
    {
        // Plies 3 to 6 belong to the tree: the same position is a draw, 2.
        const NodeState node = playKnights(6, 4);
        EXPECT_EQ(searchBlack(back, CheckLegality, 2 * OnePly, -InfiniteScore, InfiniteScore, &node), 2);
    }
}

TEST_F(SearchRepetitionTest, TwoEarlierOccurrencesAreAThreefoldAnywhere) {
    const NodeState node = playKnights(10, 0);
    EXPECT_EQ(searchBlack(moveOf("f3", "g1"), CheckLegality, 2 * OnePly, -InfiniteScore, InfiniteScore, &node), 1);
}

// After a double step beside an enemy pawn the key can't tell the en
// passant right, so the node neither stores nor reads; without the enemy
// pawn the same kind of node stores.
TEST_F(SearchNodeTest, DoubleStepBesideAPawnKeepsOutOfTheTable) {
    const char* fens[2] = {"4k3/8/8/8/3p4/8/4P3/4K3 w - - 0 1", "4k3/8/8/8/p7/8/4P3/4K3 w - - 0 1"};
    for (int i = 0; i < 2; ++i) {
        clearHash();
        const NodeState root = rootNode(fens[i]);
        const Move push = moveOf("e2", "e4");
        extensionPlyLimit = 4;
        searchBlack(push, CheckLegality, 3 * OnePly, -InfiniteScore, InfiniteScore, &root);
        NodeState child = root;
        child.ply = 1;
        makeMoveOf<White>(child, push);
        const HashEntry* entry = hashProbe(1, child);
        unmakeMoveOf<White>(push, NoPiece);
        if (i == 0) EXPECT_EQ(entry, nullptr) << fens[i];
        else EXPECT_NE(entry, nullptr) << fens[i];
    }
}

// Quiescence far behind in material takes the window's lower bound as its
// stand-still score without evaluating; a PV node always evaluates.
TEST_F(SearchNodeTest, LazyStandStillTakesTheBoundWhenFarBehind) {
    const NodeState root = rootNode("4k3/8/8/8/8/8/8/R3K3 w - - 0 1");
    const Move quiet = moveOf("a1", "a2");
    EXPECT_EQ(searchBlack(quiet, CheckLegality, 0, -100, -99, &root), -100);
    const int evaluated = searchBlack(quiet, CheckLegality, 0, -100, 100, &root);
    EXPECT_LT(evaluated, -1000);
    EXPECT_GT(evaluated, -OrdinaryScoreMax);
}

// In check at the first quiescence ply every evasion is searched, so a
// check with no escape is mate; two plies deeper only captures are tried
// and a node without them answers lo.
TEST_F(SearchNodeTest, QuiescenceInCheckByDepth) {
    const NodeState root = rootNode("k7/8/1K6/8/8/8/8/7R w - - 0 1");
    const Move mate = moveOf("h1", "h8");
    // Fail-soft: the mate comes back below the window.
    EXPECT_EQ(searchBlack(mate, CheckLegality, 0, -500, 500, &root), 1 - MateBase);
    EXPECT_EQ(searchBlack(mate, CheckLegality, -2 * OnePly, -500, 500, &root), -500);
}

// A side with only king and pawns never tries the null move: forbidding it
// changes nothing there, while with pieces on the board it changes the tree.
TEST_F(SearchNodeTest, NoNullMoveForASideWithoutPieces) {
    auto nodesOf = [&](const char* fen, Move move, unsigned flags) {
        SetUp();
        const NodeState root = rootNode(fen);
        extensionPlyLimit = 10;
        nodeCount.store(0);
        const int score = searchBlack(move, CheckLegality | flags, 5 * OnePly, -InfiniteScore, InfiniteScore, &root);
        return std::pair<int, std::uint32_t>(score, nodeCount.load());
    };
    const char* pawnsOnly = "4k3/pppp4/8/8/8/8/PPPP4/4K3 w - - 0 1";
    EXPECT_EQ(nodesOf(pawnsOnly, moveOf("a2", "a3"), 0), nodesOf(pawnsOnly, moveOf("a2", "a3"), NoNullMove));
    const char* withPieces = "r3k3/pppp4/8/8/8/8/PPPP4/R3K3 w - - 0 1";
    EXPECT_NE(nodesOf(withPieces, moveOf("a2", "a3"), 0).second,
              nodesOf(withPieces, moveOf("a2", "a3"), NoNullMove).second);
}

// The abort leaves through abortJump from inside the recursion.
TEST_F(SearchNodeTest, AbortJumpsOutOfTheRecursion) {
    const NodeState root = rootNode("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1");
    extensionPlyLimit = 8;
    timeCheckCounter = 0;
    nodeCount.store(0);
    volatile int jumped = 0;
    if (setjmp(abortJump) == 0) {
        abortSearch.store(1);
        searchBlack(moveOf("e2", "a6") | CaptureMark, CheckLegality, 4 * OnePly, -InfiniteScore, InfiniteScore,
                    &root);
    } else {
        jumped = 1;
    }
    abortSearch.store(0);
    EXPECT_EQ(jumped, 1);
    EXPECT_EQ(nodeCount.load(), 0u) << "the stop is tested before anything is made";
}

}  // namespace
