#pragma once
// What the file-reader fuzz targets share: a scratch file that holds the
// input, since the readers take a path, and the test that the game they
// leave behind is sound.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "board/game.h"
#include "board/scan.h"

namespace fuzzsupport {

// One scratch file for the process, rewritten for each input. The first
// call also builds the game and the tables.
inline const std::string& scratchPath(const char* kind) {
    static const std::string path = [kind] {
        board::initGame();
        return std::string("/tmp/morvane-fuzz-") + kind + "-" + std::to_string(getpid());
    }();
    return path;
}

inline const char* writeScratch(const char* kind, const std::uint8_t* data, std::size_t size) {
    const std::string& path = scratchPath(kind);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) std::abort();
    if (size > 0) std::fwrite(data, 1, size, file);
    std::fclose(file);
    return path.c_str();
}

// The list the game holds must be the one its board gives. A finished game
// or a refused set-up holds none to compare.
inline void checkLegalList(const board::Game& game) {
    if (game.gameOver != board::GameOn || game.legalMoves[0] == board::NoMove) return;
    board::Position position = *game.position;
    board::copyGameToPosition(game, position);
    board::Move fresh[board::MoveListSize];
    board::scanMovesOf(game.sideToMove, fresh, position);
    for (int i = 0; i < board::MoveListSize; ++i) {
        if (fresh[i] != game.legalMoves[i]) std::abort();
        if (fresh[i] == board::NoMove) break;
    }
}

}  // namespace fuzzsupport
