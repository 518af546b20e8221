#pragma once
// Where the running program lies, for the files kept beside it.

#include <cstddef>

namespace platform {

constexpr char PathSeparator = '/';

// Writes the full path of the running program into `buffer` and returns its
// length, or 0 if it can't be had or doesn't fit.
std::size_t programPath(char* buffer, std::size_t size);

// Writes the program's directory, ending in PathSeparator, and returns its
// length; 0 (and an empty text) if it can't be had.
std::size_t programDirectoryOf(char* buffer, std::size_t size);

}  // namespace platform
