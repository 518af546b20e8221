#pragma once
// The search's own move generators, straight from searchBoard. Moves are
// pseudo-legal; the child that makes one refuses it if it leaves the king
// attacked. Both generators are written once on the colour C that moves.

#include "board/types.h"
#include "position/searchboard.h"

namespace position {

// Words of a node's move list, end mark included. A set-up with many
// promoted pieces can have more pseudo-legal moves than this; the generators
// then keep the first ones in generation order and drop the rest rather than
// write past the list (the perft passes a larger room).
constexpr int SearchListRoom = 122;

// Every pseudo-legal move of C, ids in order; captures carry the capture
// mark, a promotion by capture only on its last (knight) word. `parentFrom`
// and `parentTo` are the other side's last move, for en passant.
template <board::Color C>
int generateAll(board::Move* list, int parentFrom, int parentTo, int inCheck, const NodeState& node,
                int room = SearchListRoom);

// Captures and queen promotions of C for quiescence, scored in the high half
// by the values of victim and mover alone; no word carries the capture mark.
template <board::Color C>
int generateCaptures(board::Move* list, int parentFrom, int parentTo, int room = SearchListRoom);

}  // namespace position
