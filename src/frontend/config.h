#pragma once
// Settings of the configuration file and the switches that other parts of
// the front end read, and the reading of that file.

#include <atomic>
#include <cstdint>

#include "tablebase/registry.h"

namespace frontend {

// 1: the think thread runs the resign test after each of its moves. Written
// by the configuration and the xboard option, read by the think thread.
extern std::atomic<int> resignEnabled;
// 1: the log file is opened at start-up.
extern int logEnabled;

// The configuration file, looked for in programDirectory().
constexpr const char* ConfigFileName = "morvane.cfg";
// Characters of a configuration line that count; the rest of a longer line
// is dropped.
constexpr int ConfigLineLength = 126;

// The executable's directory, ending in '/', worked out at the first call
// and kept; empty if the system can't tell.
const char* programDirectory();

// What the configuration file and then the switches decide at start-up.
struct Settings {
    int hashExponent = 0;  // the hash tables get one bucket's size << hashExponent bytes
    char tbPathList[tablebase::TbPathListLimit + 2] = "";
    std::int32_t tbCacheBytes = tablebase::DefaultTbCacheBytes;
    // The engine's switches; -1 where the file said nothing, so the flag stands.
    int useBook = -1;
    int resign = -1;
    int logFile = -1;
    int ponder = -1;
    int bookLearn = -1;
};

// HASHTABLE=n and -hn alike: a size n of 1 or more asks for 2^(n-1)
// buckets; a smaller or unreadable size changes nothing.
void setHashTableSize(Settings& settings, const char* value);

// Reads morvane.cfg beside the executable into `settings`; a missing file
// leaves them as they were.
void readConfiguration(Settings& settings);
// The same for any file. Returns 0 if the file can't be opened.
int readConfigurationFile(const char* fileName, Settings& settings);
// Sets the engine's switches that the settings give (book, resign, log,
// ponder, book learning).
void applySwitches(const Settings& settings);

// A decimal integer as the configuration and the switches write it: blanks
// and tabs in front skipped, a sign, digits; saturates at the int range, and
// text that isn't a number reads as 0.
int readSettingInteger(const char* text);

}  // namespace frontend
