// The per-think set-up: everything phase-dependent is fixed here once, so
// that the search only keeps sums up to date.

#include "eval/setup.h"

#include <algorithm>
#include <cassert>
#include <iterator>

#include "position/phase.h"
#include "board/keys.h"
#include "eval/pst.h"

namespace eval {

using board::Position;

int rootPieceCount[2];

namespace {

constexpr int SlotsWithFixedType = 8;  // king to knights; pawn slots may promote

bool onBoard(const Position& root, int id) { return root.pieceSquare[id] != board::NoSquare; }
int colourOf(int id) { return board::isBlackId(id) ? board::Black : board::White; }

// Pieces and pawns by colour; a promoted pawn slot counts by its new type.
void countMen(Position& root) {
    root.pieceCount[0] = root.pieceCount[1] = 0;
    root.pawnCount[0] = root.pawnCount[1] = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        if (!onBoard(root, id)) continue;
        const int type = root.pieceType[id];
        if (type >= board::Queen && type <= board::Knight) ++root.pieceCount[colourOf(id)];
        if (board::isPawnType(type)) ++root.pawnCount[colourOf(id)];
    }
}

// Values follow types; a FEN set-up leaves them all 0 until here.
void rewriteMaterial(Position& root) {
    for (int c = board::White; c <= board::Black; ++c)
        for (int slot = 0; slot < SlotsWithFixedType; ++slot) {
            const int id = board::idBase(board::Color(c)) + slot;
            root.pieceType[id] = board::startType[id];
        }
    root.pieceType[board::NoPiece] = board::NoType;
    root.materialBalance = 0;
    root.materialTotal[0] = root.materialTotal[1] = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        const int type = root.pieceType[id];
        root.pieceValue[id] = board::typeValue[type & 7];
        if (!onBoard(root, id) || type == board::King) continue;
        const int value = root.pieceValue[id];
        root.materialBalance += board::isBlackId(id) ? -value : value;
        if (type >= board::Queen && type <= board::Knight) root.materialTotal[colourOf(id)] += value;
    }
    root.pieceValue[board::NoPiece] = 0;
    root.lastMove = 0;
}

// The root rule looks at castling too, to tell the two middle-game classes
// apart; with few men and no pawn it keeps class 2 or 3 for five or more
// pieces, which the search's shorter rule would call class 5.
int rootPhaseClass(const Position& root) {
    const int pieces = root.pieceCount[0] + root.pieceCount[1];
    const int pawns = root.pawnCount[0] + root.pawnCount[1];
    const bool bothLow = root.materialTotal[0] < position::EndgameMaterial &&
                         root.materialTotal[1] < position::EndgameMaterial;
    if (pieces <= position::MiddlePieces || pawns < position::MiddlePawns) {
        if (pieces == 0) return pawns != 0 ? position::PhasePawnEnding : position::PhaseNoPawns;
        if (pieces <= 4 && pawns == 0) return position::PhaseNoPawns;
        return bothLow ? position::PhaseEndgame : position::PhaseHeavy;
    }
    if (bothLow) return position::PhaseEndgame;
    const bool settled = std::all_of(std::begin(root.castleState), std::end(root.castleState),
                                     [](std::int32_t state) { return state != board::CastleRight; });
    return settled ? position::PhaseMiddleSettled : position::PhaseMiddleOpen;
}

// Only real pawns mark a file; a promoted piece in a pawn slot doesn't.
void setPawnFiles(Position& root) {
    root.pawnFiles[0] = root.pawnFiles[1] = 0;
    for (int c = board::White; c <= board::Black; ++c)
        for (int slot = board::SlotPawnA; slot <= board::SlotPawnH; ++slot) {
            const int id = board::idBase(board::Color(c)) + slot;
            if (onBoard(root, id) && root.pieceType[id] == board::pawnTypeOf(board::Color(c)))
                root.pawnFiles[c] |= 1 << board::fileOf(root.pieceSquare[id]);
        }
}

// The one full sum of the tables; the search keeps it up to date after this.
int pieceSquareSum(const Position& root) {
    int sum = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        if (!onBoard(root, id)) continue;
        const int type = root.pieceType[id];
        const int sq = root.pieceSquare[id];
        assert(type <= (board::isBlackId(id) ? board::BlackPawn : board::WhitePawn));
        sum += board::isBlackId(id) ? -position::pstBlack[type][sq] : position::pstWhite[type][sq];
    }
    return sum;
}

}  // namespace

// A promoted queen weighs like any queen, so the sum is cut at the full set.
int gamePhase(const Position& root) {
    int phase = 0;
    for (int id = 0; id < board::PieceIdCount; ++id)
        if (onBoard(root, id)) phase += position::phaseWeight[root.pieceType[id] & 7];
    return std::min(phase, position::FullPhase);
}

// Runs once per think on the root, before any search uses the tables.
int setupEvaluation(Position& root) {
    countMen(root);
    rootPieceCount[0] = root.pieceCount[0];
    rootPieceCount[1] = root.pieceCount[1];
    rewriteMaterial(root);
    root.phaseClass = rootPhaseClass(root);
    setPawnFiles(root);
    buildPieceSquareTables(gamePhase(root));
    root.pstScore = pieceSquareSum(root);
    return root.phaseClass;
}

position::NodeState prepareRootNode(Position& root) {
    board::computeKeys(root);
    setupEvaluation(root);
    root.ply = 0;
    root.fiftyCounter = 0;
    position::NodeState node;
    position::buildNodeState(node, root);
    position::setPromotedMask(node, root);
    return node;
}

}  // namespace eval
