#pragma once
// A search root from a FEN, as the think driver prepares it: set-up of the
// evaluation on the game's Position, then searchBoard and a NodeState.

#include <gtest/gtest.h>

#include "board/fen.h"
#include "board/game.h"
#include "eval/setup.h"
#include "search/searchboard.h"

inline search::NodeState rootNode(const char* fen) {
    EXPECT_EQ(board::setupFromFen(board::game, fen), 0) << fen;
    board::Position& position = *board::game.position;
    eval::setupEvaluation(position);
    position.ply = 0;
    position.fiftyCounter = 0;
    search::NodeState node;
    search::buildNodeState(node, position);
    return node;
}
