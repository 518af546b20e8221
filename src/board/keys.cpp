#include "board/keys.h"

#include <random>

namespace board {

std::uint32_t keyLow[KeyTableSize];
std::uint32_t keyHigh[KeyTableSize];

std::uint32_t nextKeyWord() {
    static std::mt19937 generator(KeySeed);
    return std::uint32_t(generator());
}

void initKeyTables() {
    static bool done = false;  // the stream must be drawn exactly once
    if (done) return;
    done = true;
    for (auto& word : keyLow) word = nextKeyWord();
    for (auto& word : keyHigh) word = nextKeyWord();
}

namespace {
inline void xorEntry(std::uint32_t key[2], int index) {
    key[0] ^= keyLow[index];
    key[1] ^= keyHigh[index];
}
}  // namespace

void computeKeys(Position& position) {
    position.hashKey[0] = position.hashKey[1] = 0;
    for (int id = 0; id < PieceIdCount; ++id) {
        const int sq = position.pieceSquare[id];
        if (sq == NoSquare) continue;
        xorEntry(position.hashKey, pieceKeyIndex(position.pieceType[id], sq, isBlackId(id)));
    }
    xorEntry(position.hashKey, castleKeyIndex(White, position.castleState));
    xorEntry(position.hashKey, castleKeyIndex(Black, position.castleState));

    position.pawnKey[0] = position.pawnKey[1] = 0;
    for (int id = SlotPawnA; id <= SlotPawnH; ++id)
        if (position.pieceSquare[id] != NoSquare && position.pieceType[id] == WhitePawn)
            xorEntry(position.pawnKey, WhitePawnKeyBase + position.pieceSquare[id]);
    for (int id = BlackIdBase + SlotPawnA; id <= BlackIdBase + SlotPawnH; ++id)
        if (position.pieceSquare[id] != NoSquare && position.pieceType[id] == BlackPawn)
            xorEntry(position.pawnKey, BlackPawnKeyBase + position.pieceSquare[id]);
}

}  // namespace board
