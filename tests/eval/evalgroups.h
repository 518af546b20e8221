#pragma once
// Helpers for the group tests of the evaluation: roots reached by moves from
// the initial position, and the pawn attack masks that the pawn structure
// hands to later terms, computed here straight from the board so that the
// piece, king and mobility groups can be checked on their own.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "eval/king.h"
#include "eval/mobility.h"
#include "eval/phase.h"
#include "eval/pieces.h"
#include "eval/rootnode.h"
#include "eval/terms.h"
#include "search/searchboard.h"

// A search root after `moves` (coordinate moves, space-separated) from the
// initial position, with the castling states those moves leave.
inline search::NodeState rootAfterMoves(const char* moves) {
    EXPECT_EQ(board::setupFromFen(board::game, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"), 0);
    char text[512];
    std::strncpy(text, moves, sizeof text - 1);
    text[sizeof text - 1] = '\0';
    int side = board::White;
    for (char* word = std::strtok(text, " "); word != nullptr; word = std::strtok(nullptr, " ")) {
        const board::Move move = board::parseCoordinateMove(word, side);
        EXPECT_EQ(board::makeGameMove(board::game, move), board::ResultOk) << word;
        side ^= 1;
    }
    return rootFromPosition(*board::game.position);
}

// The squares attacked by each side's pawns, read off the pawn slots.
inline void fillPawnAttacks(eval::EvalTerms& terms) {
    const search::SearchBoard& b = search::searchBoard;
    terms.whitePawnAttacks = terms.blackPawnAttacks = 0;
    for (int id = 0; id < board::PieceIdCount; ++id) {
        const int square = b.pieceSquare[id];
        if (square == board::NoSquare) continue;
        const int file = board::fileOf(square);
        if (b.pieceType[id] == board::WhitePawn) {
            if (file > 0) terms.whitePawnAttacks |= std::uint64_t(1) << (square + 7);
            if (file < 7) terms.whitePawnAttacks |= std::uint64_t(1) << (square + 9);
        } else if (b.pieceType[id] == board::BlackPawn) {
            if (file > 0) terms.blackPawnAttacks |= std::uint64_t(1) << (square - 9);
            if (file < 7) terms.blackPawnAttacks |= std::uint64_t(1) << (square - 7);
        }
    }
}

// The piece, king and mobility groups of one node, run in evaluate's order
// and with its phase gates, but with the pawn masks from fillPawnAttacks and
// without the pawn and ending terms.
inline eval::EvalTerms placementGroups(const search::NodeState& node, int blackToMove) {
    eval::EvalTerms t{};
    const int c = node.phaseClass;
    const bool middle = c < eval::PhaseEndgame;
    const bool late = c == eval::PhaseHeavy || c == eval::PhaseEndgame;
    if (middle) eval::evaluateDevelopment(node, t);
    eval::evaluateTrappedPieces(node, t);
    eval::evaluateRookFiles(node, t);
    eval::evaluateMinorKingDistance(node, t);
    if (middle) t.kingScore = eval::evaluateKingSafety(node);
    eval::evaluateBishopPair(node, t);
    eval::evaluateXrays(node, t);
    if (late) eval::evaluateHeavyOnLastRanks(node, t);
    fillPawnAttacks(t);
    eval::evaluateOutposts(node, t);
    t.mobilityScore = eval::evaluateMobility(t.whitePawnAttacks, t.blackPawnAttacks, blackToMove, node, t);
    return t;
}
