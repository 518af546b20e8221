#pragma once
// The optional log file: move lines, new-game headers and result texts.
// Opened at start-up when the configuration asks for it; null otherwise.

#include <cstdio>

namespace frontend {

extern std::FILE* logFile;

// Writes the event line and, if the local date can be had, the date line.
void logNewGame();
// Writes `text` and a line feed.
void logText(const char* text);
// Flushes the log if it is open; the hook that follows a printed result.
void flushLog();
// Closes the log if it is open.
void closeLog();

}  // namespace frontend
