#include "frontend/xboardcommands.h"

#include <cstdio>

#include "board/fen.h"
#include "board/game.h"
#include "board/scan.h"
#include "frontend/commandloop.h"

namespace frontend {

namespace {
// Where the FEN starts behind "SETBOARD".
constexpr int SetboardWordLength = 8;
// Where the echoed text starts behind "PING".
constexpr int PingWordLength = 4;
}  // namespace

// Time controls arrive with the time allocation.
void levelCommand(const char* line) {}
void timeCommand(const char* line) {}
// The search statistics line arrives with the think driver.
void statusCommand(const char* line) {}
// The feature lines arrive with the protocol's options.
void protoverCommand(const char* line) {}
// Table sizes and tablebases arrive with their own subsystems.
void memoryCommand(const char* line) {}
void egtpathCommand(const char* line) {}
void optionCommand(const char* line) {}

// Answered through pendingOutput at once, even during a think, so that an
// interface can match its ping with the pong.
void pingCommand(const char* line) {
    std::snprintf(pendingOutput, PendingOutputSize, "pong%s\n", line + PingWordLength);
    flushPendingOutput();
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
