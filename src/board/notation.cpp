#include "board/notation.h"

#include <cstring>

#include "board/movetext.h"
#include "board/scan.h"
#include "board/tables.h"

namespace board {

namespace {

// Appends all of `piece` or nothing, so a full buffer never ends in half a move.
bool appendText(char* text, std::size_t capacity, const char* piece) {
    const std::size_t used = std::strlen(text), add = std::strlen(piece);
    if (used + add + 1 > capacity) return false;
    std::memcpy(text + used, piece, add + 1);
    return true;
}

const char* markText(int mark) {
    if (mark == MarkNone) return "";
    return mark == MarkFailHigh ? "!" : "?";
}

// The first word of a 0-terminated list whose bits under `mask` equal
// those of `move`, or null.
const Move* findInList(const Move* list, Move move, Move mask) {
    for (int i = 0; i < MoveListSize && list[i] != NoMove; ++i)
        if ((list[i] & mask) == (move & mask)) return &list[i];
    return nullptr;
}

// One character tells a piece's move from another of the same type to the
// same square: its file if their files differ, else its rank. The last such
// rival in the list decides, so a three-way tie may stay ambiguous.
char disambiguatorFor(Move move, int type, const Move* list, const Position& position) {
    if (type > Knight) return 0;
    const int from = moveFrom(move), to = moveTo(move);
    char result = 0;
    for (int i = 0; i < MoveListSize && list[i] != NoMove; ++i) {
        const Move other = list[i];
        if ((other & FromToMask) == (move & FromToMask) || moveTo(other) != to) continue;
        const int rival = position.boardPiece[moveFrom(other)];
        if (rival == NoPiece || position.pieceType[rival] != type) continue;
        result = fileOf(moveFrom(other)) != fileOf(from) ? char('a' + fileOf(from)) : char('1' + rankOf(from));
    }
    return result;
}

// The type of the piece on `from`, NoType if the square is empty.
int typeOn(const Position& position, int square) {
    const int id = position.boardPiece[square];
    return id >= 0 && id < NoPiece ? position.pieceType[id] : NoType;
}


}  // namespace

// No check or mate sign: the text serves the thinking output and the log,
// which don't need one.
void formatSanPart(char* text, std::size_t capacity, Move move, int type, bool isCapture, char disambiguator) {
    char scratch[16];
    int n = 0;
    const int special = moveSpecial(move);
    if (special == SpecialShortCastle || special == SpecialLongCastle) {
        std::strcpy(scratch, special == SpecialShortCastle ? "O-O" : "O-O-O");
        n = int(std::strlen(scratch));
    } else {
        const int from = moveFrom(move), to = moveTo(move);
        if (type > Knight) {
            if (isCapture || special == SpecialEnPassant) {
                scratch[n++] = char('a' + fileOf(from));
                if (disambiguator) scratch[n++] = disambiguator;
                scratch[n++] = 'x';
            }
        } else {
            scratch[n++] = pieceLetters[type < King ? King : type];
            if (disambiguator) scratch[n++] = disambiguator;
            if (isCapture) scratch[n++] = 'x';
        }
        scratch[n++] = char('a' + fileOf(to));
        scratch[n++] = char('1' + rankOf(to));
        if (isPromotion(move)) {
            scratch[n++] = '=';
            scratch[n++] = pieceLetters[promotionType(move)];
        }
    }
    scratch[n++] = ' ';
    scratch[n] = '\0';
    appendText(text, capacity, scratch);
}

// The log's move text: the list word carries what the entered move lacks
// (castling, en passant), while a promotion must name its piece to be found.
void formatSanFromList(char* text, std::size_t capacity, Move move, const Move* list, const Position& position) {
    const int type = typeOn(position, moveFrom(move));
    if (type == NoType) return;
    const Move* found = findInList(list, move, FromToMask);
    if (found == nullptr) return;
    const char disambiguator = disambiguatorFor(move, type, list, position);
    if (isPromotion(*found) || isPromotion(move)) {
        if (!isPromotion(move)) return;
        found = findInList(list, move, FromToSpecialMask);
        if (found == nullptr) return;
    }
    const bool isCapture = position.boardPiece[moveTo(*found)] != NoPiece;
    formatSanPart(text, capacity, *found, type, isCapture, disambiguator);
}

// Plays the line forward on a private copy, one scan per move, so that each
// move is written in the position it is played in. A loop rather than a
// recursion: it runs on the think thread, whose stack is small. Each move is
// taken from the list by from and to (and its piece, for a promotion), so the
// list word brings castling and en passant. The line stops early at a move
// that its position doesn't allow, and after a move that leaves no reply, so
// a stale line never reaches the scan as garbage.
void formatVariationSan(char* text, std::size_t capacity, const Move* line, int ply, int side, const Move* list,
                        const Position& position, int mark) {
    Position current = position;
    Move replies[MoveListSize];
    const Move* moves = list;
    for (; ply >= 0 && ply < VariationMoves; ++ply) {
        const Move wanted = line[ply];
        if (wanted == NoMove) break;
        const Move* found = findInList(moves, wanted, FromToMask);
        if (found != nullptr && isPromotion(*found)) found = findInList(moves, wanted, FromToSpecialMask);
        const int type = typeOn(current, moveFrom(wanted));
        if (found == nullptr || type == NoType) break;
        const Move move = moveHalf(*found);
        const bool isCapture = current.boardPiece[moveTo(move)] != NoPiece;
        formatSanPart(text, capacity, move, type, isCapture, disambiguatorFor(move, type, moves, current));
        if (ply == 0) appendText(text, capacity, markText(mark));

        const int result = scanAfterMoveOf(side, replies, move, current);
        if (result & scanNoContinuation) break;
        moves = replies;
        side ^= 1;
    }
}

// UCI's pv: coordinate moves each followed by a blank, the mark glued to the first.
void formatVariationCoordinate(char* text, std::size_t capacity, const Move* line, int mark) {
    if (capacity == 0) return;
    text[0] = '\0';
    for (int ply = 0; ply < VariationMoves; ++ply) {
        const Move move = line[ply];
        if (move == NoMove) break;
        char piece[SanMoveSize + 2];
        formatCoordinateMove(move, piece);
        std::strcat(piece, ply == 0 ? markText(mark) : "");
        std::strcat(piece, " ");
        if (!appendText(text, capacity, piece)) break;
    }
}

}  // namespace board
