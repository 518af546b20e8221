// Entry point; the command loop arrives with the front end.
#include "board/game.h"

int main() {
    board::initGame();
    return 0;
}
