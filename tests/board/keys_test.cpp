// Position keys: a fixed random stream, and equality exactly where the
// repetition test and the hash table need it.
#include <gtest/gtest.h>

#include <random>

#include "board/game.h"
#include "board/keys.h"

using namespace board;

namespace {
Position startPosition() {
    Position p{};
    for (auto& id : p.boardPiece) id = NoPiece;
    for (int i = 0; i < 32; ++i) {
        p.pieceSquare[i] = startSquare[i];
        p.boardPiece[startSquare[i]] = i;
        p.pieceType[i] = startType[i];
    }
    p.pieceType[NoPiece] = NoType;
    return p;
}
}  // namespace

TEST(KeyTables, DrawnFromTheStandardGeneratorInIndexOrder) {
    std::mt19937 reference(123456);
    for (int i = 0; i < KeyTableSize; ++i) ASSERT_EQ(keyLow[i], reference()) << i;
    for (int i = 0; i < KeyTableSize; ++i) ASSERT_EQ(keyHigh[i], reference()) << i;
}

TEST(ComputeKeys, CastlingRightsCountButNotHowTheyWereLost) {
    Position p = startPosition();
    computeKeys(p);
    const std::uint64_t all = fullKey(p.hashKey);
    p.castleState[CastleBlackLong] = CastleLost;
    computeKeys(p);
    const std::uint64_t lost = fullKey(p.hashKey);
    EXPECT_NE(all, lost);
    p.castleState[CastleBlackLong] = CastleDone;
    computeKeys(p);
    EXPECT_EQ(fullKey(p.hashKey), lost);
}

TEST(ComputeKeys, ReadsTypesAndSquaresNotIds) {
    Position a = startPosition();
    Position b = startPosition();
    // Swap the two white knights' ids: same pieces on the same squares.
    b.pieceSquare[SlotKnightB] = G1;
    b.pieceSquare[SlotKnightG] = B1;
    b.boardPiece[B1] = SlotKnightG;
    b.boardPiece[G1] = SlotKnightB;
    computeKeys(a);
    computeKeys(b);
    EXPECT_EQ(fullKey(a.hashKey), fullKey(b.hashKey));
    EXPECT_EQ(fullKey(a.pawnKey), fullKey(b.pawnKey));
}

TEST(ComputeKeys, PawnKeyHoldsOnlyPawnsAndDropsAPromotedOne) {
    Position p = startPosition();
    computeKeys(p);
    const std::uint64_t pawns = fullKey(p.pawnKey);
    p.castleState[CastleWhiteShort] = CastleLost;
    p.pieceSquare[SlotKnightB] = NoSquare;
    computeKeys(p);
    EXPECT_EQ(fullKey(p.pawnKey), pawns);
    p.pieceType[SlotPawnA] = Queen;
    computeKeys(p);
    EXPECT_NE(fullKey(p.pawnKey), pawns);
}

TEST(ComputeKeys, TranspositionsMeetOnOneKey) {
    // 1.Nf3 Nf6 2.Nc3 and 1.Nc3 Nf6 2.Nf3 reach one position.
    auto play = [](std::initializer_list<Move> moves) {
        resetGame(game);
        rescanMoves(game);
        for (Move m : moves) EXPECT_EQ(makeGameMove(game, m), ResultOk);
        return fullKey(game.position->hashKey);
    };
    const Move nf3 = makeMove(G1, F3), nc3 = makeMove(B1, C3), nf6 = makeMove(G8, F6);
    EXPECT_EQ(play({nf3, nf6, nc3}), play({nc3, nf6, nf3}));
    EXPECT_NE(play({nf3, nf6, nc3}), play({nf3, nf6}));
}
