#pragma once
// The engine's view of a chess position: squares, piece ids with fixed slot
// roles, piece types, the packed move word and the Position record. There are
// no bitboards; a piece list and a board array point at each other.

#include <cstdint>

namespace board {

// ---------------------------------------------------------------- squares
// a1 = 0 .. h8 = 63; file = sq & 7, rank = sq >> 3; 64 is off the board.
enum Square : int {
    A1, B1, C1, D1, E1, F1, G1, H1,
    A2, B2, C2, D2, E2, F2, G2, H2,
    A3, B3, C3, D3, E3, F3, G3, H3,
    A4, B4, C4, D4, E4, F4, G4, H4,
    A5, B5, C5, D5, E5, F5, G5, H5,
    A6, B6, C6, D6, E6, F6, G6, H6,
    A7, B7, C7, D7, E7, F7, G7, H7,
    A8, B8, C8, D8, E8, F8, G8, H8,
    NoSquare
};

constexpr int fileOf(int sq) { return sq & 7; }
constexpr int rankOf(int sq) { return sq >> 3; }
constexpr int makeSquare(int file, int rank) { return rank * 8 + file; }
// Mirror rank for rank: what a square is for the other colour.
constexpr int flipRank(int sq) { return sq ^ 56; }

// ---------------------------------------------------------------- colours
enum Color : int { White = 0, Black = 1 };
constexpr Color opposite(Color c) { return Color(c ^ 1); }

// ---------------------------------------------------------------- piece ids
// Ids 0..15 are White, 16..31 Black; each id is a slot with a fixed role.
// Id 32 means "no piece", so per-piece arrays carry a 33rd row.
constexpr int BlackIdBase = 16;
constexpr int NoPiece = 32;
constexpr int PieceIdCount = 32;

enum Slot : int {
    SlotKing = 0,
    SlotQueen = 1,
    SlotRookA = 2,    // a-side rook
    SlotRookH = 3,    // h-side rook
    SlotBishopC = 4,  // c-side bishop
    SlotBishopF = 5,  // f-side bishop
    SlotKnightB = 6,  // b-side knight
    SlotKnightG = 7,  // g-side knight
    SlotPawnA = 8,    // pawn slots 8..15, files a..h
    SlotPawnH = 15,
};

constexpr int WhiteKingId = SlotKing;
constexpr int BlackKingId = BlackIdBase + SlotKing;
constexpr int WhiteRookAId = SlotRookA;
constexpr int WhiteRookHId = SlotRookH;
constexpr int BlackRookAId = BlackIdBase + SlotRookA;
constexpr int BlackRookHId = BlackIdBase + SlotRookH;

constexpr bool isBlackId(int id) { return id >= BlackIdBase; }
constexpr int idBase(Color c) { return c == White ? 0 : BlackIdBase; }

// ---------------------------------------------------------------- piece types
enum PieceType : int {
    King = 0,
    Queen = 1,
    Rook = 2,
    Bishop = 3,
    Knight = 4,
    WhitePawn = 5,
    BlackPawn = 6,
    NoType = 7,
};

constexpr bool isPawnType(int type) { return type == WhitePawn || type == BlackPawn; }
constexpr int pawnTypeOf(Color c) { return c == White ? WhitePawn : BlackPawn; }

// Piece values in 1/480 of a pawn.
constexpr int KingValue = 5760;
constexpr int QueenValue = 5616;
constexpr int RookValue = 2808;
constexpr int BishopValue = 1872;
constexpr int KnightValue = 1872;
constexpr int PawnValue = 480;

constexpr int typeValue[8] = {KingValue, QueenValue, RookValue, BishopValue,
                              KnightValue, PawnValue, PawnValue, 0};

// The game's start, indexed by piece id.
extern const int startSquare[PieceIdCount];
extern const int startType[PieceIdCount];
extern const int startValue[PieceIdCount];

// ---------------------------------------------------------------- castling
// castleState order: White short, Black short, White long, Black long.
// 0 = right still there, 1 = has castled this way, -1 = right lost.
enum CastleIndex : int {
    CastleWhiteShort = 0,
    CastleBlackShort = 1,
    CastleWhiteLong = 2,
    CastleBlackLong = 3,
};
constexpr int castleShortIndex(Color c) { return c == White ? CastleWhiteShort : CastleBlackShort; }
constexpr int castleLongIndex(Color c) { return c == White ? CastleWhiteLong : CastleBlackLong; }

constexpr int CastleRight = 0;
constexpr int CastleDone = 1;
constexpr int CastleLost = -1;

// ---------------------------------------------------------------- the move word
// bits 0-5 from, 6-11 to, 12-14 special, bit 15 capture mark; the upper half
// carries scan bits, ordering data or a score depending on the list.
using Move = std::int32_t;

constexpr Move NoMove = 0;
constexpr Move CaptureMark = 0x8000;
constexpr Move PromotionBit = 0x4000;
constexpr Move FromToMask = 0xfff;
constexpr Move FromToSpecialMask = 0x7fff;  // the move without its capture mark
constexpr Move LowMoveMask = 0xffff;

enum Special : int {
    SpecialNone = 0,
    SpecialShortCastle = 1,
    SpecialLongCastle = 2,
    SpecialEnPassant = 3,
    SpecialPromoteQueen = 4,
    SpecialPromoteRook = 5,
    SpecialPromoteBishop = 6,
    SpecialPromoteKnight = 7,
};

constexpr int moveFrom(Move m) { return m & 0x3f; }
constexpr int moveTo(Move m) { return (m >> 6) & 0x3f; }
constexpr int moveSpecial(Move m) { return (m >> 12) & 7; }
constexpr bool isPromotion(Move m) { return (m & PromotionBit) != 0; }
constexpr bool isCastling(Move m) {
    return moveSpecial(m) == SpecialShortCastle || moveSpecial(m) == SpecialLongCastle;
}
// Promotion special 4..7 gives queen, rook, bishop, knight: type = special - 3.
constexpr int promotionType(Move m) { return moveSpecial(m) - 3; }
constexpr Move makeMove(int from, int to, int special = SpecialNone) {
    return from | (to << 6) | (special << 12);
}
// Neither capture mark nor promotion bit.
constexpr bool isQuiet(Move m) { return (m & (CaptureMark | PromotionBit)) == 0; }

// The halves of a list word: the move below, a score or ordering data above.
constexpr Move moveHalf(Move word) { return word & LowMoveMask; }
// The high half as a signed score (root lists, lines, result words).
constexpr int scoreHalf(Move word) { return int(word) >> 16; }
// The high half as unsigned ordering data.
constexpr unsigned orderingHalf(Move word) { return std::uint32_t(word) >> 16; }
// The move half of `word` under a new high half.
constexpr Move withScore(Move word, int score) {
    return Move((std::uint32_t(word) & std::uint32_t(LowMoveMask)) | (std::uint32_t(score) << 16));
}

constexpr Move WhiteShortCastle = makeMove(E1, G1, SpecialShortCastle);  // 4484
constexpr Move WhiteLongCastle = makeMove(E1, C1, SpecialLongCastle);    // 8324
constexpr Move BlackShortCastle = makeMove(E8, G8, SpecialShortCastle);  // 8124
constexpr Move BlackLongCastle = makeMove(E8, C8, SpecialLongCastle);    // 11964
static_assert(WhiteShortCastle == 4484 && WhiteLongCastle == 8324);
static_assert(BlackShortCastle == 8124 && BlackLongCastle == 11964);

// A move list is a 0-terminated array of words. The list has room for every
// candidate of any position, legal or not (at most 218 legal moves exist).
constexpr int MoveListSize = 256;

// ---------------------------------------------------------------- Position
// A record of 32-bit fields; a copy is a plain block copy.
struct Position {
    std::int32_t pieceSquare[32];
    std::int32_t boardPiece[64];
    std::int32_t pieceType[33];
    std::int32_t castleState[4];
    std::int32_t pieceValue[33];
    std::int32_t pieceCount[2];
    std::int32_t pawnCount[2];
    std::uint32_t hashKey[2];  // low, high
    std::uint32_t pawnKey[2];  // low, high
    std::int32_t phaseClass;
    std::int32_t materialBalance;
    std::int32_t pstScore;
    std::int32_t ply;
    std::int32_t lastMove;
    std::int32_t fiftyCounter;
    std::int32_t pawnFiles[2];
    std::int32_t materialTotal[2];
};

// The 64-bit key of a position from its two words.
inline std::uint64_t fullKey(const std::uint32_t key[2]) {
    return (std::uint64_t(key[1]) << 32) | key[0];
}

}  // namespace board
