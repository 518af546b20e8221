#pragma once
// The one way out for a fault at set-up that the program can't go on from.

namespace platform {

// Prints "*** " and the formatted message as one line on standard output,
// flushes, and exits with code 1.
[[noreturn]] void fatal(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace platform
