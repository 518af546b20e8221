#pragma once
// The think thread: started for one think by the command loop, stopped by it
// before any command that changes the game.

#include <atomic>

namespace frontend {

// 1 while a think thread exists.
extern std::atomic<int> thinking;
// 1 only while stopThinking waits.
extern std::atomic<int> stopRequested;

// Starts a think for the side to move, unless one runs or the game is over.
void startThink();
// Returns when no think thread runs.
void stopThinking();

}  // namespace frontend
