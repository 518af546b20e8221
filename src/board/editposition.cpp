#include "board/editposition.h"

#include <cstring>

#include "board/fen.h"
#include "board/game.h"
#include "platform/text.h"

namespace board {

namespace {

// Lines are at most 63 characters; the rest of a longer line is dropped, so
// that its tail can't be taken for a command of its own.
constexpr int EditLineSize = 64;

// One line, cut at the line feed (and a carriage return) and folded to
// upper case; false at the end of input.
bool readEditLine(std::FILE* input, char* line) {
    // Read byte by byte: a NUL inside the line must not hide its line feed.
    int c = std::fgetc(input);
    if (c == EOF) return false;
    int length = 0;
    for (; c != EOF && c != '\n'; c = std::fgetc(input))
        if (length < EditLineSize - 1) line[length++] = char(c);
    line[length] = '\0';
    line[std::strcspn(line, "\r")] = '\0';
    platform::upperCaseInPlace(line);
    return true;
}

// The square in characters 2 and 3, or NoSquare for a short or bad one.
int lineSquare(const char* line) {
    if (std::strlen(line) < 3) return NoSquare;
    const char file = line[1], rank = line[2];
    if (file < 'A' || file > 'H' || rank < '1' || rank > '8') return NoSquare;
    return makeSquare(file - 'A', rank - '1');
}

// The pieces the dialogue places through placePiece; NoType for others.
int editPieceType(char letter) {
    switch (letter) {
        case 'K': return King;
        case 'Q': return Queen;
        case 'R': return Rook;
        case 'B': return Bishop;
        case 'N': return Knight;
        default: return NoType;
    }
}

// "#": every id off the board; values stay, as the set-up recomputes them.
void emptyBoard(Game& g) {
    for (int id = 0; id < PieceIdCount; ++id) {
        g.pieceSquare[id] = NoSquare;
        g.pieceType[id] = King;
    }
    for (int& id : g.boardPiece) id = NoPiece;
}

// A piece put on an occupied square replaces what stood there; if it finds
// no slot, the old piece stays.
void editPlace(Game& g, int colour, char letter, int square) {
    const int old = g.boardPiece[square];
    removePiece(g, square);
    const int id = letter == 'P' ? placePawn(g, colour, square) : placePiece(g, colour, editPieceType(letter), square);
    if (id < 0 && old != NoPiece) {
        g.pieceSquare[old] = square;
        g.boardPiece[square] = old;
    }
}

// The end of the dialogue; finishSetup refuses a board without both kings.
int leaveEdit(Game& g, int side) {
    deriveCastleState(g);
    return finishSetup(g, side);
}

}  // namespace

// Pieces are added to what is on the board; an interface sends "#" first.
// The end of input inside the dialogue ends it as "." would. Nothing is
// printed: the caller reports the result.
int editPosition(int side, std::FILE* input) {
    Game& g = game;
    int colour = White;
    char line[EditLineSize];
    while (readEditLine(input, line)) {
        const char command = line[0];
        if (command == '.') return leaveEdit(g, side);
        if (command == 'C') {
            colour ^= 1;
        } else if (command == '#') {
            emptyBoard(g);
        } else if (command == 'X' || command == 'P' || editPieceType(command) != NoType) {
            const int square = lineSquare(line);
            if (square == NoSquare) continue;
            if (command == 'X')
                removePiece(g, square);
            else
                editPlace(g, colour, command, square);
        }
    }
    return leaveEdit(g, side);
}

}  // namespace board
