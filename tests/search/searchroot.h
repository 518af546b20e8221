#pragma once
// A search root from a FEN the way the think driver prepares one: set-up of
// the game, keys, the evaluation's set-up, then searchBoard and a NodeState.

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "board/keys.h"
#include "eval/setup.h"
#include "search/searchboard.h"

inline search::NodeState searchRoot(const char* fen) {
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
    board::Position& position = *board::game.position;
    board::computeKeys(position);
    eval::setupEvaluation(position);
    position.ply = 0;
    search::NodeState node;
    search::buildNodeState(node, position);
    search::setPromotedMask(node, position);
    return node;
}

// A square from its name, "e4", for readable tests.
inline int squareOf(const char* text) {
    return (text[0] - 'a') + 8 * (text[1] - '1');
}
