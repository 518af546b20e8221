// The record of the engine's book moves in the current game, kept by ply so
// that a take-back drops the moves it undid.

#include "frontend/booklearning.h"

#include <cstring>

#include "book/learn.h"

namespace frontend {

int bookLearning = 0;

namespace {

// Far beyond any book's depth; plays past it aren't remembered.
constexpr int MaxBookPlays = 128;

struct PlayAtPly {
    int ply;  // index of the move in the game's history
    book::BookPlay play;
};

// Written by the think thread before it plays its move, read by the main
// thread only after stopThinking, whose handshake orders the two.
PlayAtPly plays[MaxBookPlays];
int playCount = 0;

// White's half points for a result mark; -1 for "*" or anything else.
int whiteHalfPoints(const char* text) {
    struct Mark {
        const char* text;
        int halfPoints;
    };
    static constexpr Mark marks[] = {{"1-0", 2}, {"0-1", 0}, {"1/2-1/2", 1}};
    for (const Mark& mark : marks)
        if (std::strncmp(text, mark.text, std::strlen(mark.text)) == 0) return mark.halfPoints;
    return -1;
}

// The play still stands if the game's history holds its move at its ply.
// A book word may lack the promotion bits that the played move has, so
// only the squares are compared.
bool standsInGame(const board::Game& game, const PlayAtPly& entry) {
    if (entry.ply > game.historyCursor) return false;
    return (game.history[entry.ply].move & board::FromToMask) == (entry.play.move & board::FromToMask);
}

}  // namespace

void noteBookPlay(const board::Game& game, const book::BookPlay& play) {
    const int ply = game.historyCursor + 1;
    while (playCount > 0 && plays[playCount - 1].ply >= ply) --playCount;
    if (playCount < MaxBookPlays) plays[playCount++] = {ply, play};
}

void forgetBookPlays() { playCount = 0; }

int learnFromResult(const board::Game& game, const char* resultText) {
    const int halfPoints = whiteHalfPoints(resultText);
    book::BookPlay standing[MaxBookPlays];
    int count = 0;
    for (int i = 0; i < playCount; ++i)
        if (standsInGame(game, plays[i])) standing[count++] = plays[i].play;
    forgetBookPlays();
    if (!bookLearning || halfPoints < 0 || count == 0) return 0;
    return book::bookLearn(standing, count, halfPoints);
}

}  // namespace frontend
