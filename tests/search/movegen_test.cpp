// The search's generators and ordering on hand-made positions: the words
// and scores that a node sees, the learned tables' updates, and the check
// and passed-pawn questions that spare moves from pruning.

#include <gtest/gtest.h>

#include <cstring>

#include "position/attacks.h"
#include "position/make.h"
#include "position/movegen.h"
#include "search/ordering.h"
#include "search/roots.h"

namespace {

using namespace board;
using namespace search;
using namespace position;

Move findWord(const Move* list, Move lowTwelve) {
    for (const Move* w = list; *w; ++w)
        if ((*w & FromToMask) == lowTwelve) return *w;
    return NoMove;
}

// A capture that promotes carries the capture mark on its knight word only;
// an underpromotion by capture thus reads as not quiet through bit 14 alone.
TEST(SearchMovegen, PromotionByCaptureMarksOnlyTheKnightWord) {
    const NodeState node = rootNode("1r2k3/P7/8/8/8/8/8/4K3 w - -");
    Move list[MoveListSize];
    generateAll<White>(list, 0, 0, 0, node);
    int seen = 0;
    for (const Move* w = list; *w; ++w) {
        if ((*w & FromToMask) != makeMove(squareOf("a7"), squareOf("b8"))) continue;
        ++seen;
        EXPECT_EQ((*w & CaptureMark) != 0, moveSpecial(*w) == SpecialPromoteKnight) << std::hex << *w;
        EXPECT_FALSE(isQuiet(*w));
    }
    EXPECT_EQ(seen, 4);
}

// En passant only right after the double step beside the pawn, and a pawn
// on the edge has one neighbour.
TEST(SearchMovegen, EnPassantFollowsTheParentsDoubleStep) {
    const NodeState node = rootNode("4k3/8/8/8/Pp6/8/8/4K3 b - -");
    Move list[MoveListSize];
    generateAll<Black>(list, squareOf("a2"), squareOf("a4"), 0, node);
    const Move ep = findWord(list, makeMove(squareOf("b4"), squareOf("a3")));
    EXPECT_EQ(ep, makeMove(squareOf("b4"), squareOf("a3"), SpecialEnPassant) | CaptureMark);
    generateAll<Black>(list, squareOf("a3"), squareOf("a4"), 0, node);
    EXPECT_EQ(findWord(list, makeMove(squareOf("b4"), squareOf("a3"))), NoMove);
    generateCaptures<Black>(list, squareOf("a2"), squareOf("a4"));
    EXPECT_EQ(list[0], withScore(makeMove(squareOf("b4"), squareOf("a3"), SpecialEnPassant), 6000));
    EXPECT_EQ(list[1], NoMove);
}

TEST(SearchMovegen, CaptureGeneratorScoresByValuesAlone) {
    // The pawn on b7 can push to b8 or take the queen on a8, both promoting.
    rootNode("q3k3/1P6/8/8/8/8/8/3RK3 b - -");
    Move list[MoveListSize];
    generateCaptures<White>(list, 0, 0);
    EXPECT_EQ(orderingHalf(findWord(list, makeMove(squareOf("b7"), squareOf("b8")))), 10614u);
    EXPECT_EQ(orderingHalf(findWord(list, makeMove(squareOf("b7"), squareOf("a8")))), 10614u + QueenValue);
    EXPECT_EQ(moveSpecial(findWord(list, makeMove(squareOf("b7"), squareOf("a8")))), SpecialPromoteQueen);
    EXPECT_EQ(findWord(list, makeMove(squareOf("d1"), squareOf("d8"))), NoMove) << "quiet moves are absent";
    generateCaptures<Black>(list, 0, 0);
    EXPECT_EQ(findWord(list, makeMove(squareOf("a8"), squareOf("a1"))), NoMove);
    EXPECT_EQ(findWord(list, makeMove(squareOf("a8"), squareOf("b7"))),
              withScore(makeMove(squareOf("a8"), squareOf("b7")), PawnValue - QueenValue + 6000));
}

// Score halves: captures 2000 + a quarter of the victim (+ promotion bonus),
// killers 2000, the counter move 200, all on top of history, plus 512.
TEST(SearchMovegen, ScoresComeFromHistoryKillersAndCounters) {
    clearHistory();
    clearKillers();
    clearCounters();
    NodeState node = rootNode("4k3/8/8/3p4/4P3/8/8/R3K2N w - -");
    node.ply = 3;
    const Move capture = makeMove(squareOf("e4"), squareOf("d5")) | CaptureMark;
    const Move killer = makeMove(squareOf("a1"), squareOf("a7"));
    const Move counter = makeMove(squareOf("h1"), squareOf("g3"));
    const Move plain = makeMove(squareOf("e1"), squareOf("f1"));
    killersWhite[3] = std::uint32_t(killer) << 16 | makeMove(squareOf("a1"), squareOf("a2"));
    // The parent was Black's king to e8 (the piece on e8 is a king).
    const Move parent = makeMove(squareOf("d8"), squareOf("e8"));
    counterWhite[King][squareOf("e8")] = std::uint16_t(counter);
    historyEntry(historyWhite, plain) = -40;
    historyEntry(historyWhite, capture) = 10;
    Move list[] = {plain, capture, killer, counter, NoMove};
    scoreMoves<White>(list, parent, node);
    EXPECT_EQ(orderingHalf(list[0]), unsigned(-40 + 512));
    EXPECT_EQ(orderingHalf(list[1]), unsigned(10 + PawnValue / 4 + 2000 + 512));
    EXPECT_EQ(orderingHalf(list[2]), 2000u + 512);
    EXPECT_EQ(orderingHalf(list[3]), 200u + 512);
    // Without a parent move neither killers nor counter count.
    scoreMoves<White>(list, NoMove, node);
    EXPECT_EQ(orderingHalf(list[2]), 512u);
    EXPECT_EQ(orderingHalf(list[3]), 512u);
    clearHistory();
    clearKillers();
    clearCounters();
}

TEST(SearchMovegen, RootTakesTheDriversOrder) {
    NodeState node = rootNode("4k3/8/8/8/8/8/8/R3K3 w - -");
    node.ply = 0;
    std::memset(rootMoves, 0, sizeof rootMoves);
    rootMoves[0] = makeMove(squareOf("a1"), squareOf("a8")) | 77 << 16;
    rootMoves[1] = makeMove(squareOf("e1"), squareOf("d1"));
    Move list[SearchListRoom] = {makeMove(squareOf("e1"), squareOf("f1")), NoMove};
    scoreMoves<White>(list, NoMove, node);
    EXPECT_EQ(list[0], withScore(rootMoves[0], 762));
    EXPECT_EQ(list[1], withScore(rootMoves[1], 761));
    EXPECT_EQ(list[2], NoMove);
}

// The hash move comes first wherever it stands; then the highest score,
// the earliest of equals; a taken word swaps with the word at p.
TEST(SearchMovegen, SelectionTakesHashMoveThenBestScore) {
    Move list[] = {withScore(101, 5), withScore(202, 9), withScore(303, 9), withScore(404, 1), NoMove};
    EXPECT_EQ(selectNextMove(list, 0, 404), withScore(404, 1));
    EXPECT_EQ(list[3], withScore(101, 5));
    EXPECT_EQ(selectNextMove(list, 1, 404), withScore(202, 9));
    EXPECT_EQ(selectNextMove(list, 2, 0), withScore(303, 9));
    EXPECT_EQ(selectNextMove(list, 3, 0), withScore(101, 5));
    EXPECT_EQ(selectNextMove(list, 4, 0), NoMove);
}

TEST(SearchMovegen, HistoryStepsShrinkTowardsTheBound) {
    static std::int32_t table[128][64];
    const Move cut = makeMove(squareOf("g1"), squareOf("f3"));
    const std::uint16_t tried[] = {std::uint16_t(makeMove(squareOf("b1"), squareOf("c3")) | CaptureMark)};
    updateHistory(table, cut, tried, 1, 5);
    EXPECT_EQ(historyEntry(table, cut), 25);
    EXPECT_EQ(historyEntry(table, tried[0]), -25);
    EXPECT_EQ(table[64 + squareOf("b1")][squareOf("c3")], 0) << "the capture row is apart";
    historyEntry(table, cut) = 500;
    updateHistory(table, cut, nullptr, 0, 5);
    EXPECT_EQ(historyEntry(table, cut), 501);
    for (int i = 0; i < 100; ++i) updateHistory(table, cut, tried, 1, 40);
    EXPECT_LE(historyEntry(table, cut), 512);
    EXPECT_GE(historyEntry(table, tried[0]), -512);
}

TEST(SearchMovegen, KillerIsNotStoredTwice) {
    static std::uint32_t killers[MaxSearchPly];
    updateKiller(killers, 4, 1804);
    updateKiller(killers, 4, 1804);
    EXPECT_EQ(killers[4], 1804u);
    updateKiller(killers, 4, 1739 | 300 << 16);
    EXPECT_EQ(killers[4], 1804u << 16 | 1739u);
}

TEST(SearchMovegen, ChecksKingSeesDirectPinnedAndDiscoveredAttacks) {
    const int e1 = squareOf("e1"), g1 = squareOf("g1");
    // The bishop that pins the knight against the king counts.
    NodeState node = rootNode("4k3/8/8/2b5/8/8/3N4/4K3 b - -");
    EXPECT_TRUE(mayAttackKing<Black>(makeMove(squareOf("c5"), squareOf("b4")), e1, node));
    EXPECT_FALSE(mayAttackKing<Black>(makeMove(squareOf("c5"), squareOf("d6")), e1, node));
    node = rootNode("4k3/8/8/8/8/8/8/2n3K1 b - -");
    EXPECT_TRUE(mayAttackKing<Black>(makeMove(squareOf("c1"), squareOf("e2")), g1, node));
    EXPECT_FALSE(mayAttackKing<Black>(makeMove(squareOf("c1"), squareOf("d3")), g1, node));
    node = rootNode("4k3/8/8/8/8/5p2/8/4K3 b - -");
    EXPECT_TRUE(mayAttackKing<Black>(makeMove(squareOf("f3"), squareOf("f2")), e1, node));
    // The knight leaves the line between its own rook and the White king.
    node = rootNode("k3r3/8/8/8/4n3/8/8/4K3 b - -");
    EXPECT_TRUE(mayAttackKing<Black>(makeMove(squareOf("e4"), squareOf("c5")), e1, node));
    node = rootNode("k7/8/8/8/4n3/8/8/4K3 b - -");
    EXPECT_FALSE(mayAttackKing<Black>(makeMove(squareOf("e4"), squareOf("c5")), e1, node));
    // The mirror: a White rook move giving check along the rank.
    node = rootNode("4k3/8/8/8/8/8/8/R3K3 w - -");
    EXPECT_TRUE(mayAttackKing<White>(makeMove(squareOf("a1"), squareOf("a8")), squareOf("e8"), node));
}

TEST(SearchMovegen, PassedPawnIgnoresPawnsBesideOrBehind) {
    NodeState node = rootNode("4k3/8/8/8/4p3/8/3P4/K7 b - -");
    EXPECT_EQ(isPassed<Black>(squareOf("e4"), node), 0);
    node = rootNode("4k3/8/8/3P4/4p3/8/8/K7 b - -");
    EXPECT_EQ(isPassed<Black>(squareOf("e4"), node), 1);
    node = rootNode("4k3/8/8/8/3Pp3/8/8/K7 b - -");
    EXPECT_EQ(isPassed<Black>(squareOf("e4"), node), 1);
    node = rootNode("4k3/8/8/8/4p3/8/4N3/6K1 b - -");
    EXPECT_EQ(isPassed<Black>(squareOf("e4"), node), 0) << "a White piece ahead on the file";
    node = rootNode("7k/5p2/8/4P3/8/8/8/4K3 w - -");
    EXPECT_EQ(isPassed<White>(squareOf("e5"), node), 0);
    node = rootNode("7k/8/8/4P3/5p2/8/8/4K3 w - -");
    EXPECT_EQ(isPassed<White>(squareOf("e5"), node), 1);
}

// A list never grows past its room: the generator keeps the first moves.
TEST(SearchMovegen, GeneratorRespectsTheListRoom) {
    const NodeState node = rootNode("R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - -");
    Move list[SearchListRoom + 1];
    list[SearchListRoom] = 0x7fff;
    EXPECT_EQ(generateAll<White>(list, 0, 0, 0, node), SearchListRoom - 1);
    EXPECT_EQ(list[SearchListRoom - 1], NoMove);
    EXPECT_EQ(list[SearchListRoom], 0x7fff);
}

}  // namespace
