#include "search/search.h"

#include "search/node.h"

namespace search {

std::atomic<int> abortSearch{0};
std::jmp_buf abortJump;
int timeCheckCounter = 0;
int timeCheckInterval = TimeCheckInterval;
std::atomic<std::uint32_t> nodeCount{0};
std::atomic<std::uint32_t> moveCount{0};
std::atomic<std::uint32_t> interiorCount{0};
std::atomic<std::uint32_t> hashHitCount{0};
std::atomic<std::uint32_t> quiesceCount{0};
std::atomic<board::Move> currentRootMove{0};
int extensionPlyLimit = 0;

// The twins keep the names that the rest of the engine calls; the colour is
// fixed at compile time in each.
int searchWhite(board::Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent) {
    return searchOf<board::White>(move, flags, depth, alpha, beta, parent);
}

int searchBlack(board::Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent) {
    return searchOf<board::Black>(move, flags, depth, alpha, beta, parent);
}

}  // namespace search
