#include "position/perft.h"

#include "board/side.h"
#include "board/tables.h"
#include "position/attacks.h"
#include "position/make.h"
#include "position/movegen.h"
#include "position/phase.h"
#include "position/searchboard.h"

namespace position {

using namespace board;

namespace {

constexpr std::int64_t Refused = -1;

// The child of a search node in miniature: refuse a move onto the king,
// make, refuse if the mover's king is attacked, count or recurse, unmake.
template <Color Mover>
std::int64_t perftChild(const NodeState& parent, Move move, int depth) {
    constexpr Color them = Side<Mover>::them;
    if (searchBoard.boardPiece[moveTo(move)] == Side<them>::kingId) return Refused;
    NodeState node = parent;
    const int captured = makeMoveOf<Mover>(node, move);
    std::int64_t total = 0;
    if (leavesKingAttacked<Mover>(move)) {
        total = Refused;
    } else if (depth <= 1) {
        total = 1;
    } else {
        Move list[MoveListSize];
        generateAll<them>(list, moveFrom(move), moveTo(move), checkerOf<them>(), node, MoveListSize);
        for (const Move* m = list; *m != NoMove; ++m) {
            const std::int64_t n = perftChild<them>(node, *m, depth - 1);
            if (n != Refused) total += n;
        }
    }
    unmakeMoveOf<Mover>(move, captured);
    return total;
}

// Loads the position into the search's records with every derived field
// recomputed, so that the Debug checks of make hold from the first move.
// Returns false for a position that the search could not work on.
bool loadRoot(const Position& position, NodeState& node) {
    Position root = position;
    if (root.pieceSquare[WhiteKingId] == NoSquare || root.pieceSquare[BlackKingId] == NoSquare) return false;
    for (int id = 0; id < PieceIdCount; ++id) {
        const int sq = root.pieceSquare[id];
        if (sq != NoSquare && (sq < 0 || sq >= 64 || root.boardPiece[sq] != id)) return false;
        if (root.pieceType[id] < King || root.pieceType[id] >= NoType) return false;
        root.pieceValue[id] = typeValue[root.pieceType[id]];
    }
    root.pieceType[NoPiece] = NoType;
    root.pieceValue[NoPiece] = 0;
    // A right without king and rook at home would move a piece that isn't
    // there; such a right counts as lost.
    for (int c = White; c <= Black; ++c) {
        const int base = idBase(Color(c));
        const bool kingHome = root.pieceSquare[base + SlotKing] == startSquare[base + SlotKing];
        if (!kingHome || root.pieceSquare[base + SlotRookH] != startSquare[base + SlotRookH])
            if (root.castleState[castleShortIndex(Color(c))] == CastleRight)
                root.castleState[castleShortIndex(Color(c))] = CastleLost;
        if (!kingHome || root.pieceSquare[base + SlotRookA] != startSquare[base + SlotRookA])
            if (root.castleState[castleLongIndex(Color(c))] == CastleRight)
                root.castleState[castleLongIndex(Color(c))] = CastleLost;
    }
    root.ply = 0;
    buildNodeState(node, root);
    rebuildDerivedFields(node);
    node.phaseClass = shortPhaseClass(node);
    return true;
}

template <Color C>
int divide(const NodeState& root, int depth, Move* moves, std::uint64_t* counts) {
    Move list[MoveListSize];
    generateAll<C>(list, 0, 0, checkerOf<C>(), root, MoveListSize);
    int n = 0;
    for (const Move* m = list; *m != NoMove; ++m) {
        const std::int64_t count = perftChild<C>(root, *m, depth);
        if (count == Refused) continue;
        moves[n] = *m;
        counts[n] = std::uint64_t(count);
        ++n;
    }
    return n;
}

}  // namespace

int searchPerftDivide(const Position& position, int side, int depth, Move* moves, std::uint64_t* counts) {
    NodeState root;
    if (depth < 1 || !loadRoot(position, root)) return 0;
    return side == White ? divide<White>(root, depth, moves, counts) : divide<Black>(root, depth, moves, counts);
}

std::uint64_t searchPerft(const Position& position, int side, int depth) {
    if (depth < 1) return 1;
    Move moves[MoveListSize];
    std::uint64_t counts[MoveListSize];
    const int n = searchPerftDivide(position, side, depth, moves, counts);
    std::uint64_t total = 0;
    for (int i = 0; i < n; ++i) total += counts[i];
    return total;
}

}  // namespace position
