#pragma once
// The think's line buffers: the latest principal variation, the one before
// it, and (in displayline.h) the copy that output reads. All three are
// guarded by lineLock, which the think thread and any printer of the
// variation take alike.

#include "board/types.h"
#include "platform/thread.h"
#include "search/displayline.h"

namespace search {

extern platform::CriticalSection lineLock;
// Move words with their scores, each ended by a 0 word.
extern board::Move lineBuffer[LineWords];
extern board::Move previousLine[LineWords];

// Copies the search's principal variation (from pvHeads[0]) into lineBuffer
// and displayLine, keeping the old lineBuffer in previousLine.
void publishLine();
// Keeps lineBuffer in previousLine.
void saveLine();
// Empties lineBuffer and the head of the principal variation.
void clearLine();

}  // namespace search
