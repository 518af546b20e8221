#pragma once
// The main thread's command loop: one line at a time from standard input,
// brought to a normal form and walked through one chain of string tests that
// serves xboard, UCI and the console alike. A line no test claims is a move.

#include <atomic>
#include <cstdio>

namespace frontend {

// 2699 characters and the terminator.
constexpr int CommandLineSize = 2700;
extern char commandLine[CommandLineSize];

// Set: a move entered is recorded and no think follows. Main thread only.
extern int forceMode;
// Read by the think thread, so atomic; relaxed order is enough for flags.
// The post flag is search::postThinking.
extern std::atomic<int> analyzeMode;

// A reply built by a handler and printed by flushPendingOutput. Room for
// "pong", any command line and a line feed, so an echo is never cut.
constexpr int PendingOutputSize = CommandLineSize + 8;
extern char pendingOutput[PendingOutputSize];

extern const char* engineName;

// Reads one line of at most size - 1 characters into `buffer`, without its
// line feed. A line feed right behind a full buffer still belongs to that
// line; a longer line leaves its tail for the next call. Result 1 for a line,
// 0 at end of input.
int readCommandLine(std::FILE* input, char* buffer, int size);

// SETBOARD, EGTPATH, position, setoption and PARTIE keep the case of their tails;
// any other line is folded to upper case.
void normaliseCommand(char* line);

void flushPendingOutput();

enum class Turn { Next, Quit };
// Walks the chain for the line in commandLine, already normalised.
Turn dispatchCommand();

// The program's entry after start-up. Returns the exit code, 0.
int commandLoop(int argc, char** argv);

}  // namespace frontend
