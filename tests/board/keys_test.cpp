// Position keys: a fixed random stream, and equality exactly where the
// repetition test and the hash table need it.
#include <gtest/gtest.h>

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

std::uint64_t keyOf(Position p) {
    computeKeys(p);
    return fullKey(p.hashKey);
}

}  // namespace

TEST(ComputeKeys, RightsCountButNotHowTheyWereLostAndIdsDontMatter) {
    Position p = startPosition();
    const std::uint64_t all = keyOf(p);
    p.castleState[CastleBlackLong] = CastleLost;
    const std::uint64_t lost = keyOf(p);
    EXPECT_NE(all, lost);
    p.castleState[CastleBlackLong] = CastleDone;
    EXPECT_EQ(keyOf(p), lost);

    Position swapped = startPosition();  // the two white knights' ids swapped
    swapped.pieceSquare[SlotKnightB] = G1;
    swapped.pieceSquare[SlotKnightG] = B1;
    EXPECT_EQ(keyOf(swapped), all);
}

