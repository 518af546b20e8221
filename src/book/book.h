#pragma once
// The opening book as the think driver sees it: a switch and one probe that
// may put a book move at the head of the root list.

#include <atomic>

#include "board/types.h"

namespace book {

// 1 while the book is consulted at the start of each think. Written by the
// configuration and the xboard option, read by the think thread.
extern std::atomic<int> useBook;

// 1 if a book move was found; it then stands first in `moveList` (a root
// list ended by a 0 word). 0 leaves the list untouched.
int bookProbe(board::Move* moveList);

}  // namespace book
