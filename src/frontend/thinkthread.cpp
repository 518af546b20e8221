#include "frontend/thinkthread.h"

namespace frontend {

std::atomic<int> thinking{0};
std::atomic<int> stopRequested{0};

// No think thread exists yet: the search isn't wired to the front end.
void startThink() {}

// With no think thread there is nothing to wait for.
void stopThinking() {}

}  // namespace frontend
