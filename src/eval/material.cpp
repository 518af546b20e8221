// Material adjustments on top of the incremental balance.

#include "eval/material.h"

#include "board/types.h"

namespace eval {

namespace {

// A knight loses this for every pawn gone from the board.
constexpr int KnightPawnLoss = 4;
constexpr int FullPawns = 16;
// A side whose only piece is one minor can rarely win with it.
constexpr int LoneMinorPenalty = 267;
constexpr int LoneQueenPenalty = 48;

// Only the knight slots count; a promoted knight in a pawn slot doesn't.
int originalKnights(board::Color c) {
    const position::SearchBoard& sb = position::searchBoard;
    const int base = board::idBase(c);
    return (sb.pieceSquare[base + board::SlotKnightB] != board::NoSquare) +
           (sb.pieceSquare[base + board::SlotKnightG] != board::NoSquare);
}

// A queen as the side's only piece besides king and pawns.
bool hasLoneQueen(const position::NodeState& node, board::Color c) {
    return node.materialTotal[c] == board::QueenValue && node.pieceCount[c] == 1;
}

}  // namespace

// Knights weaken as the board opens; a lone minor or a lone queen is worth
// less than its count says; two lone minors cancel.
int materialScore(const position::NodeState& node) {
    int score = node.materialBalance;
    const int pawns = node.pawnCount[0] + node.pawnCount[1];
    score += KnightPawnLoss * (originalKnights(board::Black) - originalKnights(board::White)) * (FullPawns - pawns);

    const int white = node.materialTotal[board::White];
    const int black = node.materialTotal[board::Black];
    const bool whiteLoneQueen = hasLoneQueen(node, board::White);
    const bool blackLoneQueen = hasLoneQueen(node, board::Black);
    if (white == board::BishopValue && black != board::BishopValue) {
        score -= LoneMinorPenalty;
        if (blackLoneQueen) score += LoneQueenPenalty;
    } else if (black == board::BishopValue && white != board::BishopValue) {
        score += LoneMinorPenalty;
        if (whiteLoneQueen) score -= LoneQueenPenalty;
    } else {
        if (whiteLoneQueen) score -= LoneQueenPenalty;
        if (blackLoneQueen) score += LoneQueenPenalty;
    }
    return score;
}

}  // namespace eval
