#pragma once
// The game level: the one global Game with its history and legal-move list,
// and the operations that play, take back and judge moves on it. Legality at
// this level is decided by the scan (board/scan.h).

#include <cstdint>

#include "board/types.h"

namespace board {

// Move results of makeGameMove, printed by reportResult.
enum MoveResult : int {
    ResultKingInCheck = -2,
    ResultNotInList = -1,
    ResultOk = 0,
    ResultNeedsPromotion = 1,
    ResultMate = 2,
    ResultStalemate = 3,
    ResultRepetition = 4,
    ResultFiftyMoves = 5,
    ResultInsufficient = 6,
    ResultResign = 10,
};

// gameOver values.
constexpr int GameOn = 0;
constexpr int GameSetupNoMove = 1;
constexpr int GameMated = 2;
constexpr int GameStalemated = 3;

// One move played. The search reads these for repetitions.
struct GameHistoryEntry {
    std::uint32_t keyHigh;    // high word of hashKey after the move
    std::uint16_t keyMiddle;  // upper 16 bits of the low word
    std::uint16_t move;       // low 16 bits of the list word
    std::uint8_t castleCode;  // the four states before the move, +1, 2 bits each
    std::uint8_t flags;       // bits 0-5 captured id, 6 irreversible, 7 side to move after
};
constexpr int HistoryCapturedMask = 0x3f;
constexpr int HistoryIrreversible = 0x40;
constexpr int HistorySideToMove = 0x80;

constexpr int HistoryStartCapacity = 600;
constexpr int HistoryGrowth = 40;
// Entries the search may write above historyTop during a think. They are
// allocated beyond historyCapacity so the growth rule stays as it is.
constexpr int SearchHistoryRoom = 64;

// Size of startFen: the longest board text is 82 characters.
constexpr int StartFenSize = 96;

struct Game {
    GameHistoryEntry* history;
    std::int32_t historyCapacity;
    std::int32_t historyTop;
    std::int32_t historyCursor;
    std::int32_t depthLimit;
    std::int32_t startedFromInitial;
    char* startFen;
    std::int32_t epSquare;
    std::int32_t pieceSquare[32];
    std::int32_t boardPiece[64];
    std::int32_t pieceType[33];
    std::int32_t pieceValue[33];
    std::int32_t sideToMove;
    std::int32_t castleState[4];
    Move* legalMoves;
    Position* position;
    std::int32_t gameOver;
    std::int32_t softTimeLimit;
    std::int32_t hardTimeLimit;
    std::int32_t resignCount;
    std::int32_t resignLastScore;
    std::int32_t uciMode;
    std::int32_t firstGoOfGame;
    // Pondering: the reply the engine expects, its own answer to that reply,
    // and the tenths, depth and score that thinking about it has earned.
    std::int32_t ponderMove;
    std::int32_t ponderReply;
    std::int32_t ponderElapsed;
    std::int32_t ponderDepth;
    std::int32_t ponderScore;
    // Empty book lookups still allowed before the book is left alone for
    // this opening; re-armed by a reset, a set-up, and a take-back into the
    // first BookRearmPlies plies.
    std::int32_t bookMissesLeft;
};

// The one game of the program.
extern Game game;
constexpr int BookMissesStart = 10;
constexpr int BookRearmPlies = 20;
constexpr int DefaultDepthLimit = 999;
constexpr int DefaultTimeLimit = 60;

// Builds the global Game and every static table; safe to call again.
void initGame();

void resetGame(Game& g);
// Empties the history and brings its array back to the start capacity.
void resetHistory(Game& g);
void rescanMoves(Game& g);
int makeGameMove(Game& g, Move move);
int takeBackMove(Game& g);
int repetitionCount(const Game& g, int side, const Position& position);
int packCastleState(const Game& g);
void unpackCastleState(Game& g, int code);
int isIrreversible(Move move, const Position& position);
int enPassantTarget(Move move, const Position& position);
int capturedByMove(const Game& g, Move move);
// Prints the words of a move result and flushes stdout (and the log).
void reportResult(int code, const char* text);

void copyGameToPosition(const Game& g, Position& position);
void copyPositionToGame(Game& g, const Position& position);

// Hook for the log file flush after a result; set by the front end.
extern void (*resultFlushHook)();

}  // namespace board
