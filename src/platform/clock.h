#pragma once
// Time services: a millisecond tick for the clocks of a think, a sleep for
// the stop handshake, and the local date for the log.

#include <cstdint>

namespace platform {

// Milliseconds from an arbitrary fixed point, wrapping like a 32-bit tick.
std::uint32_t tickCount();
void sleepMs(int milliseconds);

struct LocalDate {
    int year;
    int month;  // 1..12
    int day;    // 1..31
};
// False if the local time can't be had.
bool localDate(LocalDate& date);

}  // namespace platform
