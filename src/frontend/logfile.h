#pragma once
// The optional log file: move lines, new-game headers and result texts.
// Opened at start-up when the configuration asks for it; null otherwise.

#include <cstdio>

namespace frontend {

extern std::FILE* logFile;

// Room for the log's name: any path the system reports and ".log".
constexpr int LogFileNameSize = 4096 + 8;
// The program's path with ".log" behind it; empty until formed.
extern char logFileName[LogFileNameSize];

// Forms logFileName from the executable's path, so that the log lies beside
// the program whatever the working directory; `argv0` stands in when the
// system can't tell that path.
void formLogFileName(const char* argv0);
// Opens logFileName for appending: one file for all runs of one program.
// Returns 0, with no log, if it can't be opened.
int openLog();

// Writes the event line and, if the local date can be had, the date line.
void logNewGame();
// Writes `text` and a line feed.
void logText(const char* text);
// Flushes the log if it is open; the hook that follows a printed result.
void flushLog();
// Closes the log if it is open.
void closeLog();

}  // namespace frontend
