// Mobility, pieces attacked by pawns and attack pressure on the kings. One
// walk per piece gives its mobility, the squares it attacks and its share of
// the pressure on the enemy king.

#include "eval/mobility.h"

#include <array>
#include <cassert>
#include <cstdlib>

#include "board/tables.h"
#include "board/types.h"
#include "eval/boardview.h"

namespace eval {

using namespace board;

namespace {

constexpr int knightMobility[9] = {-62, -53, -12, -4, 3, 13, 22, 28, 33};
constexpr int bishopMobility[14] = {-48, -20, 16, 26, 38, 51, 55, 63, 63, 68, 81, 81, 91, 98};
constexpr int rookMobility[15] = {-60, -20, 2, 3, 3, 11, 22, 31, 40, 40, 41, 48, 57, 57, 62};
constexpr int queenMobility[28] = {-30, -12, -8, -9, 20, 23, 23, 35, 38, 53, 64, 65, 65, 66,
                                   67,  67,  72, 72, 77, 79, 93, 108, 108, 108, 110, 114, 114, 116};
// By type King..Knight; the king is never walked.
constexpr const int* mobilityTable[5] = {nullptr, queenMobility, rookMobility, bishopMobility, knightMobility};
constexpr int attackWeight[5] = {0, 2, 3, 4, 5};

constexpr int PawnAttackedPiece = 60;
// Below this the pressure is noise and left out.
constexpr int PressureThreshold = 81;
constexpr int PressureScale = 7;
constexpr int NearKingsDistance = 2;
constexpr int NearKingsWeight = 2;

// Pieces walked after the others: only the original queen and promoted
// queens (the mask marks queens only).
constexpr std::uint32_t promotedSlots(Color c) { return 0xffu << (idBase(c) + SlotPawnA); }

// The king's square and its neighbours, as one mask per square.
constexpr std::array<std::uint64_t, 64> makeKingZones() {
    std::array<std::uint64_t, 64> zones{};
    for (int k = 0; k < 64; ++k)
        for (int s = 0; s < 64; ++s) {
            const int df = fileOf(k) - fileOf(s), dr = rankOf(k) - rankOf(s);
            if (df >= -1 && df <= 1 && dr >= -1 && dr <= 1) zones[k] |= squareBit(s);
        }
    return zones;
}
constexpr std::array<std::uint64_t, 64> kingZone = makeKingZones();

// What one call gathers for each colour.
struct MobilityWork {
    std::uint64_t forbidden[2];  // squares that don't count: enemy pawn attacks and the own king
    std::uint64_t attacked[2];   // squares hit by the knights, bishops and rooks
    std::uint64_t zone[2];       // the enemy king's square and its neighbours
    int attackCount[2];
    int attackSum[2];
    int mobility;                // White minus Black
    int positional;
    int blackToMove;
};

// A piece of C that stands where the enemy strikes; it costs twice as much
// when the enemy is to move and can take at once.
template <Color C>
int attackedPiecePenalty(int blackToMove) {
    const int enemyToMove = board::Side<C>::isWhite ? blackToMove : 1 - blackToMove;
    return -board::Side<C>::sign * PawnAttackedPiece * (1 + enemyToMove);
}

// Walks one move list. A ray goes on past an empty square or an own piece
// among the `Through` ids from the queen slot up (x-rays), and leaves at any
// other piece, which is still counted. `weight` is added for every square
// near the enemy king. Returns the squares outside `mask`.
template <Color C, int Through>
int walk(const MoveStep* step, std::uint64_t mask, std::uint64_t zone, int weight, int& attackSum, bool& near,
         std::uint64_t& attacked) {
    const std::int32_t* boardPiece = position::searchBoard.boardPiece;
    constexpr int firstThrough = board::Side<C>::id(SlotQueen);
    int count = 0;
    while (step->to != NoSquare) {
        const int to = step->to;
        const int id = boardPiece[to];
        const bool passes = id == NoPiece || unsigned(id - firstThrough) < unsigned(Through);
        step += passes ? 1 : step->skip;
        const std::uint64_t bit = squareBit(to);
        count += (mask & bit) == 0;
        if (zone & bit) {
            attackSum += weight;
            near = true;
        }
        attacked |= bit;
    }
    return count;
}

// Knights, bishops and rooks of C in their slots: mobility, the attacked
// squares, and pressure counted whatever the count stands at.
template <Color C, int Type, int Through>
void walkSlot(int slot, MobilityWork& w) {
    using S = board::Side<C>;
    const int square = position::searchBoard.pieceSquare[S::id(slot)];
    if (square == NoSquare) return;
    // forbidden is the enemy pawn attacks plus the own king, where no piece stands.
    if (w.forbidden[C] & squareBit(square)) w.positional += attackedPiecePenalty<C>(w.blackToMove);
    bool near = false;
    const int count = walk<C, Through>(S::moves()[Type][square], w.forbidden[C], w.zone[C], attackWeight[Type],
                                       w.attackSum[C], near, w.attacked[C]);
    w.mobility += S::sign * mobilityTable[Type][count];
    w.attackCount[C] += near;
}

// A queen or promoted piece: it counts only squares the enemy doesn't see,
// and joins the pressure only when some other piece already attacks.
template <Color C>
void walkLate(int square, MobilityWork& w, std::uint64_t seen) {
    using S = board::Side<C>;
    const int type = position::searchBoard.pieceType[position::searchBoard.boardPiece[square]];
    assert(type >= Queen && type <= Knight);
    if (type < Queen || type > Knight) return;
    if (seen & squareBit(square)) w.positional += attackedPiecePenalty<C>(w.blackToMove);
    const bool joins = w.attackCount[C] != 0;
    bool near = false;
    std::uint64_t unused = 0;
    const int count =
        walk<C, 0>(S::moves()[type][square], seen, w.zone[C], joins ? attackWeight[type] : 0, w.attackSum[C], near, unused);
    w.mobility += S::sign * mobilityTable[type][count];
    w.attackCount[C] += joins && near;
}

template <Color C>
void walkLatePieces(const position::NodeState& node, MobilityWork& w) {
    using S = board::Side<C>;
    const std::uint64_t seen = w.forbidden[C] | w.attacked[S::them];
    for (std::uint32_t bits = node.promotedMask & promotedSlots(C); bits != 0; bits &= bits - 1) {
        const int square = position::searchBoard.pieceSquare[__builtin_ctz(bits)];
        if (square != NoSquare) walkLate<C>(square, w, seen);
    }
    const int queen = position::searchBoard.pieceSquare[S::id(SlotQueen)];
    if (queen != NoSquare) walkLate<C>(queen, w, seen);
    // Without a queen the other attackers bite less.
    if (queen == NoSquare && (node.promotedMask & promotedSlots(C)) == 0) w.attackSum[C] = w.attackSum[C] * 2 / 3;
}

}  // namespace

// Returns twice the mobility; the pawn-attacked pieces go to `positional`,
// the king pressure, if large enough, to `proximity`.
int evaluateMobility(std::uint64_t whitePawnAttacks, std::uint64_t blackPawnAttacks, int blackToMove,
                     const position::NodeState& node, EvalTerms& terms) {
    const position::SearchBoard& b = position::searchBoard;
    const int whiteKing = b.pieceSquare[WhiteKingId];
    const int blackKing = b.pieceSquare[BlackKingId];
    assert(whiteKing != NoSquare && blackKing != NoSquare);
    MobilityWork w{};
    w.forbidden[White] = blackPawnAttacks | squareBit(whiteKing);
    w.forbidden[Black] = whitePawnAttacks | squareBit(blackKing);
    w.zone[White] = kingZone[blackKing];
    w.zone[Black] = kingZone[whiteKing];
    w.blackToMove = blackToMove;
    // Kings two squares apart each count as an attacker of the other.
    const int near = kingDistance[whiteKing][blackKing] == NearKingsDistance;
    w.attackCount[White] = w.attackCount[Black] = near;
    w.attackSum[White] = w.attackSum[Black] = NearKingsWeight * near;

    walkSlot<White, Knight, 0>(SlotKnightB, w);
    walkSlot<White, Knight, 0>(SlotKnightG, w);
    walkSlot<Black, Knight, 0>(SlotKnightB, w);
    walkSlot<Black, Knight, 0>(SlotKnightG, w);
    walkSlot<White, Bishop, 1>(SlotBishopC, w);
    walkSlot<White, Bishop, 1>(SlotBishopF, w);
    walkSlot<Black, Bishop, 1>(SlotBishopC, w);
    walkSlot<Black, Bishop, 1>(SlotBishopF, w);
    walkSlot<White, Rook, 3>(SlotRookA, w);
    walkSlot<White, Rook, 3>(SlotRookH, w);
    walkSlot<Black, Rook, 3>(SlotRookA, w);
    walkSlot<Black, Rook, 3>(SlotRookH, w);
    walkLatePieces<White>(node, w);
    walkLatePieces<Black>(node, w);

    const int pressure =
        (w.attackSum[White] * w.attackCount[White] - w.attackSum[Black] * w.attackCount[Black]) * PressureScale;
    if (std::abs(pressure) >= PressureThreshold) terms.proximity += pressure;
    terms.positional += w.positional;
    return 2 * w.mobility;
}

}  // namespace eval
