// Table bytes and generator values, one into the other.

#include "tbgen/values.h"

#include <algorithm>

namespace tbgen {

namespace {

constexpr int LongestByteWin = 127;   // byte -128
constexpr int LongestByteLoss = 126;  // byte -127

// Moves to the mate: a mate given in p plies takes (p + 1) / 2 moves of the
// winner, a mate suffered in p plies p / 2 moves of the loser.
int movesOf(int score) { return score > 0 ? (pliesOf(score) + 1) / 2 : pliesOf(score) / 2; }

}  // namespace

bool byteOfScore(int score, std::int8_t& byte) {
    if (score == 0) {
        byte = 0;
        return true;
    }
    const int moves = movesOf(score);
    if (score > 0) {
        if (moves > LongestByteWin) return false;
        byte = std::int8_t(moves == LongestByteWin ? -128 : 127 - moves);
    } else {
        if (moves > LongestByteLoss) return false;
        byte = std::int8_t(moves == LongestByteLoss ? -127 : moves - 126);
    }
    return true;
}

int scoreOfByte(std::int8_t byte) {
    if (byte == 0) return 0;
    if (byte == 127) return NoScore;
    if (byte == -128) return scoreOfWin(2 * LongestByteWin - 1);
    if (byte == -127) return scoreOfLoss(2 * LongestByteLoss);
    if (byte > 0) return scoreOfWin(2 * (127 - byte) - 1);
    return scoreOfLoss(2 * (byte + 126));
}

void noteScore(Extremes& extremes, int score) {
    if (score > 0) extremes.longestWin = std::max(extremes.longestWin, movesOf(score));
    if (score < 0) extremes.longestLoss = std::max(extremes.longestLoss, movesOf(score));
}

}  // namespace tbgen
