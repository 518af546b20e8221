// The per-think set-up: everything phase-dependent is fixed here once, so
// that the search only keeps sums up to date.

#include "eval/setup.h"

#include <algorithm>
#include <cassert>
#include <iterator>

#include "eval/phase.h"
#include "eval/pst.h"

namespace eval {

using board::Position;

int rootPieceCount[2];

namespace {

constexpr int SlotsWithFixedType = 8;  // king to knights; pawn slots may promote

bool onBoard(const Position& position, int id) { return position.pieceSquare[id] != board::NoSquare; }
int colourOf(int id) { return board::isBlackId(id) ? board::Black : board::White; }

// Pieces and pawns by colour; a promoted pawn slot counts by its new type.
void countMen(Position& position) {
    position.pieceCount[0] = position.pieceCount[1] = 0;
    position.pawnCount[0] = position.pawnCount[1] = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        if (!onBoard(position, id)) continue;
        const int type = position.pieceType[id];
        if (type >= board::Queen && type <= board::Knight) ++position.pieceCount[colourOf(id)];
        if (board::isPawnType(type)) ++position.pawnCount[colourOf(id)];
    }
}

// Values follow types; a FEN set-up leaves them all 0 until here.
void rewriteMaterial(Position& position) {
    for (int c = board::White; c <= board::Black; ++c)
        for (int slot = 0; slot < SlotsWithFixedType; ++slot) {
            const int id = board::idBase(board::Color(c)) + slot;
            position.pieceType[id] = board::startType[id];
        }
    position.pieceType[board::NoPiece] = board::NoType;
    position.materialBalance = 0;
    position.materialTotal[0] = position.materialTotal[1] = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        const int type = position.pieceType[id];
        position.pieceValue[id] = board::typeValue[type & 7];
        if (!onBoard(position, id) || type == board::King) continue;
        const int value = position.pieceValue[id];
        position.materialBalance += board::isBlackId(id) ? -value : value;
        if (type >= board::Queen && type <= board::Knight) position.materialTotal[colourOf(id)] += value;
    }
    position.pieceValue[board::NoPiece] = 0;
    position.lastMove = 0;
}

// The root rule looks at castling too, to tell the two middle-game classes
// apart; with few men and no pawn it keeps class 2 or 3 for five or more
// pieces, which the search's shorter rule would call class 5.
int rootPhaseClass(const Position& position) {
    const int pieces = position.pieceCount[0] + position.pieceCount[1];
    const int pawns = position.pawnCount[0] + position.pawnCount[1];
    const bool bothLow = position.materialTotal[0] < EndgameMaterial && position.materialTotal[1] < EndgameMaterial;
    if (pieces <= MiddlePieces || pawns < MiddlePawns) {
        if (pieces == 0) return pawns != 0 ? PhasePawnEnding : PhaseNoPawns;
        if (pieces <= 4 && pawns == 0) return PhaseNoPawns;
        return bothLow ? PhaseEndgame : PhaseHeavy;
    }
    if (bothLow) return PhaseEndgame;
    const bool settled = std::all_of(std::begin(position.castleState), std::end(position.castleState),
                                     [](std::int32_t state) { return state != board::CastleRight; });
    return settled ? PhaseMiddleSettled : PhaseMiddleOpen;
}

// Only real pawns mark a file; a promoted piece in a pawn slot doesn't.
void setPawnFiles(Position& position) {
    position.pawnFiles[0] = position.pawnFiles[1] = 0;
    for (int c = board::White; c <= board::Black; ++c)
        for (int slot = board::SlotPawnA; slot <= board::SlotPawnH; ++slot) {
            const int id = board::idBase(board::Color(c)) + slot;
            if (onBoard(position, id) && position.pieceType[id] == board::pawnTypeOf(board::Color(c)))
                position.pawnFiles[c] |= 1 << board::fileOf(position.pieceSquare[id]);
        }
}

// The one full sum of the tables; the search keeps it up to date after this.
int pieceSquareSum(const Position& position) {
    int sum = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        if (!onBoard(position, id)) continue;
        const int type = position.pieceType[id];
        const int sq = position.pieceSquare[id];
        assert(type <= (board::isBlackId(id) ? board::BlackPawn : board::WhitePawn));
        sum += board::isBlackId(id) ? -pstBlack[type][sq] : pstWhite[type][sq];
    }
    return sum;
}

}  // namespace

// A promoted queen weighs like any queen, so the sum is cut at the full set.
int gamePhase(const Position& position) {
    int phase = 0;
    for (int id = 0; id < board::PieceIdCount; ++id)
        if (onBoard(position, id)) phase += phaseWeight[position.pieceType[id] & 7];
    return std::min(phase, FullPhase);
}

// Runs once per think on the root, before any search uses the tables.
int setupEvaluation(Position& position) {
    countMen(position);
    rootPieceCount[0] = position.pieceCount[0];
    rootPieceCount[1] = position.pieceCount[1];
    rewriteMaterial(position);
    position.phaseClass = rootPhaseClass(position);
    setPawnFiles(position);
    buildPieceSquareTables(gamePhase(position));
    position.pstScore = pieceSquareSum(position);
    return position.phaseClass;
}

}  // namespace eval
