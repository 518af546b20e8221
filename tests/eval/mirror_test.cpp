// The evaluation can't tell the colours apart: the position mirrored rank for
// rank, with the colours and the side to move swapped, gets the same score,
// and every group the opposite value. Positions come from random legal games
// played with the game-level scan, from the start and from a few endings, so
// that every phase class, promotions and passers all turn up.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/scan.h"
#include "support/roots.h"

using namespace board;

namespace {

// Pieces keep their slots: id i of one colour becomes id i of the other, as
// in the same game played with the colours reversed, so the terms that read
// slots see the same piece in the mirror. A mirror made through a FEN
// wouldn't do: the set-up fills slots in reading order, rank 8 first.
Position mirrored(const Position& p) {
    Position m = p;
    for (int sq = 0; sq < 64; ++sq)
        m.boardPiece[flipRank(sq)] = p.boardPiece[sq] == NoPiece ? NoPiece : p.boardPiece[sq] ^ BlackIdBase;
    for (int id = 0; id < PieceIdCount; ++id) {
        const int other = id ^ BlackIdBase;
        m.pieceSquare[other] = p.pieceSquare[id] == NoSquare ? NoSquare : flipRank(p.pieceSquare[id]);
        const int type = p.pieceType[id];
        m.pieceType[other] = type == WhitePawn ? BlackPawn : type == BlackPawn ? WhitePawn : type;
        m.pieceValue[other] = p.pieceValue[id];
    }
    m.castleState[CastleWhiteShort] = p.castleState[CastleBlackShort];
    m.castleState[CastleBlackShort] = p.castleState[CastleWhiteShort];
    m.castleState[CastleWhiteLong] = p.castleState[CastleBlackLong];
    m.castleState[CastleBlackLong] = p.castleState[CastleWhiteLong];
    return m;
}

struct Evaluation {
    int phaseClass;
    int pstScore;
    TracedEvaluation traced;
};

// Each root is set up afresh: searchBoard and the set-up's tables belong to
// the last position built.
Evaluation evaluateRoot(const Position& position, int blackToMove) {
    Position root = position;
    const position::NodeState node = rootFromPosition(root);
    return {node.phaseClass, node.pstScore, traceEvaluate(blackToMove, node)};
}

std::string describe(int blackToMove) {
    char text[BoardTextSize];
    boardText(game, text);
    return std::string(text) + (blackToMove ? " (Black to move)" : " (White to move)");
}

void expectMirrorImage(const Evaluation& a, const Evaluation& b, const std::string& where) {
    const eval::EvalTerms& x = a.traced.terms;
    const eval::EvalTerms& y = b.traced.terms;
    EXPECT_EQ(a.phaseClass, b.phaseClass) << where;
    EXPECT_EQ(a.traced.score, b.traced.score) << where;
    EXPECT_EQ(x.materialScore, -y.materialScore) << where;
    EXPECT_EQ(a.pstScore, -b.pstScore) << where;
    EXPECT_EQ(x.positional, -y.positional) << where;
    EXPECT_EQ(x.proximity, -y.proximity) << where;
    EXPECT_EQ(x.mobilityScore, -y.mobilityScore) << where;
    EXPECT_EQ(x.kingScore, -y.kingScore) << where;
    EXPECT_EQ(x.pawnScore, -y.pawnScore) << where;
    EXPECT_EQ(x.bestWhitePasser == 0 ? 0 : flipRank(x.bestWhitePasser), y.bestBlackPasser) << where;
}

struct Start {
    const char* fen;
    int positions;
};

// Random play from each start; a game that ends, or runs long, starts over.
constexpr Start starts[] = {
    {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 600},
    {"r3k2r/pp1n1ppp/2p1pn2/q7/3P4/2N1PN2/PPQ2PPP/R3K2R w KQkq - 0 1", 200},
    {"8/8/6k1/8/PP6/8/r7/7K w - - 0 1", 150},
    {"8/8/4k3/8/2p5/8/4KP2/8 w - - 0 1", 150},
    {"4k3/pp3p2/2n5/8/3P4/5N2/PP3PPP/4K3 w - - 0 1", 150},
    {"2b1k3/p4p2/1p6/8/2P5/1P2B3/P4P2/4K3 w - - 0 1", 150},
    {"r5k1/1p4p1/8/P7/8/8/5PP1/R5K1 w - - 0 1", 150},
    {"4k3/1P4p1/8/8/8/8/1p4P1/4K3 w - - 0 1", 150},
    {"n3k3/P7/8/8/8/8/p6N/4K3 w - - 0 1", 150},
    {"3qk3/2p5/8/8/8/8/5P2/3QK3 w - - 0 1", 150},
    // Trapped pieces, outposts, mating nets, x-rays, heavy pieces on the
    // last ranks and a promoted queen: built, since random play seldom finds them.
    {"r3k2r/pp1b1p1B/2n1p1p1/2NpP3/3P4/2P5/PP3PPP/R2QK2R w KQkq - 0 1", 10},
    {"2r2rk1/1p3p1p/p2p1Bp1/3Pn3/8/1P3N2/P1Q2PPP/2R3K1 w - - 0 1", 10},
    {"6k1/5p1p/7Q/6N1/8/8/5PPP/2R3K1 w - - 0 1", 10},
    {"N3k3/p7/2N5/1P6/8/6p1/5P1b/4K3 w - - 0 1", 10},
    {"4k3/rp6/pN6/8/8/Pn6/RP6/4K3 w - - 0 1", 10},
    {"6k1/1R3ppp/8/8/8/8/q4PPP/6K1 b - - 0 1", 10},
    {"8/8/8/8/8/2k5/8/K2Q3Q w - - 0 1", 10},
};
constexpr int LongestGame = 160;

int pickMove(std::mt19937& rng) {
    int legal[MoveListSize];
    int n = 0;
    for (const Move* m = game.legalMoves; *m != NoMove; ++m)
        if (!(*m & scanIllegal)) legal[n++] = *m;
    if (n == 0) return NoMove;
    return legal[std::uniform_int_distribution<int>(0, n - 1)(rng)];
}

}  // namespace

TEST(Mirror, ColourFlippedPositionsScoreTheSame) {
    std::mt19937 rng(20240611);
    int visited = 0;
    int byClass[6] = {};
    for (const Start& start : starts) {
        int plies = LongestGame;
        for (int n = 0; n < start.positions; ++n) {
            if (plies >= LongestGame || game.gameOver != GameOn) {
                ASSERT_EQ(setupFromFen(game, start.fen), 0) << start.fen;
                plies = 0;
            }
            const Position original = *game.position;
            const Position flipped = mirrored(original);
            for (int blackToMove = 0; blackToMove < 2; ++blackToMove) {
                const Evaluation a = evaluateRoot(original, blackToMove);
                const Evaluation b = evaluateRoot(flipped, 1 - blackToMove);
                expectMirrorImage(a, b, describe(blackToMove));
                ++byClass[a.phaseClass];
            }
            ++visited;
            const Move move = pickMove(rng);
            if (move == NoMove || makeGameMove(game, move) != ResultOk) plies = LongestGame;
            ++plies;
        }
    }
    EXPECT_EQ(visited, 2070);
    // The walk must keep reaching every phase class, or the test says little.
    for (int c = 0; c < 6; ++c) EXPECT_GE(byClass[c], 40) << "phase class " << c;
}
