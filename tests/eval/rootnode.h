#pragma once
// A search root from a FEN, as the think driver prepares it: keys and the
// set-up of the evaluation on the game's Position, then searchBoard and a
// NodeState with its promoted mask.

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "board/keys.h"
#include "eval/setup.h"
#include "search/searchboard.h"

// `position` becomes the root of a search with fiftyCounter 0.
inline search::NodeState rootFromPosition(board::Position& position) {
    board::computeKeys(position);
    eval::setupEvaluation(position);
    position.ply = 0;
    position.fiftyCounter = 0;
    search::NodeState node;
    search::buildNodeState(node, position);
    search::setPromotedMask(node, position);
    return node;
}

inline search::NodeState rootNode(const char* fen) {
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
    return rootFromPosition(*board::game.position);
}
