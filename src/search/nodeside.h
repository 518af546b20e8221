#pragma once
// Private to the search node: what the node calls differently for each
// colour to move, so that the node itself is written once on the colour.

#include "board/types.h"
#include "search/movegen.h"
#include "search/side.h"

namespace search {

template <board::Color C>
struct NodeSide;

template <>
struct NodeSide<board::White> {
    static int generateAll(board::Move* list, int from, int to, int inCheck, const NodeState& node) {
        return generateAllWhite(list, from, to, inCheck, node);
    }
    static int generateCaptures(board::Move* list, int from, int to) { return generateCapturesWhite(list, from, to); }
    static void scoreMoves(board::Move* list, board::Move parentMove, const NodeState& node) {
        scoreMovesWhite(list, parentMove, node);
    }
    // A move of this side that may attack the other side's king.
    static int checksEnemyKing(board::Move word, int king, const NodeState& node) {
        return checksBlackKing(word, king, node);
    }
    static int isPassed(int square, const NodeState& node) { return isPassedWhite(square, node); }
    // A pawn of this side on such a square stands in the enemy half.
    static bool inEnemyHalf(int square) { return square >= board::A5; }
    static std::int32_t (&history())[128][64] { return historyWhite; }
    static std::uint32_t (&killers())[MaxSearchPly] { return killersWhite; }
    static std::uint16_t (&counter())[7][64] { return counterWhite; }
};

template <>
struct NodeSide<board::Black> {
    static int generateAll(board::Move* list, int from, int to, int inCheck, const NodeState& node) {
        return generateAllBlack(list, from, to, inCheck, node);
    }
    static int generateCaptures(board::Move* list, int from, int to) { return generateCapturesBlack(list, from, to); }
    static void scoreMoves(board::Move* list, board::Move parentMove, const NodeState& node) {
        scoreMovesBlack(list, parentMove, node);
    }
    static int checksEnemyKing(board::Move word, int king, const NodeState& node) {
        return checksWhiteKing(word, king, node);
    }
    static int isPassed(int square, const NodeState& node) { return isPassedBlack(square, node); }
    static bool inEnemyHalf(int square) { return square < board::A5; }
    static std::int32_t (&history())[128][64] { return historyBlack; }
    static std::uint32_t (&killers())[MaxSearchPly] { return killersBlack; }
    static std::uint16_t (&counter())[7][64] { return counterBlack; }
};

}  // namespace search
