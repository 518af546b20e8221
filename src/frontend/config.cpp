#include "frontend/config.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "book/book.h"
#include "frontend/booklearning.h"
#include "frontend/thinkthread.h"
#include "platform/path.h"
#include "search/hashtable.h"
#include "platform/text.h"

namespace frontend {

std::atomic<int> resignEnabled{1};
int logEnabled = 0;

namespace {

// Room for any path the system reports, well beyond a short install path.
constexpr int ProgramDirectorySize = 4096;
// One line of the file, its first ConfigLineLength characters kept and the
// rest dropped, so that the tail of an overlong line is never read as a
// setting of its own. The line feed and a carriage return before it are cut.
// Returns 0 at the end of the file.
int readConfigLine(std::FILE* file, char* line) {
    int length = 0, c = 0, any = 0;
    while ((c = std::fgetc(file)) != EOF) {
        any = 1;
        if (c == '\n') break;
        if (length < ConfigLineLength) line[length++] = char(c);
    }
    if (length > 0 && line[length - 1] == '\r') --length;
    line[length] = '\0';
    return any;
}

// TABLEBASE: the text joins the list behind a ';' only if it opens with a
// character above blank, and a text that wouldn't fit leaves the line unread.
void addTablebasePath(char* pathList, const char* value) {
    const char* text = platform::skipBlanks(value);
    const int listLength = int(std::strlen(pathList));
    const int textLength = int(std::strlen(text));
    if (textLength >= tablebase::TbPathListLimit - listLength) return;
    if (listLength != 0 && static_cast<unsigned char>(text[0]) > ' ') std::strcat(pathList, ";");
    std::strcat(pathList, text);
}

// A megabyte figure in bytes, kept inside the i32 that holds it.
std::int32_t megabytesToBytes(int megabytes) {
    const std::int64_t bytes = std::int64_t(megabytes) * search::Megabyte;
    if (bytes > INT32_MAX) return INT32_MAX;
    if (bytes < INT32_MIN) return INT32_MIN;
    return std::int32_t(bytes);
}

enum class Key { HashTable, Tablebase, NullEval, TbCacheSize, UseBook, Resign, LogFile, Ponder, BookLearn };

struct KeyName {
    const char* name;
    Key key;
};

// Compared as prefixes in this order, so the first that fits wins (a key
// RESIGNATION reads as RESIGN).
constexpr KeyName keyNames[] = {
    {"HASHTABLE", Key::HashTable},       {"TABLEBASE", Key::Tablebase}, {"NULLEVAL", Key::NullEval},
    {"TB_CACHE_SIZE", Key::TbCacheSize}, {"USE_BOOK", Key::UseBook},    {"RESIGN", Key::Resign},
    {"LOGFILE", Key::LogFile},           {"PONDER", Key::Ponder},       {"BOOK_LEARN", Key::BookLearn},
};

// One line: a comment, an unknown key or a line without '=' does nothing.
void applyConfigLine(const char* line, Settings& settings) {
    const char* text = platform::skipBlanks(line);
    if (*text == ';') return;
    const char* equals = std::strchr(text, '=');
    if (equals == nullptr) return;
    const char* value = equals + 1;
    for (const KeyName& entry : keyNames) {
        if (!platform::opensWithNoCase(text, entry.name)) continue;
        switch (entry.key) {
            case Key::HashTable: setHashTableSize(settings, value); break;
            case Key::Tablebase: addTablebasePath(settings.tbPathList, value); break;
            case Key::NullEval: break;  // accepted for old files; it tunes nothing here
            case Key::TbCacheSize: settings.tbCacheBytes = megabytesToBytes(readSettingInteger(value)); break;
            case Key::UseBook: settings.useBook = readSettingInteger(value) != 0; break;
            case Key::Resign: settings.resign = readSettingInteger(value) != 0; break;
            case Key::LogFile: settings.logFile = readSettingInteger(value) != 0; break;
            case Key::Ponder: settings.ponder = readSettingInteger(value) != 0; break;
            case Key::BookLearn: settings.bookLearn = readSettingInteger(value) != 0; break;
        }
        return;
    }
}

}  // namespace

// Cut behind the last separator, so it ends in one; kept after the first
// call, since the executable doesn't move.
const char* programDirectory() {
    static char directory[ProgramDirectorySize];
    static bool known = false;
    if (!known) {
        platform::programDirectoryOf(directory, sizeof directory);
        known = true;
    }
    return directory;
}

int readSettingInteger(const char* text) {
    text = platform::skipBlanks(text);
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    long long value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        value = value * 10 + (*text - '0');
        if (value > INT_MAX) {
            value = INT_MAX;
            break;
        }
    }
    return negative ? -int(value) : int(value);
}

void setHashTableSize(Settings& settings, const char* value) {
    const int n = readSettingInteger(value);
    if (n >= 1) settings.hashExponent = n - 1;
}

int readConfigurationFile(const char* fileName, Settings& settings) {
    std::FILE* file = std::fopen(fileName, "r");
    if (file == nullptr) return 0;
    char line[ConfigLineLength + 1];
    while (readConfigLine(file, line)) applyConfigLine(line, settings);
    std::fclose(file);
    return 1;
}

// The file lies beside the executable, whatever the working directory.
void readConfiguration(Settings& settings) {
    char fileName[ProgramDirectorySize + 16];
    std::snprintf(fileName, sizeof fileName, "%s%s", programDirectory(), ConfigFileName);
    readConfigurationFile(fileName, settings);
}

void applySwitches(const Settings& settings) {
    if (settings.useBook >= 0) book::useBook.store(settings.useBook, std::memory_order_relaxed);
    if (settings.resign >= 0) resignEnabled.store(settings.resign, std::memory_order_relaxed);
    if (settings.logFile >= 0) logEnabled = settings.logFile;
    if (settings.ponder >= 0) ponderEnabled.store(settings.ponder, std::memory_order_relaxed);
    if (settings.bookLearn >= 0) bookLearning = settings.bookLearn;
}

}  // namespace frontend
