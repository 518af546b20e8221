// Passed pawns and kings in the endings: the race of the kings to the best
// passer and its blockade, each king's distance to its own pawns, and the
// pieces that help or stop a passer when material is low. Each term is
// written for the side C that owns the pawn and signed by board::Side<C>.

#include <algorithm>

#include "board/tables.h"
#include "eval/endgame.h"
#include "eval/boardview.h"
#include "eval/setup.h"

namespace eval {

using board::Color;

namespace {

// A passer is advanced from this relative rank on (rank 4 for White).
constexpr int AdvancedRank = 3;
constexpr int LastStepRank = 6;
// Distances beyond this don't change the race any more.
constexpr int KingRaceCut = 5;
constexpr int LastStepPenalty = 300;
// By relative rank 3 to 5; a pawn one step from promotion has its own rule.
constexpr int blockedPasserPenalty[LastStepRank] = {0, 0, 0, 12, 17, 60};

constexpr int KingToPawnCost = 50;
constexpr int FarthestPawn = 7;

constexpr int BishopOnPromotionColour = 13;  // per rank
constexpr int RookBehindRank = 4;
constexpr int RookBehindBonus = 6;  // per rank
constexpr int RookCutsOffKing = 30;
constexpr int CutOffMaxPieces = 2;
constexpr int CutOffMaxMaterial = board::RookValue + board::BishopValue;
constexpr int KnightCatchesPasser = 30;  // per rank
constexpr int TradeDownBonus = 80;
// Two connected passers on the sixth and seventh beat a lone rook.
constexpr int ConnectedAgainstRook = 2328;
constexpr int ConnectedFirstRank = 5;
constexpr int ConnectedKingDistance = 3;

const position::SearchBoard& sb = position::searchBoard;

int kingOf(Color c) { return sb.pieceSquare[board::idBase(c) + board::SlotKing]; }

bool onBoard(int id) { return sb.pieceSquare[id] != board::NoSquare; }

// C's best passer, 0 for none.
template<Color C>
int bestPasser(const EvalTerms& t) {
    if constexpr (C == board::White)
        return t.bestWhitePasser;
    else
        return t.bestBlackPasser;
}

// C's best passer if it stands on its fourth rank or beyond, else NoSquare.
template<Color C>
int advancedPasser(const EvalTerms& t) {
    const int sq = bestPasser<C>(t);
    return sq != 0 && board::Side<C>::relRank(sq) >= AdvancedRank ? sq : int(board::NoSquare);
}

// Own king near the stop square and enemy king far from it, worth more the
// further the pawn has gone; a stop square held by anything costs the owner
// a blockade penalty, and on the seventh a defending king next to it as well.
template<Color C>
void kingRace(EvalTerms& t) {
    using S = board::Side<C>;
    const int sq = advancedPasser<C>(t);
    if (sq == board::NoSquare) return;
    const int r = S::relRank(sq);
    const int stop = sq + S::up;
    const int enemyDistance = board::kingDistance[kingOf(S::them)][stop];
    const int de = std::min(enemyDistance, KingRaceCut);
    const int dOwn = std::min(int(board::kingDistance[kingOf(C)][stop]), KingRaceCut);
    t.positional += S::sign * ((de * 19) / 4 - dOwn * 2) * r * 4;
    const bool stopHeld = sb.boardPiece[stop] != board::NoPiece;
    if (r == LastStepRank) {
        if (enemyDistance < 2 || stopHeld) t.pawnScore -= S::sign * LastStepPenalty;
    } else if (stopHeld) {
        t.pawnScore -= S::sign * blockedPasserPenalty[r];
    }
}

// A king far from all its pawns can't defend them or escort them.
template<Color C>
void kingToPawns(const position::NodeState& node, EvalTerms& t) {
    using S = board::Side<C>;
    if (node.pawnCount[C] == 0) return;
    const int king = kingOf(C);
    int nearest = FarthestPawn;
    for (int id = S::id(board::SlotPawnA); id <= S::id(board::SlotPawnH); ++id) {
        if (!onBoard(id) || !board::isPawnType(sb.pieceType[id])) continue;
        nearest = std::min(nearest, int(board::kingDistance[king][sb.pieceSquare[id]]));
    }
    t.proximity -= S::sign * KingToPawnCost * nearest;
}

// A defending bishop of the promotion square's colour can stop the pawn. The
// colour of a bishop is read from its slot, not from where it stands.
template<Color C>
void bishopAgainstPasser(EvalTerms& t, int sq) {
    using S = board::Side<C>;
    const int promotion = S::rel(board::makeSquare(board::fileOf(sq), 7));
    const bool light = ((board::fileOf(promotion) + board::rankOf(promotion)) & 1) != 0;
    using T = board::Side<S::them>;
    if (onBoard(light ? T::lightBishopId : T::darkBishopId))
        t.positional -= S::sign * BishopOnPromotionColour * S::relRank(sq);
}

// A rook behind a far passer, on the side of the pawn's own back rank and
// whatever stands between: its owner gains, whoever owns the pawn.
template<Color C>
void rooksBehindPasser(EvalTerms& t, int sq) {
    const int r = board::Side<C>::relRank(sq);
    if (r < RookBehindRank) return;
    for (const Color rookSide : {board::White, board::Black}) {
        bool behind = false;
        for (const int slot : {board::SlotRookA, board::SlotRookH}) {
            const int rook = sb.pieceSquare[board::idBase(rookSide) + slot];
            behind = behind || (rook != board::NoSquare && board::fileOf(rook) == board::fileOf(sq) &&
                                board::Side<C>::relRank(rook) < r);
        }
        if (behind) t.positional += (rookSide == board::White ? 1 : -1) * RookBehindBonus * r;
    }
}

// Against little material, each own rook on a file between the passer and
// the enemy king keeps that king out of the race.
template<Color C>
void rooksCuttingOff(const position::NodeState& node, EvalTerms& t, int sq) {
    using S = board::Side<C>;
    if (node.pieceCount[S::them] > CutOffMaxPieces || node.materialTotal[S::them] > CutOffMaxMaterial) return;
    const int pawnFile = board::fileOf(sq);
    const int kingFile = board::fileOf(kingOf(S::them));
    for (const int slot : {board::SlotRookA, board::SlotRookH}) {
        const int rook = sb.pieceSquare[S::id(slot)];
        if (rook == board::NoSquare) continue;
        const int f = board::fileOf(rook);
        if (f > std::min(pawnFile, kingFile) && f < std::max(pawnFile, kingFile))
            t.positional += S::sign * RookCutsOffKing;
    }
}

// An enemy knight that reaches the pawn's path in time. The table is made
// for a pawn running to rank 8, so Black's squares are mirrored into it.
template<Color C>
void knightAgainstPasser(EvalTerms& t, int sq) {
    using S = board::Side<C>;
    const int pawn = S::rel(sq);
    for (const int slot : {board::SlotKnightG, board::SlotKnightB}) {
        const int knight = sb.pieceSquare[S::enemyId(slot)];
        if (knight != board::NoSquare && board::knightCatchesPawn[pawn][S::rel(knight)]) {
            t.positional -= S::sign * KnightCatchesPasser * S::relRank(sq);
            return;
        }
    }
}

// C is ahead in material (or level) and in pawns, with a pawn score for it.
template<Color C>
bool aheadWithPawns(const position::NodeState& node, const EvalTerms& t) {
    using S = board::Side<C>;
    return S::sign * node.materialBalance >= 0 && S::sign * t.pawnScore >= 1 &&
           node.pawnCount[C] > node.pawnCount[S::them];
}

bool ownPawnOn(int sq, int pawnType) { return sb.pieceType[sb.boardPiece[sq]] == pawnType; }

// Two connected passers far up the board against a lone rook: the best
// passer with a free stop square, the enemy king away, and a partner beside
// it, or one rank behind with the square beside the passer free.
template<Color C>
void connectedPassersAgainstRook(const position::NodeState& node, EvalTerms& t) {
    using S = board::Side<C>;
    const int sq = bestPasser<C>(t);
    if (sq == 0 || S::relRank(sq) < ConnectedFirstRank) return;
    if (node.materialTotal[S::them] != board::RookValue || node.pawnCount[C] < 2) return;
    if (sb.boardPiece[sq + S::up] != board::NoPiece) return;
    if (board::kingDistance[sq][kingOf(S::them)] <= ConnectedKingDistance) return;
    const int f = board::fileOf(sq);
    const auto partner = [&](int side) {
        return ownPawnOn(sq + side, S::pawnType) ||
               (ownPawnOn(sq + side - S::up, S::pawnType) && sb.boardPiece[sq + side] == board::NoPiece);
    };
    if ((f > 0 && partner(-1)) || (f < 7 && partner(1))) t.positional += S::sign * ConnectedAgainstRook;
}

// The terms of the best passers themselves, for one side.
template<Color C>
void passerPieces(const position::NodeState& node, EvalTerms& t) {
    const int best = bestPasser<C>(t);
    if (best != 0) rooksBehindPasser<C>(t, best);
    const int sq = advancedPasser<C>(t);
    if (sq == board::NoSquare) return;
    bishopAgainstPasser<C>(t, sq);
    rooksCuttingOff<C>(node, t, sq);
    knightAgainstPasser<C>(t, sq);
}

}  // namespace

void evaluateKingRace(const position::NodeState& node, EvalTerms& terms) {
    kingRace<board::White>(terms);
    kingRace<board::Black>(terms);
}

void evaluateKingToPawns(const position::NodeState& node, EvalTerms& terms) {
    kingToPawns<board::White>(node, terms);
    kingToPawns<board::Black>(node, terms);
}

// The side ahead in pawns gains from every piece traded since the root.
void evaluatePasserEndgame(const position::NodeState& node, EvalTerms& terms) {
    passerPieces<board::White>(node, terms);
    passerPieces<board::Black>(node, terms);
    if (aheadWithPawns<board::White>(node, terms)) {
        if (node.pieceCount[board::Black] < rootPieceCount[board::Black]) terms.positional += TradeDownBonus;
    } else if (aheadWithPawns<board::Black>(node, terms)) {
        if (node.pieceCount[board::White] < rootPieceCount[board::White]) terms.positional -= TradeDownBonus;
    }
    connectedPassersAgainstRook<board::White>(node, terms);
    connectedPassersAgainstRook<board::Black>(node, terms);
}

}  // namespace eval
