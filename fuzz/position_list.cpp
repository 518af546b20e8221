// Fuzz target: position lists. The input is loaded as a piece list onto a
// game that holds a position of its own. A refused list must leave that
// position as it was; an accepted one must have both kings and a sound list.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "board/fen.h"
#include "frontend/gamefiles.h"
#include "scratchgame.h"

namespace {
constexpr const char* HeldPosition = "r3k2r/pp3ppp/8/3pP3/8/8/PP3PPP/R3K2R w KQkq - 0 1";
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    board::Game& game = board::game;
    const char* path = fuzzsupport::writeScratch("list", data, size);
    board::setupFromFen(game, HeldPosition);
    char before[board::BoardTextSize], after[board::BoardTextSize];
    board::boardText(game, before);
    const int result = frontend::loadPositionFile(game, path);
    board::boardText(game, after);
    if (result != 0 && std::strcmp(before, after) != 0) std::abort();
    if (result == 0 && (game.pieceSquare[board::WhiteKingId] == board::NoSquare ||
                        game.pieceSquare[board::BlackKingId] == board::NoSquare))
        std::abort();
    fuzzsupport::checkLegalList(game);
    return 0;
}
