#include "board/movetext.h"

#include <cstring>

#include "board/tables.h"
#include "platform/text.h"

namespace board {

void formatCoordinateMove(Move move, char* text) {
    const int from = moveFrom(move), to = moveTo(move);
    text[0] = char('a' + fileOf(from));
    text[1] = char('1' + rankOf(from));
    text[2] = char('a' + fileOf(to));
    text[3] = char('1' + rankOf(to));
    int n = 4;
    if (isPromotion(move)) text[n++] = pieceLetters[promotionType(move)];
    text[n] = '\0';
}

namespace {
bool isFileLetter(char c) { return c >= 'A' && c <= 'H'; }
bool isRankDigit(char c) { return c >= '1' && c <= '8'; }

// Promotion letters in both languages' initials.
int promotionSpecial(char letter) {
    switch (letter) {
        case 'Q': case 'D': return SpecialPromoteQueen;
        case 'R': case 'T': return SpecialPromoteRook;
        case 'B': case 'F': return SpecialPromoteBishop;
        case 'N': case 'C': return SpecialPromoteKnight;
        default: return SpecialNone;
    }
}
}  // namespace

Move parseCoordinateMove(char* text, int side) {
    platform::upperCaseInPlace(text);

    if (text[0] == '0' || text[0] == 'O') {
        const std::size_t length = std::strlen(text);
        const bool fourthIsDash = length >= 4 && text[3] == '-';
        if (!fourthIsDash && (std::strncmp(text, "O-O", 3) == 0 || std::strncmp(text, "0-0", 3) == 0))
            return side == White ? WhiteShortCastle : BlackShortCastle;
        if (std::strncmp(text, "O-O-O", 5) == 0 || std::strncmp(text, "0-0-0", 5) == 0)
            return side == White ? WhiteLongCastle : BlackLongCastle;
        return NoMove;
    }
    if (std::strlen(text) < 4) return NoMove;
    if (!isFileLetter(text[0]) || !isRankDigit(text[1]) || !isFileLetter(text[2]) || !isRankDigit(text[3]))
        return NoMove;
    const int from = makeSquare(text[0] - 'A', text[1] - '1');
    const int to = makeSquare(text[2] - 'A', text[3] - '1');
    const Move plain = makeMove(from, to);
    if (text[4] == '\0') return plain;
    if (text[4] == 'E' && text[5] == 'P') return makeMove(from, to, SpecialEnPassant);
    char letter;
    if (text[4] == '=')
        letter = text[5];
    else if (!platform::isAsciiLetter(text[4]))
        return plain;
    else
        letter = text[4];
    return makeMove(from, to, promotionSpecial(letter));
}

}  // namespace board
