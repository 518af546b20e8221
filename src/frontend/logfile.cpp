#include "frontend/logfile.h"

#include "platform/clock.h"

namespace frontend {

std::FILE* logFile = nullptr;

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
