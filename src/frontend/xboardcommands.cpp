#include "frontend/xboardcommands.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "board/fen.h"
#include "board/game.h"
#include "board/scan.h"
#include "book/book.h"
#include "frontend/commandloop.h"
#include "frontend/config.h"
#include "frontend/timecontrol.h"
#include "frontend/ucicommands.h"
#include "search/hashtable.h"
#include "search/think.h"
#include "tablebase/probe.h"
#include "tablebase/registry.h"
#include "platform/text.h"

namespace frontend {

namespace {

// Where the arguments start behind each command word.
constexpr int SetboardWordLength = 8;
constexpr int PingWordLength = 4;
constexpr int LevelWordLength = 5;
constexpr int TimeWordLength = 4;
constexpr int MemoryArgumentAt = 7;
constexpr int EgtpathWordLength = 7;

// Room for the longest path the list can take and its quotes.
constexpr int PathSize = tablebase::TbPathListLimit + 8;

int saturate(std::int64_t value) { return int(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX)); }

// One "%d" of a scanf format: white space skipped, a sign, at least one
// digit. Saturates at the int range instead of overflowing. On success the
// cursor stands behind the number.
bool scanNumber(const char*& cursor, int& value) {
    const char* p = cursor;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    if (!platform::isAsciiDigit(*p)) return false;
    std::int64_t number = 0;
    for (; platform::isAsciiDigit(*p); ++p) number = std::min<std::int64_t>(number * 10 + (*p - '0'), std::int64_t(INT_MAX) + 1);
    value = saturate(negative ? -number : number);
    cursor = p;
    return true;
}

}  // namespace

// "LEVEL moves base increment", the base in minutes or minutes:seconds.
// Fields are stored as they are read, so a short line keeps what it had.
void levelCommand(const char* line) {
    incrementTenths = 0;
    const char* p = line + LevelWordLength;
    const bool clockForm = std::strchr(p, ':') != nullptr;
    int minutes = 0, increment = 0, fields = 0;
    if (scanNumber(p, movesPerControl)) {
        ++fields;
        if (scanNumber(p, minutes)) {
            ++fields;
            if (clockForm && *p == ':') {
                ++p;
                if (scanNumber(p, baseSeconds)) {
                    ++fields;
                    if (scanNumber(p, increment)) ++fields;
                }
            } else if (!clockForm && scanNumber(p, increment)) {
                ++fields;
            }
        }
    }
    if (fields < (clockForm ? 3 : 2)) {
        std::printf("Error (command not legal)\n");
        std::fflush(stdout);
        return;
    }
    baseSeconds = saturate((clockForm ? std::int64_t(baseSeconds) : 0) + std::int64_t(minutes) * 60);
    incrementTenths = saturate(std::int64_t(increment) * 10);
}

// "TIME" is always the engine's own clock, whichever colour it plays; the
// opponent's clock enters no decision. 0, or no number, changes nothing.
void timeCommand(const char* line) {
    const int centiseconds = readSettingInteger(line + TimeWordLength);
    if (centiseconds == 0) return;
    if (line[0] == 'T') ownClock = centiseconds / 10;
}

void statusCommand(const char* line) { search::printStat01(); }

// The features the engine speaks; the two options show their current values.
void protoverCommand(const char* line) {
    std::printf("feature myname=\"%s\" name=1 ping=1 time=1 analyze=1 setboard=1 memory=1 reuse=0 egt=\"nalimov\"\n",
                engineName);
    std::printf("feature option=\"RESIGN -check %d\"\n", resignEnabled.load(std::memory_order_relaxed) ? 1 : 0);
    std::printf("feature option=\"USE BOOK -check %d\" done=1\n", book::useBook.load(std::memory_order_relaxed) ? 1 : 0);
    std::fflush(stdout);
}

// Answered through pendingOutput at once, even during a think, so that an
// interface can match its ping with the pong.
void pingCommand(const char* line) {
    std::snprintf(pendingOutput, PendingOutputSize, "pong%s\n", line + PingWordLength);
    flushPendingOutput();
}

// One memory figure for the hash tables and the tablebase cache; the cache
// takes its new size at the next tablebase set-up. The command loop has
// stopped any think before this runs.
void memoryCommand(const char* line) {
    const char* argument = std::strlen(line) > MemoryArgumentAt ? line + MemoryArgumentAt : "";
    const int megabytes = readSettingInteger(argument);
    const std::int64_t cache = search::tablebaseCacheSize(megabytes);
    tablebase::tbCacheBytes = std::int32_t(std::min<std::int64_t>(cache, INT32_MAX));
    search::setHashSize(std::int64_t(megabytes) * search::Megabyte);
}

// "EGTPATH NALIMOV <path>": the path joins the list, and the tables are
// looked for again along all of it. Any other kind of table is ignored.
void egtpathCommand(const char* line) {
    const char* p = line + EgtpathWordLength;
    p = platform::skipBlanks(p);
    if (!platform::opensWithNoCase(p, "NALIMOV")) return;
    while (*p != '\0' && !platform::isBlank(*p)) ++p;
    if (!platform::isBlank(*p)) return;
    p = platform::skipBlanks(p);
    if (*p == '\0' || std::strlen(p) >= std::size_t(PathSize)) return;
    char path[PathSize];
    std::strcpy(path, p);
    useTablebasePath(path);
}

// The answers to the two options of the feature lines; both may stand in
// one line, and other names are ignored.
void optionCommand(const char* line) {
    static constexpr const char* UseBookWord = "USE BOOK=";
    static constexpr const char* ResignWord = "RESIGN=";
    if (const char* at = std::strstr(line, UseBookWord))
        book::useBook.store(readSettingInteger(at + std::strlen(UseBookWord)) != 0, std::memory_order_relaxed);
    if (const char* at = std::strstr(line, ResignWord))
        resignEnabled.store(readSettingInteger(at + std::strlen(ResignWord)) != 0, std::memory_order_relaxed);
}

// A set-up refused for a missing king or a piece without a slot keeps the
// game that was on the board, rather than leaving a half-placed one that a
// move or a think could trip over. The reply is the same either way.
void setboardCommand(const char* line) {
    const int result = board::setupFromFenChecked(board::game, line + SetboardWordLength);
    if (result < 0 || (result & board::scanIllegal)) {
        std::printf("tellusererror Illegal position %d\n", result);
        std::fflush(stdout);
    }
}

}  // namespace frontend
