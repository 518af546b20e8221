// tbindex < LINES
// For each input line "BOARD STM EP" (a FEN board field, w or b, an en
// passant square such as e3 or -) prints "ROW SIDE SWAPPED INDEX": the
// table's row name, its side (0 when the row's first side moves), 1 if the
// row's first side is Black on this board, and the index a probe reads. A
// line that no table covers, or that can't be read, gets "none" and why.
// Every table counts as present; no file is opened.

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "board/types.h"
#include "tablebase/probe.h"
#include "tablebase/registry.h"

namespace {

constexpr int LineSize = 256;

struct Board {
    std::int32_t pieceSquare[board::PieceIdCount];
    std::int32_t pieceType[board::PieceIdCount + 1];
};

int typeOfLetter(char letter) {
    switch (letter | 0x20) {
    case 'k': return board::King;
    case 'q': return board::Queen;
    case 'r': return board::Rook;
    case 'b': return board::Bishop;
    case 'n': return board::Knight;
    case 'p': return letter == 'P' ? board::WhitePawn : board::BlackPawn;
    default: return -1;
    }
}

// Kings take their colour's first id, the other men the next free ones.
bool readBoard(const char* field, Board& b) {
    for (int id = 0; id < board::PieceIdCount; ++id) b.pieceSquare[id] = board::NoSquare;
    for (int& type : b.pieceType) type = board::NoType;
    int next[2] = {1, 1}, kings[2] = {0, 0};
    int file = 0, rank = 7;
    for (const char* c = field; *c != '\0'; ++c) {
        if (*c == '/') {
            if (file != 8 || rank == 0) return false;
            file = 0;
            --rank;
        } else if (*c >= '1' && *c <= '8') {
            file += *c - '0';
            if (file > 8) return false;
        } else {
            const int type = typeOfLetter(*c);
            if (type < 0 || file > 7) return false;
            const int colour = (*c >= 'a') ? board::Black : board::White;
            int slot;
            if (type == board::King) {
                if (kings[colour]++) return false;
                slot = board::SlotKing;
            } else {
                if (next[colour] >= board::BlackIdBase) return false;
                slot = next[colour]++;
            }
            const int id = board::idBase(board::Color(colour)) + slot;
            b.pieceSquare[id] = board::makeSquare(file++, rank);
            b.pieceType[id] = type;
        }
    }
    return file == 8 && rank == 0 && kings[0] == 1 && kings[1] == 1;
}

bool readSquare(const char* text, int& square) {
    if (std::strcmp(text, "-") == 0) {
        square = -1;
        return true;
    }
    if (std::strlen(text) != 2 || text[0] < 'a' || text[0] > 'h' || text[1] < '1' || text[1] > '8') return false;
    square = board::makeSquare(text[0] - 'a', text[1] - '1');
    return true;
}

void answer(const char* line) {
    char field[LineSize], mover[LineSize], ep[LineSize];
    Board b;
    int side = 0, epSquare = -1;
    if (std::sscanf(line, "%255s %255s %255s", field, mover, ep) != 3 || !readBoard(field, b) ||
        (std::strcmp(mover, "w") != 0 && std::strcmp(mover, "b") != 0) || !readSquare(ep, epSquare)) {
        std::printf("none unreadable\n");
        return;
    }
    side = mover[0] == 'b';
    if (tablebase::tbCountPieces(b.pieceSquare, b.pieceType) < 1) {
        std::printf("none bare kings\n");
        return;
    }
    tablebase::tbBuildLists(b.pieceSquare, b.pieceType);
    tablebase::TbTarget target;
    if (!tablebase::tbLocate(side, epSquare, target)) {
        std::printf("none no table\n");
        return;
    }
    if (target.index >= tablebase::tbPositions(target.rowId, target.side)) {
        std::printf("none outside %s %d\n", tablebase::tbRowName(target.rowId), target.side);
        return;
    }
    std::printf("%s %d %d %u\n", tablebase::tbRowName(target.rowId), target.side, target.swapped, target.index);
}

}  // namespace

int main() {
    tablebase::tbMarkAllPresent();
    char line[LineSize];
    while (std::fgets(line, sizeof line, stdin) != nullptr) {
        // A line too long for the buffer is one bad line, not several.
        if (std::strchr(line, '\n') == nullptr && !std::feof(stdin)) {
            int c;
            while ((c = std::getchar()) != '\n' && c != EOF) {
            }
            std::printf("none unreadable\n");
            continue;
        }
        answer(line);
    }
    return 0;
}
