#pragma once
// Positions for tests: the game's start and its moves by text, the board's
// consistency, search roots built the way the think driver builds them (keys,
// the evaluation's set-up, searchBoard, a NodeState with its promoted mask),
// and the evaluation read group by group through the frame's trace hook.

#include <gtest/gtest.h>

#include <string>

#include "board/fen.h"
#include "board/game.h"
#include "board/keys.h"
#include "board/movetext.h"
#include "board/scan.h"
#include "eval/evaluate.h"
#include "eval/pawnhash.h"
#include "eval/pawns.h"
#include "eval/setup.h"
#include "search/hashtable.h"
#include "position/searchboard.h"

// `position` becomes the root of a search with fiftyCounter 0.
inline position::NodeState rootFromPosition(board::Position& position) { return eval::prepareRootNode(position); }

inline position::NodeState rootNode(const char* fen) {
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
    return rootFromPosition(*board::game.position);
}

// A square from its name, "e4", for readable tests.
inline int squareOf(const char* text) { return (text[0] - 'a') + 8 * (text[1] - '1'); }

// Terms that run after the pawn structure get its attack masks, and only those.
inline eval::EvalTerms withPawnAttacks(const position::NodeState& node) {
    eval::EvalTerms pawns{};
    eval::computePawns(node, 0, pawns);
    eval::EvalTerms terms{};
    terms.whitePawnAttacks = pawns.whitePawnAttacks;
    terms.blackPawnAttacks = pawns.blackPawnAttacks;
    return terms;
}

struct TracedEvaluation {
    eval::EvalTerms terms;
    int score;
};

// From an empty pawn hash, so that the numbers don't depend on earlier tests.
inline TracedEvaluation traceEvaluate(int blackToMove, const position::NodeState& node) {
    eval::clearPawnHash();
    TracedEvaluation traced{};
    eval::evalTrace = &traced.terms;
    traced.score = eval::evaluate(blackToMove, node);
    eval::evalTrace = nullptr;
    return traced;
}

inline void newGame() {
    board::resetGame(board::game);
    board::rescanMoves(board::game);
}

inline std::string boardString(const board::Game& g = board::game) {
    char buffer[board::BoardTextSize];
    board::boardText(g, buffer);
    return buffer;
}

// Plays a coordinate move, "e2e4", in the game; returns the move's result.
inline int playMove(const char* text) {
    std::string buffer(text);
    return board::makeGameMove(board::game, board::parseCoordinateMove(buffer.data(), board::game.sideToMove));
}

// The board's two views, id to square and square to id, agree.
inline void expectConsistent(const board::Game& g) {
    for (int id = 0; id < 32; ++id)
        if (g.pieceSquare[id] != board::NoSquare) {
            EXPECT_EQ(g.boardPiece[g.pieceSquare[id]], id) << id;
        }
    for (int sq = 0; sq < 64; ++sq)
        if (g.boardPiece[sq] != board::NoPiece) {
            EXPECT_EQ(g.pieceSquare[g.boardPiece[sq]], sq) << sq;
        }
}
