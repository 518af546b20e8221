#include "frontend/timecontrol.h"

#include <algorithm>
#include <cstdint>

#include "frontend/commandloop.h"
#include "search/think.h"

namespace frontend {

int movesPerControl = DefaultMovesPerControl;
int baseSeconds = DefaultBaseSeconds;
int incrementTenths = 0;
int ownClock = 0;

namespace {

// Two seconds stay on the clock as a reserve against the interface's lag.
constexpr std::int64_t ReserveTenths = 20;
// A game without moves per control is planned as this many more moves.
constexpr std::int64_t PlannedMoves = 30;
// Sudden death without increment counts as a short game up to this base.
constexpr int ShortGameSeconds = 420;
// Below this clock the hard limit of a short game isn't doubled.
constexpr std::int64_t DoubleHardFromTenths = 60;

// Any value a field may hold, however absurd, gives a limit in 1 .. no limit;
// the arithmetic runs in 64 bits so that it can't overflow on the way.
int limit(std::int64_t tenths) { return int(std::clamp<std::int64_t>(tenths, 1, search::NoTimeLimit)); }

}  // namespace

// Three kinds of time control: a number of moves per control, a short sudden
// death, and anything with an increment or a long base. Divisions truncate
// toward zero, as the limits have always been computed.
TimeLimits timeLimitsFor(int moves, int base, int increment, int clock, int historyCursor) {
    const std::int64_t reserve = std::int64_t(clock) - ReserveTenths;
    const std::int64_t plies = historyCursor / 2;  // full moves of both sides; 0 with none played
    std::int64_t soft, hard;

    if (moves > 0) {
        // The engine's moves left in this control, the current one included.
        const std::int64_t movesLeft = moves - plies % moves;
        const std::int64_t share = std::max<std::int64_t>(reserve / movesLeft, 1);
        const std::int64_t cap = 2 * (std::int64_t(base) * 10 / moves);  // twice the average move
        const std::int64_t t = std::max<std::int64_t>(std::min(share, cap), 1);
        soft = hard = t;
        // The last move before the control may not overrun its share.
        if (movesLeft > 1) hard = t + t / 2;
    } else if (increment == 0 && base <= ShortGameSeconds) {
        const std::int64_t t = std::max<std::int64_t>(clock / PlannedMoves, 1);
        soft = hard = t;
        if (clock >= DoubleHardFromTenths) hard = 2 * t;
        if (hard >= clock) hard = std::max<std::int64_t>(clock, 1);
    } else {
        const std::int64_t t = std::max<std::int64_t>(reserve / PlannedMoves, 1) + increment;
        soft = t;
        if (reserve > 2 * t) {
            hard = 2 * t;
        } else {
            soft = hard = std::max<std::int64_t>(reserve, 1);
        }
        // With two seconds or less left, the increment is all there is.
        if (increment < clock && clock <= ReserveTenths) soft = hard = std::max(increment, 1);
    }
    return {limit(soft), limit(hard)};
}

// An analysis runs until it is stopped: both limits are the no-limit value.
void allocateTime() {
    board::Game& g = board::game;
    g.depthLimit = board::DefaultDepthLimit;
    if (analyzeMode.load(std::memory_order_relaxed)) {
        g.softTimeLimit = g.hardTimeLimit = search::NoTimeLimit;
        return;
    }
    const TimeLimits limits = timeLimitsFor(movesPerControl, baseSeconds, incrementTenths, ownClock, g.historyCursor);
    g.softTimeLimit = limits.soft;
    g.hardTimeLimit = limits.hard;
}

}  // namespace frontend
