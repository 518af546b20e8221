// Endings without pawns: dead material, the drive of the lone king, and the
// material signatures that usually draw. The passed pawn terms of the
// endings live in passerterms.cpp.

#include "eval/endgame.h"

#include <algorithm>

#include "board/side.h"
#include "board/tables.h"
#include "board/types.h"

namespace eval {

using board::Color;

namespace {

// Pieces on the board by colour and type, kings left out; a promoted piece
// counts by its type.
struct PieceCounts {
    int byType[2][board::NoType];
    int total;
};

// Read off searchBoard, since a node keeps no per-type counts.
PieceCounts countPieces() {
    PieceCounts counts{};
    const position::SearchBoard& sb = position::searchBoard;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        const int type = sb.pieceType[id];
        if (sb.pieceSquare[id] == board::NoSquare || type == board::King || type >= board::NoType) continue;
        ++counts.byType[board::isBlackId(id)][type];
        ++counts.total;
    }
    return counts;
}

// Bishops and knights alike: neither mates alone.
int minorCount(const PieceCounts& counts, Color c) {
    return counts.byType[c][board::Bishop] + counts.byType[c][board::Knight];
}

// Material that can't mate by force, whatever the position.
bool isDeadMaterial(const PieceCounts& counts) {
    if (counts.total == 0) return true;
    if (counts.total == 1) return minorCount(counts, board::White) + minorCount(counts, board::Black) == 1;
    if (counts.total == 2) {
        if (counts.byType[board::White][board::Knight] == 2 || counts.byType[board::Black][board::Knight] == 2)
            return true;
        return minorCount(counts, board::White) == 1 && minorCount(counts, board::Black) == 1;
    }
    return false;
}

// Lines between a king and the nearest edge: 0 on the edge, 3 in the centre.
int edgeDistance(int sq) {
    const int file = board::fileOf(sq);
    const int rank = board::rankOf(sq);
    return std::min({file, 7 - file, rank, 7 - rank});
}

// King steps to the nearer of two corners.
int cornerDistance(int sq, int cornerA, int cornerB) {
    return std::min(board::kingDistance[sq][cornerA], board::kingDistance[sq][cornerB]);
}

// How far the strong side is from mating: the weak king away from the edge
// (or from the right corner) and the kings apart. Small beside material, it
// only orders the mating play.
template<Color Strong>
int drivePenalty(const PieceCounts& counts) {
    const position::SearchBoard& sb = position::searchBoard;
    const int weakKing = sb.pieceSquare[board::idBase(board::opposite(Strong))];
    const int strongKing = sb.pieceSquare[board::idBase(Strong)];
    const int kings = board::kingDistance[strongKing][weakKing];
    const int* own = counts.byType[Strong];
    const int heavy = own[board::Queen] + own[board::Rook];

    if (heavy >= 2) return 2 * edgeDistance(weakKing);
    if (heavy == 1) return kings + 2 * edgeDistance(weakKing);
    if (own[board::Bishop] == 2) {
        const int corner = std::min(cornerDistance(weakKing, board::A1, board::H8),
                                    cornerDistance(weakKing, board::H1, board::A8));
        return kings + 2 * corner;
    }
    if (own[board::Bishop] == 1 && own[board::Knight] >= 1) {
        // The light-squared bishop slot decides which corners mate.
        const bool light = sb.pieceSquare[board::Side<Strong>::lightBishopId] != board::NoSquare;
        const int corner = light ? cornerDistance(weakKing, board::H1, board::A8)
                                 : cornerDistance(weakKing, board::A1, board::H8);
        return kings + 2 * corner;
    }
    return 0;
}

// Material signatures whose extra piece rarely wins.
struct SignatureChange {
    int white;
    int black;
    int change;
};
constexpr int Rook = board::RookValue;
constexpr int Minor = board::BishopValue;
constexpr SignatureChange signatureChanges[] = {
    {Rook + Minor, Rook, -936}, {Rook, Rook + Minor, +936},  // rook and minor against rook
    {Rook, Minor, -468},        {Minor, Rook, +468},         // rook against minor
    {2 * Minor, Minor, -936},   {Minor, 2 * Minor, +936},    // two minors against minor
};

}  // namespace

// Without pawns only material and the mating drive count, and material that
// can't mate is a draw outright.
int evaluateNoPawnEnding(const position::NodeState& node) {
    const PieceCounts counts = countPieces();
    if (isDeadMaterial(counts)) return 0;
    const int m = node.materialBalance;
    if (m > 0) return m - drivePenalty<board::White>(counts);
    if (m < 0) return m + drivePenalty<board::Black>(counts);
    return 0;
}

// Pulls the score of a nominally won pawnless ending towards a draw.
int noPawnSignatureChange(const position::NodeState& node) {
    for (const SignatureChange& s : signatureChanges)
        if (node.materialTotal[board::White] == s.white && node.materialTotal[board::Black] == s.black)
            return s.change;
    return 0;
}

}  // namespace eval
