#include "frontend/gamefiles.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "board/movetext.h"
#include "board/notation.h"
#include "frontend/logfile.h"
#include "search/lines.h"
#include "search/search.h"
#include "search/think.h"

namespace frontend {

namespace {

// Engine units per pawn in the log's scores.
constexpr double UnitsPerPawn = 480.0;
// Beyond this a score counts mate; below it, pawns.
constexpr int MateThreshold = 32001;
// Room for the score text and a whole line of coordinate moves.
constexpr int CommentSize = 24 + search::LineMoves * 6;

// The line written with the last comment: a line that hasn't changed since
// is not written again.
board::Move loggedLine[search::LineWords];

// Score and line of the think, when the line has changed since the last
// comment. The line is read under lineLock, since the think may be
// publishing a new one.
void searchComment(char* text, std::size_t capacity) {
    text[0] = '\0';
    platform::SectionGuard guard(search::lineLock);
    if (std::memcmp(loggedLine, search::displayLine, sizeof loggedLine) == 0) return;
    std::memcpy(loggedLine, search::displayLine, sizeof loggedLine);
    logScoreText(search::bestScore, text, capacity);
    for (int i = 0; i < search::LineMoves && loggedLine[i] != board::NoMove; ++i) {
        char move[8];
        board::formatCoordinateMove(loggedLine[i], move);
        const std::size_t used = std::strlen(text);
        std::snprintf(text + used, capacity - used, "%s ", move);
    }
}

}  // namespace

// Mate distances are counted in moves of the side that mates, rounded up.
void logScoreText(int score, char* text, std::size_t capacity) {
    const int size = std::abs(score);
    const char sign = score > 0 ? '+' : '-';
    if (score == search::NoScoreYet)
        std::snprintf(text, capacity, " ");
    else if (size == search::InfiniteScore)
        std::snprintf(text, capacity, "%cINF ", sign);
    else if (size < MateThreshold)
        std::snprintf(text, capacity, "%+4.2f ", score / UnitsPerPawn);
    else {
        const int plies = search::MateBase - size;
        std::snprintf(text, capacity, "%cMAT%d ", sign, plies / 2 + plies % 2);
    }
}

// The move is written in short algebraic form from the list of the position
// it is played in, so this runs before the move is made.
void logMoveLine(board::Game& game, board::Move move, int withComment) {
    std::FILE* log = logFile;
    if (log == nullptr) return;
    move &= board::LowMoveMask;
    char san[board::SanMoveSize + 1] = "";
    if (move != board::NoMove) {
        board::Position current = *game.position;
        board::copyGameToPosition(game, current);
        board::formatSanFromList(san, sizeof san, move, game.legalMoves, current);
    }
    char comment[CommentSize] = "";
    if (withComment) searchComment(comment, sizeof comment);
    const int number = (game.historyCursor + 1) / 2 + 1;
    std::fprintf(log, "%d%s %s({%s})\n", number, game.sideToMove == board::White ? ".  " : "...", san, comment);
    std::fflush(log);
}

// Game files aren't read yet: every path reads as one that can't be opened.
int loadGameFile(board::Game& game, const char* path) { return -10; }

// Position lists aren't read yet: every path reads as one that can't be opened.
int loadPositionFile(board::Game& game, const char* path) { return -1; }

}  // namespace frontend
