#pragma once
// The opening book as the think driver sees it: a switch, and one probe per
// think that may put a book move at the head of the root list. The book is
// opened, scanned and closed afresh by every probe; nothing of it stays in
// memory. The game's miss counter bounds that cost to a few full scans an
// opening.

#include <atomic>
#include <cstdint>

#include "board/game.h"
#include "board/types.h"
#include "book/bookfile.h"

namespace book {

// 1 while the book is consulted at the start of each think. Written by the
// configuration and the xboard option, read by the think thread.
extern std::atomic<int> useBook;

// A move the book gave: the key of its position and the word as the file
// holds it, which is what learning looks the entry up by.
struct BookPlay {
    char key[BookKeySize];
    std::uint16_t move;
};

// 1 if a book move for the game's position is in `moveList` (a root list
// ended by a 0 word); it then stands first. 0 leaves the list untouched, and
// an empty lookup uses up one of the game's bookMissesLeft; with none left
// the book isn't opened at all.
int bookProbe(board::Game& game, board::Move* moveList);

// The book's move for the game's position, or 0. `found`, if given,
// receives the key and the move on a hit.
int bookLookup(const board::Game& game, BookPlay* found = nullptr);

// A weighted random choice among the record's moves by their tickets; 0 for
// a record without moves.
int bookPickMove(const BookRecord& record);

// The lottery tickets of one entry: one for each full ten percent it scored,
// plus one, so that a move that always lost can still be played.
int bookTickets(const BookEntry& entry);

// The last move bookProbe put first. Written and read on the thread that
// thinks, which is also the one that plays the move.
const BookPlay& lastBookMove();

}  // namespace book
