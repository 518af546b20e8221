#pragma once
// The think thread: started for one think by the command loop, stopped by it
// before any command that changes the game. It runs the think driver on the
// game, prints the move, plays it and ends.

#include <atomic>

#include "board/game.h"

namespace frontend {

// 1 while a think thread exists. Raised by startThink before the thread
// starts and lowered by the thread as its last act, with release order, so
// that whoever sees 0 also sees everything the thread wrote to the game.
extern std::atomic<int> thinking;
// 1 only while stopThinking waits.
extern std::atomic<int> stopRequested;
// The result word of the last think: score << 16 | move, or -1.
extern std::atomic<int> thinkResult;
// 1: after its move the thread goes on thinking about the expected reply
// until it is stopped. Off at start; the configuration may set it, "EASY"
// clears it.
extern std::atomic<int> ponderEnabled;
// Thinks started since the program began: every one of them owes exactly
// one move (or none, in analysis).
extern std::atomic<int> thinksStarted;

// Starts a think for the side to move, unless one runs or the game is over.
void startThink();
// Returns when no think thread runs.
void stopThinking();
// The side to move of the game as a think found it when it started; the
// game's own side when no think runs. The main thread reads this instead of
// the game while a think may be playing its move.
int sideSeenByThink();

// The body of the worker thread; `resultSlot` is a std::atomic<int>* that
// receives the result word.
void thinkThread(void* resultSlot);

// One call of the think driver on `game` with its limits. Result: the score
// in bits 16-31 and the chosen move's low half, or -1 if the game is over.
// `uciOutput` selects the form of the thinking lines; the thread passes the
// mode as it was when the think started.
int runThink(board::Game& game, int uciOutput);
inline int runThink(board::Game& game) { return runThink(game, game.uciMode); }

// The resign rule, applied to the result word of a search move: 1 when the
// engine has just played its third move in a row under a falling mate score.
int resignTest(board::Game& game, int packed);

// Keeps the expected reply and the engine's next move of the principal line
// for pondering, and shifts the line two plies on.
void keepPrincipalLine(board::Game& game, int depth);
// Thinks on the position after the expected reply, without a time limit,
// until stopped. Returns at once when there is nothing to ponder.
void ponderThink(board::Game& game);

}  // namespace frontend
