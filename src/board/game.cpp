#include "board/game.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>

#include "board/keys.h"
#include "board/scan.h"
#include "board/tables.h"

namespace board {

Game game;
void (*resultFlushHook)() = nullptr;

namespace {

// The history array always has SearchHistoryRoom entries beyond its capacity.
GameHistoryEntry* allocateHistory(int capacity) {
    return static_cast<GameHistoryEntry*>(std::calloc(capacity + SearchHistoryRoom, sizeof(GameHistoryEntry)));
}

void resizeHistory(Game& g, int capacity) {
    auto* grown = static_cast<GameHistoryEntry*>(
        std::realloc(g.history, (capacity + SearchHistoryRoom) * sizeof(GameHistoryEntry)));
    if (grown == nullptr) {
        std::fputs("*** out of memory for the game history\n", stderr);
        std::exit(1);
    }
    g.history = grown;
    g.historyCapacity = capacity;
}

}  // namespace

void initGame() {
    static bool built = false;
    if (built) return;
    built = true;
    game.history = allocateHistory(HistoryStartCapacity);
    game.historyCapacity = HistoryStartCapacity;
    game.historyTop = -1;
    game.legalMoves = new Move[MoveListSize]();
    game.position = new Position();
    initKeyTables();
    initStaticTables();
    resetGame(game);
    game.softTimeLimit = game.hardTimeLimit = DefaultTimeLimit;
    game.uciMode = 0;
    game.startFen = nullptr;
}

void copyGameToPosition(const Game& g, Position& position) {
    std::memcpy(position.pieceSquare, g.pieceSquare, sizeof position.pieceSquare);
    std::memcpy(position.boardPiece, g.boardPiece, sizeof position.boardPiece);
    std::memcpy(position.pieceType, g.pieceType, sizeof position.pieceType);
    std::memcpy(position.castleState, g.castleState, sizeof position.castleState);
    std::memcpy(position.pieceValue, g.pieceValue, sizeof position.pieceValue);
}

void copyPositionToGame(Game& g, const Position& position) {
    std::memcpy(g.pieceSquare, position.pieceSquare, sizeof g.pieceSquare);
    std::memcpy(g.boardPiece, position.boardPiece, sizeof g.boardPiece);
    std::memcpy(g.pieceType, position.pieceType, sizeof g.pieceType);
    std::memcpy(g.castleState, position.castleState, sizeof g.castleState);
    std::memcpy(g.pieceValue, position.pieceValue, sizeof g.pieceValue);
}

void resetGame(Game& g) {
    for (auto& id : g.boardPiece) id = NoPiece;
    for (int i = 0; i < PieceIdCount; ++i) {
        g.pieceSquare[i] = startSquare[i];
        g.boardPiece[startSquare[i]] = i;
    }
    g.bookMissesLeft = BookMissesStart;
    for (int i = 0; i < PieceIdCount; ++i) {
        g.pieceType[i] = startType[i];
        g.pieceValue[i] = startValue[i];
    }
    g.pieceType[NoPiece] = NoType;
    g.pieceValue[NoPiece] = 0;
    g.sideToMove = White;
    g.gameOver = GameOn;
    for (auto& state : g.castleState) state = CastleRight;
    Position& p = *g.position;
    p.phaseClass = 0;
    p.materialBalance = 0;
    p.pieceCount[0] = p.pieceCount[1] = 0;
    p.pawnCount[0] = p.pawnCount[1] = 0;
    p.fiftyCounter = 0;
    g.depthLimit = DefaultDepthLimit;
    resetHistory(g);
    g.epSquare = 0;
    g.startedFromInitial = 1;
    g.resignCount = 0;
    g.resignLastScore = 0;
    g.ponderMove = 0;
    g.ponderElapsed = 0;
    std::srand(unsigned(std::time(nullptr)));
}

void resetHistory(Game& g) {
    g.historyCursor = -1;
    g.historyTop = -1;
    if (g.historyCapacity > HistoryStartCapacity) resizeHistory(g, HistoryStartCapacity);
}

void rescanMoves(Game& g) {
    copyGameToPosition(g, *g.position);
    scanForWhite(g.legalMoves, NoMove, *g.position);
}

int packCastleState(const Game& g) {
    return (g.castleState[CastleWhiteShort] + 1) | (g.castleState[CastleWhiteLong] + 1) << 2 |
           (g.castleState[CastleBlackShort] + 1) << 4 | (g.castleState[CastleBlackLong] + 1) << 6;
}

void unpackCastleState(Game& g, int code) {
    g.castleState[CastleWhiteShort] = (code & 3) - 1;
    g.castleState[CastleWhiteLong] = (code >> 2 & 3) - 1;
    g.castleState[CastleBlackShort] = (code >> 4 & 3) - 1;
    g.castleState[CastleBlackLong] = (code >> 6 & 3) - 1;
}

int isIrreversible(Move move, const Position& position) {
    const int id = position.boardPiece[moveFrom(move)];
    return isPawnType(position.pieceType[id]) || position.boardPiece[moveTo(move)] != NoPiece ||
           moveSpecial(move) != SpecialNone;
}

int enPassantTarget(Move move, const Position& position) {
    const int from = moveFrom(move), to = moveTo(move);
    const int id = position.boardPiece[from];
    if (!isPawnType(position.pieceType[id]) || std::abs(to - from) != 16) return 0;
    const bool moverBlack = isBlackId(id);
    for (int df : {-1, 1}) {
        const int file = fileOf(to) + df;
        if (file < 0 || file > 7) continue;
        const int other = position.boardPiece[to + df];
        if (other != NoPiece && isBlackId(other) != moverBlack && isPawnType(position.pieceType[other]))
            return (from < to ? from : to) + 8;
    }
    return 0;
}

int capturedByMove(const Game& g, Move move) {
    int sq = moveTo(move);
    if (moveSpecial(move) == SpecialEnPassant) sq += g.sideToMove == White ? -8 : 8;
    return g.boardPiece[sq];
}

int makeGameMove(Game& g, Move move) {
    // Text carries neither capture mark nor special: match from and to first.
    const Move* found = nullptr;
    for (const Move* m = g.legalMoves; *m; ++m)
        if ((*m & FromToMask) == (move & FromToMask)) {
            found = m;
            break;
        }
    if (found == nullptr) return ResultNotInList;
    if (*found & PromotionBit) {
        if (!(move & PromotionBit)) return ResultNeedsPromotion;
        found = nullptr;
        for (const Move* m = g.legalMoves; *m; ++m)
            if ((*m & FromToSpecialMask) == (move & FromToSpecialMask)) {
                found = m;
                break;
            }
        if (found == nullptr) return ResultNotInList;
    }
    const Move word = *found & LowMoveMask;
    Position& p = *g.position;
    if (g.boardPiece[moveFrom(word)] == NoPiece) return ResultNotInList;  // a stale list never moves nothing

    const int savedTop = g.historyTop, savedCursor = g.historyCursor;
    const int savedEp = g.epSquare, savedFifty = p.fiftyCounter;
    g.historyTop = g.historyCursor;
    g.historyCursor += 1;
    if (g.historyTop == g.historyCapacity - 1) resizeHistory(g, g.historyCapacity + HistoryGrowth);
    g.historyTop += 1;
    GameHistoryEntry& entry = g.history[g.historyTop];
    const GameHistoryEntry savedEntry = entry;
    entry.move = std::uint16_t(word);
    entry.castleCode = std::uint8_t(packCastleState(g));
    entry.flags = std::uint8_t(capturedByMove(g, word));

    copyGameToPosition(g, p);
    const int irreversible = isIrreversible(word, p);
    g.epSquare = enPassantTarget(word, p);
    p.fiftyCounter = irreversible ? 0 : p.fiftyCounter + 1;

    const int result = scanAfterMoveOf(g.sideToMove, g.legalMoves, word, p);
    if (result & scanIllegal) {  // only on the marked list of a finished game
        entry = savedEntry;
        g.historyTop = savedTop;
        g.historyCursor = savedCursor;
        g.epSquare = savedEp;
        p.fiftyCounter = savedFifty;
        return ResultKingInCheck;
    }
    copyPositionToGame(g, p);
    g.sideToMove ^= 1;
    computeKeys(p);
    entry.keyHigh = p.hashKey[1];
    entry.keyMiddle = std::uint16_t(p.hashKey[0] >> 16);
    entry.flags |= (irreversible ? HistoryIrreversible : 0) | (g.sideToMove ? HistorySideToMove : 0);

    if (result & scanMate) {
        g.gameOver = GameMated;
        return ResultMate;
    }
    if (result & scanStalemate) {
        g.gameOver = GameStalemated;
        return ResultStalemate;
    }
    if (result & scanInsufficient) return ResultInsufficient;
    if (p.fiftyCounter < 4) return ResultOk;
    if (repetitionCount(g, g.sideToMove, p) > 1) return ResultRepetition;
    return p.fiftyCounter == 100 ? ResultFiftyMoves : ResultOk;
}

int repetitionCount(const Game& g, int side, const Position& position) {
    int count = 0;
    const std::uint16_t middle = std::uint16_t(position.hashKey[0] >> 16);
    for (int i = g.historyTop - 1; i >= 0; --i) {
        const GameHistoryEntry& e = g.history[i];
        if (e.keyHigh == position.hashKey[1] && e.keyMiddle == middle && ((e.flags >> 7) & 1) == side) ++count;
        if (e.move == 0) break;
        if (e.flags & HistoryIrreversible) break;
    }
    return count;
}

int takeBackMove(Game& g) {
    if (g.historyCursor < 0) return 1;
    const GameHistoryEntry& e = g.history[g.historyCursor];
    const int from = moveFrom(e.move), to = moveTo(e.move), special = moveSpecial(e.move);
    const int captured = e.flags & HistoryCapturedMask;

    const int id = g.boardPiece[to];
    g.boardPiece[from] = id;
    g.pieceSquare[id] = from;
    g.boardPiece[to] = NoPiece;
    if (captured != NoPiece) {
        g.boardPiece[to] = captured;
        g.pieceSquare[captured] = to;
    }
    g.sideToMove ^= 1;
    const Color mover = Color(g.sideToMove);
    if (special == SpecialEnPassant) {
        const int sq = to + (mover == White ? -8 : 8);
        g.boardPiece[to] = NoPiece;
        g.boardPiece[sq] = captured;
        g.pieceSquare[captured] = sq;
    } else if (isPromotion(e.move)) {
        g.pieceType[id] = pawnTypeOf(mover);
    } else if (isCastling(e.move)) {
        const bool shortSide = special == SpecialShortCastle;
        const int rook = idBase(mover) + (shortSide ? SlotRookH : SlotRookA);
        const int rank = mover == White ? 0 : 7;
        const int rookFrom = makeSquare(shortSide ? 5 : 3, rank), rookTo = makeSquare(shortSide ? 7 : 0, rank);
        g.boardPiece[rookFrom] = NoPiece;
        g.boardPiece[rookTo] = rook;
        g.pieceSquare[rook] = rookTo;
    }
    g.historyCursor -= 1;
    g.ponderMove = 0;
    unpackCastleState(g, e.castleCode);
    g.position->fiftyCounter = 0;
    g.gameOver = GameOn;
    if (g.historyCursor < BookRearmPlies) g.bookMissesLeft = BookMissesStart;
    copyGameToPosition(g, *g.position);
    scanMovesOf(g.sideToMove, g.legalMoves, *g.position);
    return 0;
}

void reportResult(int code, const char* text) {
    switch (code) {
        case ResultKingInCheck: std::printf("%s (error): %s\n", "Illegal move", text); break;
        case ResultNotInList: std::printf("%s: %s\n", "Illegal move", text); break;
        case ResultNeedsPromotion: std::printf("%s (promote?): %s\n", "Illegal move", text); break;
        case ResultMate:
            std::printf("%s\n", game.sideToMove == Black ? "1-0 {White mates}" : "0-1 {Black mates}");
            break;
        case ResultStalemate: std::printf("1/2-1/2 {Stalemate}\n"); break;
        case ResultRepetition: std::printf("1/2-1/2 {Triple repetition}\n"); break;
        case ResultFiftyMoves: std::printf("1/2-1/2 {50 moves rule}\n"); break;
        case ResultInsufficient: std::printf("1/2-1/2 {Insufficient material}\n"); break;
        case ResultResign: std::printf("resign\n"); break;
        default: break;
    }
    std::fflush(stdout);
    if (resultFlushHook) resultFlushHook();
}

}  // namespace board
