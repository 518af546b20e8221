// The plain-text files of games and positions that "PARTIE ", -f and -p
// read, and the move lines of the log. Files are read line by line through
// the game level, so a loaded game has its history like a played one.

#include "frontend/gamefiles.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "board/fen.h"
#include "board/movetext.h"
#include "board/notation.h"
#include "frontend/logfile.h"
#include "search/lines.h"
#include "search/search.h"
#include "search/think.h"
#include "platform/text.h"

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

namespace {

// A game file's line that sets up a position opens with this.
constexpr char FenLineOpener[] = "[FEN";
// Characters of a line that count: a game file's lines are at most 255
// long, a position list is read through a buffer of 64 bytes.
constexpr int GameLineLength = 255;
constexpr int PositionLineLength = 63;
constexpr int GameFileUnreadable = -10;
constexpr int PositionFileUnreadable = -1;
constexpr int PositionRefused = -2;

// Opens a text file for reading; null also for one that opens but can't be
// read, such as a directory, so that it never counts as an empty file.
std::FILE* openTextFile(const char* path) {
    if (path == nullptr || path[0] == '\0') return nullptr;
    std::FILE* file = std::fopen(path, "r");
    if (file == nullptr) return nullptr;
    const int first = std::fgetc(file);
    if (first == EOF && std::ferror(file)) {
        std::fclose(file);
        return nullptr;
    }
    if (first != EOF) std::ungetc(first, file);
    return file;
}

// One line without its line feed and a carriage return before it. Only the
// first `length` characters are kept: the tail of an overlong line is
// dropped, never read as a line of its own, where a stray letter could
// play a move or place a piece. 0 at the end of the file.
int readTextLine(std::FILE* file, char* line, int length) {
    int c = std::fgetc(file);
    if (c == EOF) return 0;
    int kept = 0;
    for (; c != EOF && c != '\n'; c = std::fgetc(file))
        if (kept < length) line[kept++] = char(c);
    if (kept > 0 && line[kept - 1] == '\r') --kept;
    line[kept] = '\0';
    return 1;
}

// The blank, tab or end of text behind the token at `text`.
char* tokenEnd(char* text) {
    while (*text != '\0' && !platform::isBlank(*text)) ++text;
    return text;
}

// A row of moves: a leading move number is stepped over whole, even with a
// move glued to it ("12.e2e4"); then moves up to the end of the line, a
// token that opens with '.', or the first token that isn't a move (a later
// move number, a result mark, algebraic text). The first non-zero result of
// makeGameMove, else 0.
int playRow(board::Game& game, char* row) {
    char* text = platform::isAsciiDigit(*row) ? tokenEnd(row) : row;
    for (;;) {
        text = const_cast<char*>(platform::skipBlanks(text));
        if (*text == '\0' || *text == '.') return board::ResultOk;
        const board::Move move = board::parseCoordinateMove(text, game.sideToMove);
        if (move == board::NoMove) return board::ResultOk;
        const int result = board::makeGameMove(game, move);
        if (result != board::ResultOk) return result;
        text = tokenEnd(text);
    }
}

// "[FEN" with an optional ':' behind it: the rest of the line is the
// position. The set-up reads its fields and stops, so a PGN tag's quotes
// and closing bracket need no care. A refused board keeps what the file
// had built so far rather than an empty one.
int setupFromLine(board::Game& game, const char* line) {
    const char* fen = line + std::strlen(FenLineOpener);
    if (*fen == ':') ++fen;
    return board::setupFromFenChecked(game, fen);
}

// The piece type of a position list's letter (the French initials), or
// NoType for a line that places nothing.
int positionLetterType(char letter) {
    switch (letter) {
        case 'r': return board::King;
        case 'd': return board::Queen;
        case 't': return board::Rook;
        case 'f': return board::Bishop;
        case 'c': return board::Knight;
        case 'p': return board::WhitePawn;
        default: return board::NoType;
    }
}

// The square of characters two and three, or NoSquare, which no placement
// takes.
int positionLineSquare(const char* line) {
    const char file = line[1];
    const char rank = file == '\0' ? '\0' : line[2];
    if (file < 'a' || file > 'h' || rank < '1' || rank > '8') return board::NoSquare;
    return board::makeSquare(file - 'a', rank - '1');
}

// The board fields emptied, as a set-up starts from.
void emptyBoardFields(board::Game& placed) {
    for (int id = 0; id < board::PieceIdCount; ++id) {
        placed.pieceSquare[id] = board::NoSquare;
        placed.pieceType[id] = board::King;
        placed.pieceValue[id] = 0;
    }
    for (int& id : placed.boardPiece) id = board::NoPiece;
}

// Places the list's pieces on `placed`; the colour in force at the end, or
// PositionRefused for a piece that can't be placed.
int placePositionLines(std::FILE* file, board::Game& placed) {
    int colour = board::White;
    char line[PositionLineLength + 1];
    while (readTextLine(file, line, PositionLineLength)) {
        for (char* c = line; *c != '\0'; ++c)
            if (platform::isAsciiUpper(*c)) *c = char(*c - 'A' + 'a');
        if (line[0] == 'b' || line[0] == 'n') {
            colour = line[0] == 'b' ? board::White : board::Black;
            continue;
        }
        const int type = positionLetterType(line[0]);
        if (type == board::NoType) continue;
        const int square = positionLineSquare(line);
        const int id = type == board::WhitePawn ? board::placePawn(placed, colour, square)
                                                : board::placePiece(placed, colour, type, square);
        if (id < 0) return PositionRefused;
    }
    return colour;
}

}  // namespace

// The file's game replaces the one in play, move by move through the game
// level, so it comes with its history. A move that isn't legal stops the
// whole load; the moves before it stand.
int loadGameFile(board::Game& game, const char* path) {
    std::FILE* file = openTextFile(path);
    if (file == nullptr) return GameFileUnreadable;
    board::resetGame(game);
    board::rescanMoves(game);
    char line[GameLineLength + 1];
    int result = board::ResultOk;
    while (result == board::ResultOk && readTextLine(file, line, GameLineLength)) {
        char* text = const_cast<char*>(platform::skipBlanks(line));
        if (std::strncmp(text, FenLineOpener, std::strlen(FenLineOpener)) == 0) {
            if (setupFromLine(game, text) != 0) result = GameFileUnreadable;
            continue;
        }
        if (!platform::isAsciiDigit(*text) && !platform::isAsciiLetter(*text)) continue;
        result = playRow(game, text);
    }
    std::fclose(file);
    return result;
}

// The pieces are placed on a copy of the board fields first: a list that
// can't be placed leaves the game as it was. The side to move is the one
// whose block didn't come last.
int loadPositionFile(board::Game& game, const char* path) {
    std::FILE* file = openTextFile(path);
    if (file == nullptr) return PositionFileUnreadable;
    board::Game placed = game;
    emptyBoardFields(placed);
    const int colour = placePositionLines(file, placed);
    std::fclose(file);
    if (colour == PositionRefused) return PositionRefused;
    if (placed.pieceSquare[board::WhiteKingId] == board::NoSquare ||
        placed.pieceSquare[board::BlackKingId] == board::NoSquare)
        return PositionRefused;
    std::memcpy(game.pieceSquare, placed.pieceSquare, sizeof game.pieceSquare);
    std::memcpy(game.boardPiece, placed.boardPiece, sizeof game.boardPiece);
    std::memcpy(game.pieceType, placed.pieceType, sizeof game.pieceType);
    std::memcpy(game.pieceValue, placed.pieceValue, sizeof game.pieceValue);
    board::deriveCastleState(game);
    board::finishSetup(game, colour ^ 1);
    return 0;
}

}  // namespace frontend
