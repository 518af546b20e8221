// Entry point: build the game and its tables, list White's first moves, then
// read commands until "QUIT" or the end of input.
#include "board/game.h"
#include "frontend/commandloop.h"

int main(int argc, char** argv) {
    board::initGame();
    board::rescanMoves(board::game);
    return frontend::commandLoop(argc, argv);
}
