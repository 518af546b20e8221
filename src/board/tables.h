#pragma once
// Read-only tables built once at start-up: move lists of every piece on every
// square, the pawn step lists, line geometry between squares, king distance,
// the late-move reduction table and the knight-against-pawn table.

#include <cstdint>

#include "board/types.h"

namespace board {

// One (to, skip) pair of a piece's move list; to == NoSquare ends the list.
// skip: pairs to advance when `to` is occupied (the rest of a sliding ray).
struct MoveStep {
    std::uint8_t to;
    std::uint8_t skip;
};
constexpr int MoveStepRoom = 32;

// One pawn record: single push, double push, lower-file capture, higher-file
// capture, end. flags bit 0 = push (target must be empty), bit 1 = promotion.
struct PawnStep {
    std::uint8_t to;
    std::uint8_t skip;
    std::uint8_t flags;
};
constexpr int PawnStepRoom = 5;
constexpr int PawnStepPush = 1;
constexpr int PawnStepPromotion = 2;

// Indexed [type King..Knight][square]; the two differ only in direction order.
extern MoveStep whiteMoves[5][64][MoveStepRoom];
extern MoveStep blackMoves[5][64][MoveStepRoom];
// Indexed [WhitePawn or BlackPawn][square]; rows 0..4 are unused.
extern PawnStep pawnMoves[7][64][PawnStepRoom];

// Step from a towards b on a line, or b - a for a knight's jump, else 0.
extern std::int16_t rayStep[64][64];
// |rayStep| -> 1 orthogonal, 2 diagonal, 3 knight, 0 none.
constexpr int LineNone = 0;
constexpr int LineOrthogonal = 1;
constexpr int LineDiagonal = 2;
constexpr int LineKnight = 3;
extern const int lineKind[18];

extern std::uint8_t kingDistance[64][64];
// Late-move reduction: trunc(log2(d) * log2(m) * 0.4), [depth][move number].
extern std::uint8_t reductionTable[32][64];
// [pawn square, seen advancing to rank 8][knight square]: 1 if the knight
// catches the pawn in time.
extern std::uint8_t knightCatchesPawn[64][64];

// Piece letters by type 0..6: the English half "KQRBNPP" of "KQRBNPPRDTFCPP"
// (the French initials follow it). Selected at start-up, never changed after.
extern const char pieceLetterTable[15];
extern const char* pieceLetters;
constexpr int FrenchLettersOffset = 7;

// Fills every table above, in the order the later ones need.
void initStaticTables();

// Whether a one-square step of the tables leads from a to b without a wrap.
constexpr bool stepExists(int a, int b) {
    if (b < 0 || b > 63) return false;
    int df = fileOf(a) - fileOf(b);
    return df <= 2 && df >= -2;
}

}  // namespace board
