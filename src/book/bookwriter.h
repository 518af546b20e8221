#pragma once
// Making a book out of counted games: every (position, move) seen gets the
// games and half points it collected; a position keeps its five most played
// moves, and the records are written sorted by key, so that the same games
// always give the same file.

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "book/bookfile.h"

namespace book {

// halfPoints of tallyMove for a game without a result: it counts as played
// and scores nothing.
constexpr int NoResult = -1;

struct MoveTally {
    std::uint16_t move;
    std::uint64_t games;
    std::uint64_t score;
};

// Per key, the moves in the order they were first seen.
using BookTally = std::unordered_map<std::string, std::vector<MoveTally>>;

// What the score fields of a written book say.
enum class ScoreRule {
    Results,     // the half points of the games, as counted
    Popularity,  // the share of the position's most played move, for lines without results
};

// One game's move from the position `key`; `halfPoints` (0, 1, 2 or
// NoResult) are the mover's.
void tallyMove(BookTally& tally, const std::string& key, std::uint16_t move, int halfPoints);

// The record of one position: its five most played moves, in order of games
// with ties in order of first sight, their counters fitted to 16 bits.
void buildRecord(const std::string& key, const std::vector<MoveTally>& moves, ScoreRule rule, BookRecord& record);

struct BookSummary {
    long records = 0;
    long keysTooLong = 0;  // positions whose key doesn't fit a record
};

// Writes the whole book to `path` through a temporary file, so an existing
// book is only replaced by a complete one. False if it can't be written.
bool writeBook(const BookTally& tally, ScoreRule rule, const char* path, BookSummary& summary);

}  // namespace book
