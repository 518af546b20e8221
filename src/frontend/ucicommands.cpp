#include "frontend/ucicommands.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "frontend/commandloop.h"
#include "frontend/config.h"
#include "frontend/thinkthread.h"
#include "frontend/timecontrol.h"
#include "search/hashtable.h"
#include "search/think.h"
#include "eval/pawnhash.h"
#include "search/ordering.h"
#include "tablebase/probe.h"
#include "tablebase/registry.h"
#include "platform/text.h"

namespace frontend {

namespace {

// The FEN stands this far behind the start of "fen".
constexpr int FenWordSkip = 4;
// A move token holds four characters and a promotion letter.
constexpr int TokenLength = 5;
// Room for the longest path the list can take and its quotes.
constexpr int PathSize = tablebase::TbPathListLimit + 8;

// The interface sends the whole position before each "GO": the game starts
// afresh, and a new set-up leaves force mode.
void freshGame() {
    stopThinking();
    board::resetGame(board::game);
    board::rescanMoves(board::game);
    forceMode = 0;
}

// The tokens behind "moves". Four characters make a move, and a fifth counts
// only as a promotion letter, so "e2e4 e7e5" splits at the blank and "e7e8q"
// keeps its letter. A token that isn't a move, or a move the game refuses, is
// skipped and the walk goes on; the game's own verdicts (mate, draws) aren't
// announced in this protocol.
void playMoveTokens(const char* text) {
    for (;;) {
        while (*text == ' ' || *text == '\t') ++text;
        if (*text == '\0') return;
        char token[TokenLength + 1];
        int length = 0;
        while (length < TokenLength - 1 && text[length] != '\0' && text[length] != ' ' && text[length] != '\t') {
            token[length] = text[length];
            ++length;
        }
        if (length == TokenLength - 1 && platform::isAsciiLetter(text[length])) {
            token[length] = text[length];
            ++length;
        }
        token[length] = '\0';
        text += length;
        const board::Move move = board::parseCoordinateMove(token, board::game.sideToMove);
        if (move == board::NoMove) continue;
        stopThinking();
        board::makeGameMove(board::game, move);
    }
}

// The number right behind `word` in the line, if the word stands there.
bool numberBehind(const char* line, const char* word, int& number) {
    const char* at = std::strstr(line, word);
    if (at == nullptr) return false;
    number = readSettingInteger(at + std::strlen(word));
    return true;
}

// "setoption name NalimovPath [value] <path>": the path joins the list and
// the tables are looked for again along the whole of it.
void nalimovPathOption(const char* rest) {
    if (*rest == ' ') ++rest;
    if (platform::opensWithNoCase(rest, "value")) {
        rest += 5;
        if (*rest == ' ') ++rest;
    }
    char path[PathSize];
    if (std::strlen(rest) >= sizeof path) return;
    std::strcpy(path, rest);
    const std::size_t length = std::strlen(path);
    if (length > 0 && path[length - 1] == '\n') path[length - 1] = '\0';
    useTablebasePath(path);
}

}  // namespace

void stripPathQuotes(char* path) {
    if (path[0] == '\0') return;
    if (!platform::isAsciiLetter(path[0]) && path[0] != '/') std::memmove(path, path + 1, std::strlen(path));
    const std::size_t length = std::strlen(path);
    if (length > 0 && !platform::isAsciiLetter(path[length - 1]) && !platform::isAsciiDigit(path[length - 1])) path[length - 1] = '\0';
}

void useTablebasePath(char* path) {
    stripPathQuotes(path);
    if (path[0] == '\0' || !tablebase::tbAddPath(path)) return;
    tablebase::tbShutdown();
    tablebase::tbMaxMen = tablebase::tbInit(tablebase::tbPathList, tablebase::tbCacheBytes);
    tablebase::tablebasesOpen = 1;
}

// One switch for the rest of the run: from here on the think answers with
// "bestmove" and prints its lines in the UCI form.
void uciCommand(const char* line) {
    board::game.uciMode = 1;
    search::postThinking.store(1, std::memory_order_relaxed);
    std::printf("id name %s\nid author Aurelien Moraud\n", engineName);
    std::printf("option name NalimovPath type string default\n");
    std::printf("option name NalimovCache type spin default 4 min 1 max 16\n");
    std::printf("option name Hash type spin default 128 min 30 max 1000\nuciok\n");
    std::fflush(stdout);
}

// Answered at once, also while a think runs, since the main thread never
// waits for one here.
void isreadyCommand(const char* line) {
    std::snprintf(pendingOutput, PendingOutputSize, "readyok\n");
    flushPendingOutput();
}

// A line with neither "startpos" nor "fen" only adds its moves to the game.
void positionCommand(const char* line) {
    if (std::strstr(line, "startpos") != nullptr) {
        freshGame();
    } else if (const char* fen = std::strstr(line, "fen")) {
        freshGame();
        // The text may stop right behind the word; the set-up then reads an
        // empty FEN rather than what lies past the terminator.
        board::setupFromFen(board::game, std::strlen(fen) >= FenWordSkip ? fen + FenWordSkip : "");
    }
    if (const char* moves = std::strstr(line, "moves")) playMoveTokens(moves + std::strlen("moves"));
}

// Three options, tried in order; any other line is ignored without a word.
// The limits the "UCI" reply shows aren't enforced.
void setoptionCommand(const char* line) {
    static constexpr const char* HashPrefix = "setoption name Hash value";
    static constexpr const char* PathPrefix = "setoption name NalimovPath";
    static constexpr const char* CachePrefix = "setoption name NalimovCache value";
    if (platform::opensWithNoCase(line, HashPrefix)) {
        search::setHashSize(std::int64_t(readSettingInteger(line + std::strlen(HashPrefix))) * search::Megabyte);
    } else if (platform::opensWithNoCase(line, PathPrefix)) {
        nalimovPathOption(line + std::strlen(PathPrefix));
    } else if (platform::opensWithNoCase(line, CachePrefix)) {
        const int megabytes = readSettingInteger(line + std::strlen(CachePrefix));
        if (megabytes >= 1) {
            const std::int64_t bytes = std::int64_t(megabytes) * search::Megabyte;
            tablebase::tbCacheBytes = bytes > INT32_MAX ? INT32_MAX : std::int32_t(bytes);
        }
    }
}

// Forgets what the last game taught the search and marks the next "GO" as
// the first of a game. The position itself comes with "position".
void ucinewgameCommand(const char* line) {
    search::clearHash();
    eval::clearPawnHash();
    search::clearHistory();
    search::clearKillers();
    search::clearCounters();
    board::game.firstGoOfGame = 1;
    incrementTenths = 0;
    movesPerControl = 0;
}

// Milliseconds become tenths. Only the side to move's clock counts; the
// first "GO" of a game also fixes the control's base and its length in
// moves, counted from the start, so that the moves left count down by
// themselves. One increment serves both sides: WINC, else BINC.
void readGoClock(const char* line) {
    board::Game& g = board::game;
    int n = 0;
    const bool whiteToMove = g.sideToMove == board::White;
    if (numberBehind(line, whiteToMove ? "WTIME" : "BTIME", n)) {
        ownClock = n / 100;
        if (g.firstGoOfGame) baseSeconds = n / 1000;
    }
    if (numberBehind(line, "WINC", n) || numberBehind(line, "BINC", n)) incrementTenths = n / 100;
    if (numberBehind(line, "MOVESTOGO", n) && g.firstGoOfGame)
        movesPerControl = n != 0 ? int(std::min<std::int64_t>(g.historyCursor / 2 + std::int64_t(n), INT32_MAX)) : 0;
    g.firstGoOfGame = 0;
}

}  // namespace frontend
