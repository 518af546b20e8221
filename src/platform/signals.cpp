#include "platform/signals.h"

#include <csignal>

namespace platform {

void ignoreInterrupts() { std::signal(SIGINT, SIG_IGN); }

}  // namespace platform
