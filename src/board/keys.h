#pragma once
// 64-bit position keys as two 32-bit words, drawn from a fixed MT19937 stream
// so that keys (and so the book and hash behaviour) are the same every run.

#include <cstdint>

#include "board/types.h"

namespace board {

constexpr int KeyTableSize = 1024;
extern std::uint32_t keyLow[KeyTableSize];
extern std::uint32_t keyHigh[KeyTableSize];

constexpr std::uint32_t KeySeed = 123456;
// Index of a piece of `type` on `sq`; Black ids use the upper half.
constexpr int pieceKeyIndex(int type, int sq, bool black) { return (black ? 512 : 0) + type * 64 + sq; }
// Castling rows reuse the rows of type 7, which no piece has.
constexpr int WhiteCastleKeyBase = 448;
constexpr int BlackCastleKeyBase = 960;
constexpr int WhitePawnKeyBase = 320;  // pieceKeyIndex(WhitePawn, 0, false)
constexpr int BlackPawnKeyBase = 896;  // pieceKeyIndex(BlackPawn, 0, true)

std::uint32_t nextKeyWord();
void initKeyTables();

// Index of the castling entry of a colour from its two states.
inline int castleKeyIndex(Color c, const std::int32_t* castleState) {
    const int base = c == White ? WhiteCastleKeyBase : BlackCastleKeyBase;
    return base + 2 * (castleState[castleShortIndex(c)] == CastleRight) +
           (castleState[castleLongIndex(c)] == CastleRight);
}

// hashKey and pawnKey from scratch; reads pieceSquare, pieceType, castleState.
void computeKeys(Position& position);

}  // namespace board
