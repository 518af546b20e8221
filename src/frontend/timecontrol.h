#pragma once
// The time control and the engine's clock, and their translation into the
// two limits of one think. Both protocols write the same four fields; the
// think driver only ever sees the limits.

#include "board/game.h"

namespace frontend {

// All in tenths of a second but baseSeconds. Written and read on the main
// thread only: a think takes its limits when it starts.
extern int movesPerControl;  // moves of one control; 0 or less: all moves
extern int baseSeconds;      // time of one control
extern int incrementTenths;  // added per move
extern int ownClock;         // time left on the engine's clock

constexpr int DefaultMovesPerControl = 6;
constexpr int DefaultBaseSeconds = 60;

struct TimeLimits {
    int soft;  // past this the think stops at its next chance
    int hard;  // past this it stops for certain
};

// The limits of one think, in tenths, for a time control, the clock and the
// game's historyCursor (-1 with no move played).
TimeLimits timeLimitsFor(int moves, int base, int increment, int clock, int historyCursor);

// Sets softTimeLimit, hardTimeLimit and depthLimit of the global game for
// the next think, from the fields above and analyzeMode.
void allocateTime();

}  // namespace frontend
