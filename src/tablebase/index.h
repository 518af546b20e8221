#pragma once
// The index rule of the tables: the squares of the men of a position, as two
// piece lists, give the byte offset of that position in a table file.
//
// Every table numbers its positions the same way: fold the board by its
// symmetries, number the pair of kings, number the men of one group over the
// squares left to them, and append the other men as digits. One routine does
// this for all 220 tables from a plan made out of the ending's letters.

#include <cstdint>

namespace tablebase {

// A side's men: 0 king, 1-3 queens, 4-6 rooks, 7-9 bishops, 10-12 knights,
// 13-16 pawns; -1 in a free place.
constexpr int TbListSize = 17;
using TbPieceList = std::int32_t[TbListSize];
constexpr int TbQueenPlace = 1, TbRookPlace = 4, TbBishopPlace = 7, TbKnightPlace = 10, TbPawnPlace = 13;

constexpr int TbRowCount = 111;  // row 0, the bare kings, has no tables
// Ids 1-5 hold three men, 6-35 four, 36-110 five.
constexpr int TbFirstFourMenRow = 6;
constexpr int TbFirstFiveMenRow = 36;

// Piece classes: the first index of the square and base tables. A pawn is
// class 0 when its owner waits (no attack on the other king is excluded)
// and class 1 when its owner moves.
enum TbClass : int {
    TbWaitingPawn = 0,
    TbMovingPawn = 1,
    TbKnightClass = 2,
    TbBishopClass = 3,
    TbRookClass = 4,
    TbQueenClass = 5,
};
constexpr int TbClassCount = 6;

// King pairs: the first king on files a-d (pawn form), or on the ten
// squares of the a1-d1-d4 triangle (plain form).
constexpr int TbPawnPairs = 1806;
constexpr int TbPlainPairs = 462;
constexpr std::int16_t TbNoPair = 4000;  // kings equal or touching
constexpr std::uint8_t TbNoSquare = 255;

// Running number of the squares open to a man of a class next to a king
// (the anchor), and how many there are.
extern std::uint8_t squareIndex[TbClassCount][64][64];
extern std::uint8_t squareCount[TbClassCount][64];
extern std::int16_t kingPairPawn[64][64];
extern std::int16_t kingPairPlain[64][64];

// Where each king pair's numbers start for one man or a pair of men, in the
// pawn form (over kingPairPawn) or the plain form (over kingPairPlain).
struct TbBaseForm {
    std::uint32_t singleBase[TbClassCount][TbPawnPairs];
    std::uint32_t singleTotal[TbClassCount];
    std::uint32_t pairBase[TbClassCount][TbClassCount][TbPawnPairs];
    std::uint32_t pairTotal[TbClassCount][TbClassCount];
};
extern TbBaseForm pawnForm;
extern TbBaseForm plainForm;

// Builds the square, king-pair and base tables; later calls do nothing.
void tbBuildIndexTables();

// Row id of an ending's name such as "kqkr", or 0 when no row has it.
int tbRowId(const char* name);
const char* tbRowName(int rowId);
// Size in bytes of the table of `rowId` for `side` (0: the row's first side moves).
std::uint32_t tbPositions(int rowId, int side);
// What the numbering itself would need: a few tables end before it does.
std::uint32_t tbFormulaSize(int rowId, int side);
// Where the positions just after a double pawn step start, in the rows with
// a pawn on each side; 0 in the others.
std::uint32_t tbEnPassantStart(int rowId, int side);

// Index of a legal position in the table of `rowId` and `side`. `firstList`
// and `secondList` are the men of the row's first and second side, `epSquare`
// the en passant target or -1, `swapped` 1 when the first side is Black.
std::uint32_t tbIndexOf(int rowId, int side, const std::int32_t* firstList, const std::int32_t* secondList,
                        int epSquare, int swapped);

}  // namespace tablebase
