// The short algebraic reader: the text becomes a pattern of constraints
// (piece, target square, optional origin file and rank, capture, promotion,
// castling side), and every legal move is tried against it.

#include "board/sanmove.h"

#include <cstring>

namespace board {

namespace {

// Longer texts are no moves; the longest real one, "Qh4xe1=Q+", is shorter.
constexpr int SanTextLimit = 16;

struct SanPattern {
    int type = NoType;    // King .. Knight, or WhitePawn for any pawn
    int castle = SpecialNone;
    int to = NoSquare;
    int fromFile = -1;
    int fromRank = -1;
    bool capture = false;
    int promotion = SpecialNone;
};

int pieceTypeOf(char c) {
    switch (c) {
        case 'K': return King;
        case 'Q': return Queen;
        case 'R': return Rook;
        case 'B': return Bishop;
        case 'N': return Knight;
        default: return NoType;
    }
}

int promotionOf(char c) {
    switch (c) {
        case 'Q': case 'q': return SpecialPromoteQueen;
        case 'R': case 'r': return SpecialPromoteRook;
        case 'B': case 'b': return SpecialPromoteBishop;
        case 'N': case 'n': return SpecialPromoteKnight;
        default: return SpecialNone;
    }
}

bool isFile(char c) { return c >= 'a' && c <= 'h'; }
bool isRank(char c) { return c >= '1' && c <= '8'; }

// Castling is written with letter O or digit zero.
int castleOf(const char* text) {
    if (std::strcmp(text, "O-O") == 0 || std::strcmp(text, "0-0") == 0) return SpecialShortCastle;
    if (std::strcmp(text, "O-O-O") == 0 || std::strcmp(text, "0-0-0") == 0) return SpecialLongCastle;
    return SpecialNone;
}

// Read from the end: promotion, target square, capture mark, then whatever
// is left names the origin. A dash between origin and target ("Ng1-f3",
// "e2-e4") is taken as a plain move.
bool parsePattern(const char* input, SanPattern& p) {
    char text[SanTextLimit + 1];
    std::size_t n = std::strlen(input);
    if (n == 0 || n > SanTextLimit) return false;
    std::memcpy(text, input, n + 1);
    while (n > 0 && std::strchr("+#!?", text[n - 1]) != nullptr) text[--n] = '\0';
    if ((p.castle = castleOf(text)) != SpecialNone) return true;

    std::size_t begin = 0;
    p.type = pieceTypeOf(text[0]);
    if (p.type != NoType) ++begin;
    else p.type = WhitePawn;
    if (p.type == WhitePawn && n >= 2 && promotionOf(text[n - 1]) != SpecialNone && isRank(text[n - 2])) {
        p.promotion = promotionOf(text[--n]);
    } else if (p.type == WhitePawn && n >= 3 && text[n - 2] == '=' && promotionOf(text[n - 1]) != SpecialNone) {
        p.promotion = promotionOf(text[n - 1]);
        n -= 2;
    }
    if (n < begin + 2 || !isFile(text[n - 2]) || !isRank(text[n - 1])) return false;
    p.to = makeSquare(text[n - 2] - 'a', text[n - 1] - '1');
    n -= 2;
    if (n > begin && (text[n - 1] == 'x' || text[n - 1] == ':')) {
        p.capture = true;
        --n;
    } else if (n > begin && text[n - 1] == '-') {
        --n;
    }
    if (n > begin && isRank(text[n - 1])) p.fromRank = text[--n] - '1';
    if (n > begin && isFile(text[n - 1])) p.fromFile = text[--n] - 'a';
    if (n != begin) return false;
    // A pawn moves straight unless it captures, and captures only with its file named.
    if (p.type == WhitePawn && p.fromFile < 0) {
        if (p.capture) return false;
        p.fromFile = fileOf(p.to);
    }
    return true;
}

bool fits(const Game& g, Move word, const SanPattern& p) {
    const int special = moveSpecial(word);
    if (p.castle != SpecialNone) return special == p.castle;
    if (isCastling(word) || moveTo(word) != p.to) return false;
    const int from = moveFrom(word);
    const int id = g.boardPiece[from];
    if (id < 0 || id >= NoPiece) return false;
    const int type = g.pieceType[id];
    if (p.type == WhitePawn ? !isPawnType(type) : type != p.type) return false;
    if (p.fromFile >= 0 && fileOf(from) != p.fromFile) return false;
    if (p.fromRank >= 0 && rankOf(from) != p.fromRank) return false;
    // The board, not the list's capture mark, which promotions don't all carry.
    const bool captures = special == SpecialEnPassant || g.boardPiece[moveTo(word)] != NoPiece;
    if (p.capture && !captures) return false;
    return isPromotion(word) ? special == p.promotion : p.promotion == SpecialNone;
}

}  // namespace

Move findSanMove(const Game& g, const char* text, int* why) {
    SanPattern pattern;
    int result = SanNotAMove;
    Move found = NoMove;
    if (parsePattern(text, pattern)) {
        int matches = 0;
        for (const Move* word = g.legalMoves; *word != NoMove; ++word) {
            if (!fits(g, *word, pattern)) continue;
            if (++matches == 1) found = *word;
        }
        result = matches == 1 ? SanFound : matches == 0 ? SanNoMatch : SanAmbiguous;
        if (matches != 1) found = NoMove;
    }
    if (why != nullptr) *why = result;
    return found;
}

}  // namespace board
