#pragma once
// Learning from games: each book move the engine played gets one more game
// and the half points the game brought its side. The book is rewritten
// whole beside itself and renamed into place, so a crash or a full disk
// never leaves it half written.

#include "book/book.h"

namespace book {

// Results of bookLearn below 0.
constexpr int LearnNoBook = -1;     // neither book name opens
constexpr int LearnNotWritten = -2;  // the book couldn't be read through or replaced
constexpr int LearnBadResult = -3;

// Adds the game's result to the entries of `plays` (as lastBookMove gave
// them, in any order). `whiteHalfPoints` is the result for White: 2 a win,
// 1 a draw, 0 a loss; the side of each play is read off its key. An entry is
// the first of its position's record whose move equals the play's in all 16
// bits; a position or move the book doesn't hold is passed over, and no
// record is added. Games stop at 65535, the score past 65533.
// Result: the number of entries updated, or one of the codes above, with
// the book unchanged.
int bookLearn(const BookPlay* plays, int count, int whiteHalfPoints);

}  // namespace book
