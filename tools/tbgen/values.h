#pragma once
// Values of positions for the generator, and their table bytes. A value is
// seen from the side to move and ordered so that the larger is the better
// for it: a quicker mate above a slower one, a draw above any loss, a slower
// loss above a quicker one. Distances are kept in plies while generating;
// the table byte counts moves.

#include <cstdint>

namespace tbgen {

constexpr int WinScore = 1000;
constexpr int NoScore = -32768;  // no move of that kind exists

constexpr int scoreOfWin(int plies) { return WinScore - plies; }
constexpr int scoreOfLoss(int plies) { return plies - WinScore; }
// Plies to the mate of a win or a loss.
constexpr int pliesOf(int score) { return score > 0 ? WinScore - score : score + WinScore; }

// The value of a move for the side that makes it, from the value of the
// position it leads to for the opponent: one ply further from the mate.
constexpr int backUp(int score) { return score > 0 ? 1 - score : score < 0 ? -score - 1 : 0; }

// A mate given in n moves is byte 127 - n (-128 for 127 moves), a mate
// suffered in n moves n - 126 (-127 for 126 moves), a draw 0. False when the
// distance is beyond what a byte holds.
bool byteOfScore(int score, std::int8_t& byte);
// The value of a table byte; NoScore for the broken entry 127.
int scoreOfByte(std::int8_t byte);

// The longest mate given and suffered, in moves, over the positions of a
// table side; -1 when there is none.
struct Extremes {
    int longestWin = -1;
    int longestLoss = -1;
};
void noteScore(Extremes& extremes, int score);

}  // namespace tbgen
