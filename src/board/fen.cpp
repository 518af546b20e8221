#include "board/fen.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "board/scan.h"
#include "board/tables.h"
#include "platform/text.h"

namespace board {

namespace {

// The board field ends at any white space, line ends included.
bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Every id off the board; pieceValue is left to the caller, since the edit
// dialogue keeps it.
void clearBoard(Game& g) {
    for (int id = 0; id < PieceIdCount; ++id) {
        g.pieceSquare[id] = NoSquare;
        g.pieceType[id] = King;
    }
    for (int& id : g.boardPiece) id = NoPiece;
}

// A slot is free while its id is off the board.
bool slotFree(const Game& g, int id) { return g.pieceSquare[id] == NoSquare; }

// Puts id on square. A piece already there is taken off first, so the board
// and the piece list never disagree, whatever the caller sends.
void putPiece(Game& g, int id, int type, int square) {
    const int old = g.boardPiece[square];
    if (old != NoPiece) g.pieceSquare[old] = NoSquare;
    g.pieceSquare[id] = square;
    g.boardPiece[square] = id;
    g.pieceType[id] = type;
}

// FEN pawns: own file's slot, then the neighbours by nearSlotOffsets within
// the colour's pawn slots. False if all eight are taken.
bool placeFenPawn(Game& g, Color colour, int square) {
    const int base = idBase(colour);
    const int first = SlotPawnA + fileOf(square);
    int slot = -1;
    if (slotFree(g, base + first)) {
        slot = first;
    } else {
        for (int offset : nearSlotOffsets) {
            const int candidate = first + offset;
            if (candidate < SlotPawnA || candidate > SlotPawnH || !slotFree(g, base + candidate)) continue;
            slot = candidate;
            break;
        }
    }
    if (slot < 0) return false;
    putPiece(g, base + slot, pawnTypeOf(colour), square);
    return true;
}

// The type of a FEN letter folded to upper case: a piece type, WhitePawn
// for "P", or NoType for a letter that places nothing.
int fenLetterType(char upper) {
    switch (upper) {
        case 'K': return King;
        case 'Q': return Queen;
        case 'R': return Rook;
        case 'B': return Bishop;
        case 'N': return Knight;
        case 'P': return WhitePawn;
        default: return NoType;
    }
}

// One colour's rights from where its king and rooks stand. A king off its
// home square counts as having castled towards its wing; a missing king
// (edit dialogue) gets no right at all.
void deriveColourCastleState(Game& g, Color c) {
    const int rank = c == White ? 0 : 7;
    const int base = idBase(c);
    int& shortState = g.castleState[castleShortIndex(c)];
    int& longState = g.castleState[castleLongIndex(c)];
    const int king = g.pieceSquare[base + SlotKing];
    if (king == NoSquare) return;
    if (king == makeSquare(fileOf(E1), rank)) {
        const bool rookH = g.pieceSquare[base + SlotRookH] == makeSquare(fileOf(H1), rank);
        const bool rookA = g.pieceSquare[base + SlotRookA] == makeSquare(fileOf(A1), rank);
        shortState = rookH ? CastleRight : CastleLost;
        longState = rookA ? CastleRight : CastleLost;
        if (!rookA && !rookH) shortState = CastleDone;
    } else if (fileOf(king) >= fileOf(E1)) {
        shortState = CastleDone;
    } else {
        longState = CastleDone;
    }
}

// Everything of finishSetup up to the scan.
void recordSetup(Game& g, int side) {
    int balance = 0;
    for (int id = 0; id < PieceIdCount; ++id) {
        const int square = g.pieceSquare[id];
        if (square == NoSquare) continue;
        g.boardPiece[square] = id;
        balance += isBlackId(id) ? -g.pieceValue[id] : g.pieceValue[id];
    }
    Position& p = *g.position;
    p.materialBalance = balance;
    p.phaseClass = 0;
    p.fiftyCounter = 0;
    g.bookMissesLeft = BookMissesStart;
    g.gameOver = GameOn;
    g.sideToMove = side;
    resetHistory(g);
    g.startedFromInitial = 0;
    // Freed with std::free, like the history.
    if (g.startFen == nullptr) g.startFen = static_cast<char*>(std::calloc(StartFenSize, 1));
    if (g.startFen != nullptr) boardText(g, g.startFen);
    copyGameToPosition(g, p);
}

// What setupFromFenChecked puts back when a set-up fails. The Game's board
// fields travel in a Position, as they do between Game and scan.
struct GameSnapshot {
    Position board;
    std::int32_t sideToMove, historyCursor, historyTop, gameOver, epSquare;
    Position position;
    Move legalMoves[MoveListSize];
    char startFen[StartFenSize];
};

// Copies what a failed set-up may have changed.
void takeSnapshot(const Game& g, GameSnapshot& s) {
    copyGameToPosition(g, s.board);
    s.sideToMove = g.sideToMove;
    s.historyCursor = g.historyCursor;
    s.historyTop = g.historyTop;
    s.gameOver = g.gameOver;
    s.epSquare = g.epSquare;
    s.position = *g.position;
    std::memcpy(s.legalMoves, g.legalMoves, sizeof s.legalMoves);
    if (g.startFen != nullptr) std::memcpy(s.startFen, g.startFen, StartFenSize);
}

// Puts the game back as takeSnapshot found it.
void restoreSnapshot(Game& g, const GameSnapshot& s) {
    copyPositionToGame(g, s.board);
    g.sideToMove = s.sideToMove;
    g.historyCursor = s.historyCursor;
    g.historyTop = s.historyTop;
    g.gameOver = s.gameOver;
    g.epSquare = s.epSquare;
    *g.position = s.position;
    std::memcpy(g.legalMoves, s.legalMoves, sizeof s.legalMoves);
    if (g.startFen != nullptr) std::memcpy(g.startFen, s.startFen, StartFenSize);
}

// A failed set-up has already cleared the board, so the game that stood
// there is gone: nothing may be played or taken back on the remains, since
// a scan or a take-back on a board without kings would go wrong.
int refuseSetup(Game& g, int code) {
    g.legalMoves[0] = NoMove;
    g.gameOver = GameSetupNoMove;
    g.historyCursor = -1;
    g.historyTop = -1;
    return code;
}

}  // namespace

// Ids have roles, so a piece is given the slot of its role first, its twin's
// slot second, and a pawn slot from the top last (a promoted piece's place).
int placePiece(Game& g, int colour, int type, int square) {
    if (type < King || type > Knight) return -2;
    if (square < 0 || square >= NoSquare) return -1;
    const int base = colour == White ? 0 : BlackIdBase;
    const bool queenSide = fileOf(square) < fileOf(E1);
    int first = SlotKing, second = -1;
    switch (type) {
        case Queen: first = SlotQueen; break;
        case Rook:
            first = queenSide ? SlotRookA : SlotRookH;
            second = queenSide ? SlotRookH : SlotRookA;
            break;
        case Knight:
            first = queenSide ? SlotKnightB : SlotKnightG;
            second = queenSide ? SlotKnightG : SlotKnightB;
            break;
        case Bishop: {
            // Slot 4 holds the bishop of c1's square colour for White, c8's for Black.
            const bool evenSquare = ((fileOf(square) + rankOf(square)) & 1) == 0;
            const bool slotC = colour == White ? evenSquare : !evenSquare;
            first = slotC ? SlotBishopC : SlotBishopF;
            second = slotC ? SlotBishopF : SlotBishopC;
            break;
        }
        default: break;
    }
    int slot = -1;
    if (slotFree(g, base + first)) {
        slot = first;
    } else if (second >= 0 && slotFree(g, base + second)) {
        slot = second;
    } else if (type != King) {
        for (int s = SlotPawnH; s >= SlotPawnA && slot < 0; --s)
            if (slotFree(g, base + s)) slot = s;
    }
    if (slot < 0) return -1;
    putPiece(g, base + slot, type, square);
    return base + slot;
}

// The edit dialogue's pawn: its own file's slot, then the files next to it
// on either side, at most two files away.
int placePawn(Game& g, int colour, int square) {
    if (square < 0 || square >= NoSquare) return -1;
    const Color c = colour == White ? White : Black;
    const int base = idBase(c);
    const int file = fileOf(square);
    for (int offset : {0, -1, 1, -2, 2}) {
        const int f = file + offset;
        if (f < 0 || f > 7) continue;
        const int id = base + SlotPawnA + f;
        if (!slotFree(g, id)) continue;
        putPiece(g, id, pawnTypeOf(c), square);
        return id;
    }
    return -1;
}

// The piece that stood there keeps its type, as a captured piece does.
void removePiece(Game& g, int square) {
    if (square < 0 || square >= NoSquare) return;
    const int id = g.boardPiece[square];
    if (id == NoPiece) return;
    g.pieceSquare[id] = NoSquare;
    g.boardPiece[square] = NoPiece;
}

void removePiece(int square) { removePiece(game, square); }

// A set-up knows no history, so rights are read off the placement; the FEN
// letters can only add to them.
void deriveCastleState(Game& g) {
    for (int& state : g.castleState) state = CastleLost;
    deriveColourCastleState(g, White);
    deriveColourCastleState(g, Black);
}

// Every set-up ends here: a fresh game record on the placed board, and the
// list of the side to move. A position without a move is taken with gameOver
// set; one whose side not to move is in check is reported. A board without
// both kings (the edit dialogue can leave one) is recorded but not scanned,
// since the scan needs the kings' squares: no moves, gameOver set, -3.
int finishSetup(Game& g, int side) {
    recordSetup(g, side);
    if (g.pieceSquare[WhiteKingId] == NoSquare || g.pieceSquare[BlackKingId] == NoSquare) {
        g.legalMoves[0] = NoMove;
        g.gameOver = GameSetupNoMove;
        return SetupNoKing;
    }
    const int result = scanMovesOf(side, g.legalMoves, *g.position);
    if (result & scanNoContinuation) g.gameOver = GameSetupNoMove;
    // An illegal position leaves the list untouched; the old position's
    // moves must not be playable on the new board.
    if (result & scanIllegal) g.legalMoves[0] = NoMove;
    return result & scanIllegal;
}

// Reads the board, side and castling fields; the en passant field and the
// counters are ignored (epSquare keeps its value). Every read stops at the terminator, and a square is
// only formed from a file and rank inside the board, so no text can lead
// out of bounds.
int setupFromFen(Game& g, const char* text) {
    const char* p = platform::skipBlanks(text);
    clearBoard(g);
    for (int id = 0; id < PieceIdCount; ++id) g.pieceValue[id] = 0;

    bool pawnAt[2][64] = {};
    int rank = 7, file = 0;
    while (rank >= 0 && *p != '\0' && !isWhiteSpace(*p)) {
        const char c = *p;
        if (platform::isAsciiDigit(c)) {
            file += c - '0';
        } else if (platform::isAsciiUpper(c) || platform::isAsciiLower(c)) {
            const Color colour = platform::isAsciiLower(c) ? Black : White;
            const int type = fenLetterType(platform::isAsciiLower(c) ? char(c - 'a' + 'A') : c);
            const int square = makeSquare(file, rank);
            if (type == WhitePawn)
                pawnAt[colour][square] = true;
            else if (type != NoType && placePiece(g, colour, type, square) < 0)
                return refuseSetup(g, SetupNoSlot);
            file += 1;
        } else {
            ++p;
            continue;
        }
        ++p;
        if (file > 7) {
            rank -= 1;
            file = 0;
            if (*p != '\0') ++p;  // the slash behind a full rank
        }
    }
    if (g.pieceSquare[WhiteKingId] == NoSquare || g.pieceSquare[BlackKingId] == NoSquare)
        return refuseSetup(g, SetupNoKing);

    // Pawns last, so that extra pieces have taken pawn slots from the top.
    for (int square = 0; square < 64; ++square)
        if (pawnAt[White][square] && !placeFenPawn(g, White, square)) return refuseSetup(g, SetupNoSlot);
    for (int square = 63; square >= 0; --square)
        if (pawnAt[Black][square] && !placeFenPawn(g, Black, square)) return refuseSetup(g, SetupNoSlot);

    p = platform::skipBlanks(p);
    const int side = (*p == 'w' || *p == 'W') ? White : Black;
    if (*p != '\0') ++p;
    p = platform::skipBlanks(p);

    deriveCastleState(g);
    const struct {
        char letter;
        int index;
    } grants[4] = {{'K', CastleWhiteShort}, {'Q', CastleWhiteLong}, {'k', CastleBlackShort}, {'q', CastleBlackLong}};
    for (const auto& grant : grants) {
        if (*p != grant.letter) continue;
        // A letter grants the right whatever stands where; the move generators
        // castle only with king and rook at home, so a stray right is inert.
        g.castleState[grant.index] = CastleRight;
        ++p;
    }
    return finishSetup(g, side);
}

// A bad SETBOARD must not cost the game in progress: the set-up runs on the
// Game itself, and on -2 or -3 every field it touched (board, side, rights,
// history cursor and top, position, legal list, gameOver, startFen) gets its
// old value back. 0 and scanIllegal keep the new position, as setupFromFen does.
int setupFromFenChecked(Game& g, const char* text) {
    GameSnapshot saved;
    takeSnapshot(g, saved);
    const int result = setupFromFen(g, text);
    if (result == SetupNoSlot || result == SetupNoKing) restoreSnapshot(g, saved);
    return result;
}

// The book's key: FEN-like, with a slash behind rank 1 too and no counters.
void boardText(const Game& g, char* text) {
    char* out = text;
    for (int rank = 7; rank >= 0; --rank) {
        int run = 0;
        for (int file = 0; file < 8; ++file) {
            const int id = g.boardPiece[makeSquare(file, rank)];
            if (id < 0 || id >= NoPiece) {
                ++run;
                continue;
            }
            if (run > 0) *out++ = char('0' + run);
            run = 0;
            const int type = g.pieceType[id];
            const char letter = type >= King && type <= BlackPawn ? pieceLetterTable[type] : '?';
            *out++ = isBlackId(id) ? char(letter - 'A' + 'a') : letter;
        }
        if (run > 0) *out++ = char('0' + run);
        *out++ = '/';
    }
    *out++ = ' ';
    *out++ = g.sideToMove == White ? 'w' : 'b';
    *out++ = ' ';
    const char* castleOut = out;
    if (g.castleState[CastleWhiteShort] == CastleRight) *out++ = 'K';
    if (g.castleState[CastleWhiteLong] == CastleRight) *out++ = 'Q';
    if (g.castleState[CastleBlackShort] == CastleRight) *out++ = 'k';
    if (g.castleState[CastleBlackLong] == CastleRight) *out++ = 'q';
    if (out == castleOut) *out++ = '-';
    *out++ = ' ';
    if (g.epSquare > 0 && g.epSquare < NoSquare) {
        *out++ = char('a' + fileOf(g.epSquare));
        *out++ = char('1' + rankOf(g.epSquare));
    } else {
        *out++ = '-';
    }
    *out = '\0';
}

// The console's board: French initials, White in lower case (the reverse of
// FEN), rank 8 first.
void printBoard(const Game& g, std::FILE* out) {
    for (int rank = 7; rank >= 0; --rank) {
        char line[10];
        for (int file = 0; file < 8; ++file) {
            const int id = g.boardPiece[makeSquare(file, rank)];
            const int type = id >= 0 && id < NoPiece ? g.pieceType[id] : NoType;
            if (type < King || type > BlackPawn) {
                line[file] = '.';
                continue;
            }
            const char letter = pieceLetterTable[FrenchLettersOffset + type];
            line[file] = isBlackId(id) ? letter : char(letter - 'A' + 'a');
        }
        line[8] = '\n';
        line[9] = '\0';
        std::fputs(line, out);
    }
}

}  // namespace board
