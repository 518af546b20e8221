#pragma once
// Settings of the configuration file and the switches that other parts of
// the front end read, and the reading of that file.

#include <atomic>
#include <cstdint>

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

// Reads morvane.cfg beside the executable. `hashExponent`, the path list and
// the cache size are the caller's; the other keys set the globals. A missing
// file leaves everything as it was.
void readConfiguration(int& hashExponent, char* pathList, std::int32_t& cacheBytes);
// The same for any file; `pathList` holds tablebase::TbPathListLimit + 2
// characters. Returns 0 if the file can't be opened.
int readConfigurationFile(const char* fileName, int& hashExponent, char* pathList, std::int32_t& cacheBytes);

// A decimal integer as the configuration and the switches write it: blanks
// and tabs in front skipped, a sign, digits; saturates at the int range, and
// text that isn't a number reads as 0.
int readSettingInteger(const char* text);

}  // namespace frontend
