#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace platform {

// A steady clock, so that a change of the wall clock can't shorten a think.
std::uint32_t tickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

void sleepMs(int milliseconds) {
    if (milliseconds > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// localtime_r rather than localtime: the think thread may read time too.
bool localDate(LocalDate& date) {
    const std::time_t now = std::time(nullptr);
    if (now == static_cast<std::time_t>(-1)) return false;
    std::tm parts{};
    if (!localtime_r(&now, &parts)) return false;
    date.year = parts.tm_year + 1900;
    date.month = parts.tm_mon + 1;
    date.day = parts.tm_mday;
    return true;
}

}  // namespace platform
