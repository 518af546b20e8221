// Fuzz target: game files. The input is loaded as a game file onto the
// game. Whatever the bytes, the game left behind must be sound: its legal
// list is the one its board gives, and every move it kept can be taken back.

#include <cstdint>
#include <cstdlib>

#include "frontend/gamefiles.h"
#include "scratchgame.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    board::Game& game = board::game;
    frontend::loadGameFile(game, fuzzsupport::writeScratch("game", data, size));
    fuzzsupport::checkLegalList(game);
    const int played = game.historyCursor + 1;
    for (int i = 0; i < played; ++i)
        if (board::takeBackMove(game) != 0) std::abort();
    return 0;
}
