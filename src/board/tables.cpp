#include "board/tables.h"

#include <cmath>
#include <cstdlib>

namespace board {

const int startSquare[PieceIdCount] = {
    E1, D1, A1, H1, C1, F1, B1, G1, A2, B2, C2, D2, E2, F2, G2, H2,
    E8, D8, A8, H8, C8, F8, B8, G8, A7, B7, C7, D7, E7, F7, G7, H7,
};
const int startType[PieceIdCount] = {
    King, Queen, Rook, Rook, Bishop, Bishop, Knight, Knight,
    WhitePawn, WhitePawn, WhitePawn, WhitePawn, WhitePawn, WhitePawn, WhitePawn, WhitePawn,
    King, Queen, Rook, Rook, Bishop, Bishop, Knight, Knight,
    BlackPawn, BlackPawn, BlackPawn, BlackPawn, BlackPawn, BlackPawn, BlackPawn, BlackPawn,
};
const int startValue[PieceIdCount] = {
    KingValue, QueenValue, RookValue, RookValue, BishopValue, BishopValue, KnightValue, KnightValue,
    PawnValue, PawnValue, PawnValue, PawnValue, PawnValue, PawnValue, PawnValue, PawnValue,
    KingValue, QueenValue, RookValue, RookValue, BishopValue, BishopValue, KnightValue, KnightValue,
    PawnValue, PawnValue, PawnValue, PawnValue, PawnValue, PawnValue, PawnValue, PawnValue,
};

MoveStep whiteMoves[5][64][MoveStepRoom];
MoveStep blackMoves[5][64][MoveStepRoom];
PawnStep pawnMoves[7][64][PawnStepRoom];
std::int16_t rayStep[64][64];
const int lineKind[18] = {0, 1, 0, 0, 0, 0, 3, 2, 1, 2, 3, 0, 0, 0, 0, 3, 0, 3};
std::uint8_t kingDistance[64][64];
std::uint8_t reductionTable[32][64];
std::uint8_t knightCatchesPawn[64][64];

const char pieceLetterTable[15] = "KQRBNPPRDTFCPP";
const char* pieceLetters = pieceLetterTable;

namespace {

struct PieceGeometry {
    int directionCount;
    int whiteDirections[8];
    int blackDirections[8];
    bool slides;
};

// Direction order decides generation order, so each colour has its own.
constexpr PieceGeometry geometry[5] = {
    {8, {8, -8, 1, -1, 7, -7, 9, -9}, {-8, 8, 1, -1, -9, 9, -7, 7}, false},          // king
    {8, {8, -8, 1, -1, 7, -7, 9, -9}, {-8, 8, 1, -1, -9, 9, -7, 7}, true},           // queen
    {4, {8, -8, 1, -1}, {-8, 8, 1, -1}, true},                                       // rook
    {4, {7, -7, 9, -9}, {-9, 9, -7, 7}, true},                                       // bishop
    {8, {10, -10, 17, -17, 15, -15, 6, -6}, {-6, 6, -15, 15, -17, 17, -10, 10}, false},  // knight
};

void buildPieceList(MoveStep* list, int from, const int* directions, int count, bool slides) {
    int n = 0;
    for (int d = 0; d < count; ++d) {
        int ray[8];
        int length = 0;
        for (int sq = from; stepExists(sq, sq + directions[d]);) {
            sq += directions[d];
            ray[length++] = sq;
            if (!slides) break;
        }
        for (int i = 0; i < length; ++i) {
            list[n].to = std::uint8_t(ray[i]);
            list[n].skip = std::uint8_t(slides ? length - i : 1);
            ++n;
        }
    }
    list[n].to = NoSquare;
    list[n].skip = 0;
}

void buildPawnList(PawnStep* list, int from, Color c) {
    const int up = c == White ? 8 : -8;
    const int startRank = c == White ? 1 : 6;
    const int promotionFromRank = c == White ? 6 : 1;
    const int lastRank = c == White ? 7 : 0;
    const int lowerCapture = c == White ? 7 : -9;
    const int higherCapture = c == White ? 9 : -7;
    int n = 0;
    if (rankOf(from) != lastRank) {
        const int promo = rankOf(from) == promotionFromRank ? PawnStepPromotion : 0;
        const bool onStart = rankOf(from) == startRank;
        list[n++] = {std::uint8_t(from + up), std::uint8_t(onStart ? 2 : 1), std::uint8_t(PawnStepPush | promo)};
        if (onStart) list[n++] = {std::uint8_t(from + 2 * up), 1, PawnStepPush};
        if (fileOf(from) > 0) list[n++] = {std::uint8_t(from + lowerCapture), 1, std::uint8_t(promo)};
        if (fileOf(from) < 7) list[n++] = {std::uint8_t(from + higherCapture), 1, std::uint8_t(promo)};
    }
    list[n] = {NoSquare, 0, 0};
}

int sign(int x) { return (x > 0) - (x < 0); }

int computeRayStep(int a, int b) {
    if (a == b) return 0;
    const int df = fileOf(b) - fileOf(a);
    const int dr = rankOf(b) - rankOf(a);
    if (dr == 0) return sign(df);
    if (df == 0) return 8 * sign(dr);
    if (std::abs(df) == std::abs(dr)) return 8 * sign(dr) + sign(df);
    const int diff = b - a;
    const int ad = std::abs(diff);
    if (std::abs(df) <= 2 && (ad == 6 || ad == 10 || ad == 15 || ad == 17)) return diff;
    return 0;
}

bool isKnightStep(int a, int b) {
    if (b < 0 || b > 63) return false;
    const int ad = std::abs(b - a);
    return std::abs(fileOf(a) - fileOf(b)) <= 2 && (ad == 6 || ad == 10 || ad == 15 || ad == 17);
}

int computeKnightCatchesPawn(int p, int k) {
    if (k == p) return 0;
    const int rank = rankOf(p);
    if (rank == 6)
        return isKnightStep(p, k) || isKnightStep(p + 8, k) || k == p + 8;
    if (rank == 7) return isKnightStep(p, k);
    const int promotionSquare = makeSquare(fileOf(p), 7);
    const int limit = 7 - rank < 5 ? 7 - rank : 5;
    return kingDistance[k][promotionSquare] / 2 < limit;
}

}  // namespace

void initStaticTables() {
    for (int type = King; type <= Knight; ++type) {
        const PieceGeometry& g = geometry[type];
        for (int sq = 0; sq < 64; ++sq) {
            buildPieceList(whiteMoves[type][sq], sq, g.whiteDirections, g.directionCount, g.slides);
            buildPieceList(blackMoves[type][sq], sq, g.blackDirections, g.directionCount, g.slides);
        }
    }
    for (int sq = 0; sq < 64; ++sq) {
        buildPawnList(pawnMoves[WhitePawn][sq], sq, White);
        buildPawnList(pawnMoves[BlackPawn][sq], sq, Black);
    }
    for (int a = 0; a < 64; ++a)
        for (int b = 0; b < 64; ++b) {
            rayStep[a][b] = std::int16_t(computeRayStep(a, b));
            const int df = std::abs(fileOf(a) - fileOf(b));
            const int dr = std::abs(rankOf(a) - rankOf(b));
            kingDistance[a][b] = std::uint8_t(df > dr ? df : dr);
        }
    for (int d = 0; d < 32; ++d)
        for (int m = 0; m < 64; ++m)
            reductionTable[d][m] =
                d < 2 || m < 2 ? 0 : std::uint8_t(std::log2(double(d)) * std::log2(double(m)) * 0.4);
    for (int p = 0; p < 64; ++p)
        for (int k = 0; k < 64; ++k)
            knightCatchesPawn[p][k] = p < 8 ? 0 : std::uint8_t(computeKnightCatchesPawn(p, k));
}

}  // namespace board
