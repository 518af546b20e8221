// Entry point: build the game and its tables, start up from the
// configuration and the switches, then read commands until "QUIT" or the end
// of input.
#include "board/game.h"
#include "frontend/commandloop.h"
#include "frontend/startup.h"
#include "platform/signals.h"

int main(int argc, char** argv) {
    platform::ignoreInterrupts();
    board::initGame();
    const int code = frontend::startUp(argc, argv);
    if (code != frontend::StartupContinue) return code;
    return frontend::commandLoop(argc, argv);
}
