#pragma once
// Learning from the engine's own book moves: the front end remembers the
// book moves the engine played in the game in progress and, at the game's
// result, hands them to the book with that result. Off unless the
// configuration's BOOK_LEARN asks for it.

#include "board/game.h"
#include "book/book.h"

namespace frontend {

// 1: "RESULT" updates the book. Set at start-up only.
extern int bookLearning;

// Remembers `play`, which the engine is about to play at the game's next
// ply. Plays remembered for that ply or later ones were taken back and go.
void noteBookPlay(const board::Game& game, const book::BookPlay& play);
// A new game or a set-up: nothing played so far belongs to the next result.
void forgetBookPlays();
// The game's result as the interface gives it ("1-0", "0-1", "1/2-1/2",
// any comment behind): with learning on, the remembered plays that still
// stand in the game's history learn it. The plays are forgotten either way.
// bookLearn's result, or 0 when there was nothing to learn.
int learnFromResult(const board::Game& game, const char* resultText);

}  // namespace frontend
