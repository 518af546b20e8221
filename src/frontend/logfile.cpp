#include "frontend/logfile.h"

#include <cstring>

#include "platform/clock.h"
#include "platform/path.h"

namespace frontend {

std::FILE* logFile = nullptr;
char logFileName[LogFileNameSize];

namespace {
constexpr const char* LogSuffix = ".log";
}  // namespace

// A name that doesn't fit stays empty, and no log is opened: a cut name
// would put the log somewhere the user doesn't look.
void formLogFileName(const char* argv0) {
    char path[LogFileNameSize];
    const char* program = platform::programPath(path, sizeof path) ? path : argv0;
    logFileName[0] = '\0';
    if (program == nullptr || program[0] == '\0') return;
    if (std::strlen(program) + std::strlen(LogSuffix) >= LogFileNameSize) return;
    std::strcpy(logFileName, program);
    std::strcat(logFileName, LogSuffix);
}

int openLog() {
    if (logFileName[0] == '\0') return 0;
    logFile = std::fopen(logFileName, "a+");
    return logFile != nullptr;
}

void logNewGame() {
    if (!logFile) return;
    std::fputs("[Event \"Computer chess game\"]\n", logFile);
    platform::LocalDate date;
    if (platform::localDate(date)) std::fprintf(logFile, "[Date \"%d.%02d.%02d\"]\n", date.year, date.month, date.day);
}

void logText(const char* text) {
    if (logFile) std::fprintf(logFile, "%s\n", text);
}

void flushLog() {
    if (logFile) std::fflush(logFile);
}

void closeLog() {
    if (!logFile) return;
    std::fclose(logFile);
    logFile = nullptr;
}

}  // namespace frontend
