// The twelve source tables and their blend by phase into the search's tables.

#include "eval/pst.h"

#include "board/types.h"

namespace eval {


namespace {

// Source tables as White looks at the board: entry 0 is a8, entry 7 h8,
// entry 56 a1. "End" weighs with 24 - phase, "Middle" with the phase.
constexpr std::int16_t pstKingEnd[64] = {
     -74,  -35,  -18,  -18,  -11,   15,    4,  -17,  // rank 8
     -12,   17,   14,   17,   17,   38,   23,   11,  // rank 7
      10,   17,   23,   15,   20,   45,   44,   13,  // rank 6
      -8,   22,   24,   27,   26,   33,   26,    3,  // rank 5
     -18,   -4,   21,   24,   27,   23,    9,  -11,  // rank 4
     -19,   -3,   11,   21,   23,   16,    7,   -9,  // rank 3
     -27,  -11,    4,   13,   14,    4,   -5,  -17,  // rank 2
     -53,  -34,  -21,  -11,  -28,  -14,  -24,  -43,  // rank 1
};

constexpr std::int16_t pstKingMiddle[64] = {
     -65,   23,   16,  -15,  -56,  -34,    2,   13,  // rank 8
      29,   -1,  -20,   -7,   -8,   -4,  -38,  -29,  // rank 7
      -9,   24,    2,  -16,  -20,    6,   22,  -22,  // rank 6
     -17,  -20,  -12,  -27,  -30,  -25,  -14,  -36,  // rank 5
     -49,   -1,  -27,  -39,  -46,  -44,  -33,  -51,  // rank 4
     -14,  -14,  -22,  -46,  -44,  -30,  -15,  -27,  // rank 3
       1,    7,   -8,  -64,  -43,  -16,    9,    8,  // rank 2
     -15,   36,   12,  -54,    8,  -28,   24,   14,  // rank 1
};

constexpr std::int16_t pstQueenEnd[64] = {
      -9,   22,   22,   27,   27,   19,   10,   20,  // rank 8
     -17,   20,   32,   41,   58,   25,   30,    0,  // rank 7
     -20,    6,    9,   49,   47,   35,   19,    9,  // rank 6
       3,   22,   24,   45,   57,   40,   57,   36,  // rank 5
     -18,   28,   19,   47,   31,   34,   39,   23,  // rank 4
     -16,  -27,   15,    6,    9,   17,   10,    5,  // rank 3
     -22,  -23,  -30,  -16,  -16,  -23,  -36,  -32,  // rank 2
     -33,  -28,  -22,  -43,   -5,  -32,  -20,  -41,  // rank 1
};

constexpr std::int16_t pstQueenMiddle[64] = {
     -28,    0,   29,   12,   59,   44,   43,   45,  // rank 8
     -24,  -39,   -5,    1,  -16,   57,   28,   54,  // rank 7
     -13,  -17,    7,    8,   29,   56,   47,   57,  // rank 6
     -27,  -27,  -16,  -16,   -1,   17,   -2,    1,  // rank 5
      -9,  -26,   -9,  -10,   -2,   -4,    3,   -3,  // rank 4
     -14,    2,  -11,   -2,   -5,    2,   14,    5,  // rank 3
     -35,   -8,   11,    2,    8,   15,   -3,    1,  // rank 2
      -1,  -18,   -9,   10,  -15,  -25,  -31,  -50,  // rank 1
};

constexpr std::int16_t pstRookEnd[64] = {
      13,   10,   18,   15,   12,   12,    8,    5,  // rank 8
      11,   13,   13,   11,   -3,    3,    8,    3,  // rank 7
       7,    7,    7,    5,    4,   -3,   -5,   -3,  // rank 6
       4,    3,   13,    1,    2,    1,   -1,    2,  // rank 5
       3,    5,    8,    4,   -5,   -6,   -8,  -11,  // rank 4
      -4,    0,   -5,   -1,   -7,  -12,   -8,  -16,  // rank 3
      -6,   -6,    0,    2,   -9,   -9,  -11,   -3,  // rank 2
      -9,    2,    3,   -1,   -5,  -13,    4,  -20,  // rank 1
};

constexpr std::int16_t pstRookMiddle[64] = {
      32,   42,   32,   51,   63,    9,   31,   43,  // rank 8
      27,   32,   58,   62,   80,   67,   26,   44,  // rank 7
      -5,   19,   26,   36,   17,   45,   61,   16,  // rank 6
     -24,  -11,    7,   26,   24,   35,   -8,  -20,  // rank 5
     -36,  -26,  -12,   -1,    9,   -7,    6,  -23,  // rank 4
     -45,  -25,  -16,  -17,    3,    0,   -5,  -33,  // rank 3
     -44,  -16,  -20,   -9,   -1,   11,   -6,  -71,  // rank 2
     -19,  -13,    1,   17,   16,    7,  -37,  -26,  // rank 1
};

constexpr std::int16_t pstBishopEnd[64] = {
     -14,  -21,  -11,   -8,   -7,   -9,  -17,  -24,  // rank 8
      -8,   -4,    7,  -12,   -3,  -13,   -4,  -14,  // rank 7
       2,   -8,    0,   -1,   -2,    6,    0,    4,  // rank 6
      -3,    9,   12,    9,   14,   10,    3,    2,  // rank 5
      -6,    3,   13,   19,    7,   10,   -3,   -9,  // rank 4
     -12,   -3,    8,   10,   13,    3,   -7,  -15,  // rank 3
     -14,  -18,   -7,   -1,    4,   -9,  -15,  -27,  // rank 2
     -23,   -9,  -23,   -5,   -9,  -16,   -5,  -17,  // rank 1
};

constexpr std::int16_t pstBishopMiddle[64] = {
     -29,    4,  -82,  -37,  -25,  -42,    7,   -8,  // rank 8
     -26,   16,  -18,  -13,   30,   59,   18,  -47,  // rank 7
     -16,   37,   43,   40,   35,   50,   37,   -2,  // rank 6
      -4,    5,   19,   50,   37,   37,    7,   -2,  // rank 5
      -6,   13,   13,   26,   34,   12,   10,    4,  // rank 4
       0,   15,   15,   15,   14,   27,   18,   10,  // rank 3
       4,   15,   16,    0,    7,   21,   33,    1,  // rank 2
     -33,   -3,  -14,  -21,  -13,  -12,  -39,  -21,  // rank 1
};

constexpr std::int16_t pstKnightEnd[64] = {
     -58,  -38,  -13,  -28,  -31,  -27,  -63,  -99,  // rank 8
     -25,   -8,  -25,   -2,   -9,  -25,  -24,  -52,  // rank 7
     -24,  -20,   10,    9,   -1,   -9,  -19,  -41,  // rank 6
     -17,    3,   22,   22,   22,   11,    8,  -18,  // rank 5
     -18,   -6,   16,   25,   16,   17,    4,  -18,  // rank 4
     -23,   -3,   -1,   15,   10,   -3,  -20,  -22,  // rank 3
     -42,  -20,  -10,   -5,   -2,  -20,  -23,  -44,  // rank 2
     -29,  -51,  -23,  -15,  -22,  -18,  -50,  -64,  // rank 1
};

constexpr std::int16_t pstKnightMiddle[64] = {
    -167,  -89,  -34,  -49,   61,  -97,  -15, -107,  // rank 8
     -73,  -41,   72,   36,   23,   62,    7,  -17,  // rank 7
     -47,   60,   37,   65,   84,  129,   73,   44,  // rank 6
      -9,   17,   19,   53,   37,   69,   18,   22,  // rank 5
     -13,    4,   16,   13,   28,   19,   21,   -8,  // rank 4
     -23,   -9,   12,   10,   19,   17,   25,  -16,  // rank 3
     -29,  -53,  -12,   -3,   -1,   18,  -14,  -19,  // rank 2
    -105,  -21,  -58,  -33,  -17,  -28,  -19,  -23,  // rank 1
};

constexpr std::int16_t pstPawnEnd[64] = {
       0,    0,    0,    0,    0,    0,    0,    0,  // rank 8
     178,  173,  158,  134,  147,  132,  165,  187,  // rank 7
      94,  100,   85,   67,   56,   53,   82,   84,  // rank 6
      32,   24,   13,    5,   -2,    4,   17,   17,  // rank 5
      13,    9,   -3,   -7,   -7,   -8,    3,   -1,  // rank 4
       4,    7,   -6,    1,    0,   -5,   -1,   -8,  // rank 3
      13,    8,    8,   10,   13,    0,    2,   -7,  // rank 2
       0,    0,    0,    0,    0,    0,    0,    0,  // rank 1
};

constexpr std::int16_t pstPawnMiddle[64] = {
       0,    0,    0,    0,    0,    0,    0,    0,  // rank 8
      98,  134,   61,   95,   68,  126,   34,  -11,  // rank 7
      -6,    7,   26,   31,   65,   56,   25,  -20,  // rank 6
     -14,   13,    6,   21,   23,   12,   17,  -23,  // rank 5
     -27,   -2,   -5,   12,   17,    6,   10,  -25,  // rank 4
     -26,   -4,   -4,  -10,    3,    3,   33,  -12,  // rank 3
     -35,   -1,  -20,  -23,  -15,   24,   38,  -22,  // rank 2
       0,    0,    0,    0,    0,    0,    0,    0,  // rank 1
};

struct SourcePair {
    const std::int16_t* end;
    const std::int16_t* middle;
};

// By piece type King..Knight, then the pawn pair.
constexpr SourcePair sourcePairs[6] = {
    {pstKingEnd, pstKingMiddle},     {pstQueenEnd, pstQueenMiddle},
    {pstRookEnd, pstRookMiddle},     {pstBishopEnd, pstBishopMiddle},
    {pstKnightEnd, pstKnightMiddle}, {pstPawnEnd, pstPawnMiddle},
};

constexpr int FullPhase = 24;
constexpr int PstScale = 3;

// One blended entry; C++ division truncates toward zero as the blend wants.
int blend(const SourcePair& pair, int index, int phase) {
    return (pair.end[index] * (FullPhase - phase) + pair.middle[index] * phase) * PstScale / FullPhase;
}

}  // namespace

// White reads a source table flipped rank for rank (entry 0 is a8), Black
// reads it unflipped, which mirrors it onto Black's side of the board.
void buildPieceSquareTables(int phase) {
    for (int t = board::King; t <= board::WhitePawn; ++t) {
        const int blackRow = t == board::WhitePawn ? board::BlackPawn : t;
        for (int sq = 0; sq < 64; ++sq) {
            position::pstWhite[t][sq] = blend(sourcePairs[t], board::flipRank(sq), phase);
            position::pstBlack[blackRow][sq] = blend(sourcePairs[t], sq, phase);
        }
    }
}

}  // namespace eval
