#include "position/searchboard.h"

#include <cassert>
#include <cstring>

#include "board/keys.h"
#include "position/pst.h"

namespace position {

using namespace board;

SearchBoard searchBoard;
std::int32_t pstWhite[6][64];
std::int32_t pstBlack[7][64];

// The driver's Position becomes the root node: arrays to the global board,
// the small fields to the node's own record.
void buildNodeState(NodeState& state, const Position& position) {
    std::memset(&state, 0, sizeof state);
    for (int i = 0; i < 4; ++i) state.castleState[i] = std::int16_t(position.castleState[i]);
    for (int c = 0; c < 2; ++c) {
        state.pieceCount[c] = std::int16_t(position.pieceCount[c]);
        state.pawnCount[c] = std::int16_t(position.pawnCount[c]);
        state.hashKey[c] = position.hashKey[c];
        state.pawnKey[c] = position.pawnKey[c];
        state.materialTotal[c] = std::uint16_t(position.materialTotal[c]);
        state.pawnFiles[c] = std::uint8_t(position.pawnFiles[c]);
    }
    state.phaseClass = position.phaseClass;
    state.materialBalance = position.materialBalance;
    state.pstScore = position.pstScore;
    state.ply = position.ply;
    state.lastMove = std::uint32_t(position.lastMove);
    state.fiftyCounter = position.fiftyCounter;

    std::memcpy(searchBoard.pieceSquare, position.pieceSquare, sizeof searchBoard.pieceSquare);
    std::memcpy(searchBoard.boardPiece, position.boardPiece, sizeof searchBoard.boardPiece);
    std::memcpy(searchBoard.pieceType, position.pieceType, sizeof searchBoard.pieceType);
    std::memcpy(searchBoard.pieceValue, position.pieceValue, sizeof searchBoard.pieceValue);
}

// Promoted queens in pawn slots are walked by the mobility term; it finds
// them through this mask rather than by testing every pawn slot.
void setPromotedMask(NodeState& state, const Position& position) {
    for (int id = SlotPawnA; id < PieceIdCount; ++id) {
        if ((id & 15) < SlotPawnA) continue;
        if (position.pieceSquare[id] != NoSquare && position.pieceType[id] == Queen)
            state.promotedMask |= 1u << id;
    }
}

void rebuildDerivedFields(NodeState& state) {
    const SearchBoard& b = searchBoard;
    Position scratch{};
    std::memcpy(scratch.pieceSquare, b.pieceSquare, sizeof scratch.pieceSquare);
    std::memcpy(scratch.pieceType, b.pieceType, sizeof scratch.pieceType);
    for (int i = 0; i < 4; ++i) scratch.castleState[i] = state.castleState[i];
    computeKeys(scratch);
    for (int c = 0; c < 2; ++c) {
        state.hashKey[c] = scratch.hashKey[c];
        state.pawnKey[c] = scratch.pawnKey[c];
        state.pieceCount[c] = 0;
        state.pawnCount[c] = 0;
        state.materialTotal[c] = 0;
        state.pawnFiles[c] = 0;
    }
    state.materialBalance = 0;
    state.pstScore = 0;
    state.promotedMask = 0;
    for (int id = 0; id < PieceIdCount; ++id) {
        const int sq = b.pieceSquare[id];
        if (sq == NoSquare) continue;
        const int c = isBlackId(id);
        const int type = b.pieceType[id];
        const int value = b.pieceValue[id];
        state.pstScore += c == White ? pstWhite[type][sq] : -pstBlack[type][sq];
        if (type == King) continue;
        state.materialBalance += c == White ? value : -value;
        if (isPawnType(type)) {
            ++state.pawnCount[c];
            state.pawnFiles[c] |= std::uint8_t(1u << fileOf(sq));
        } else {
            ++state.pieceCount[c];
            state.materialTotal[c] = std::uint16_t(state.materialTotal[c] + value);
            if ((id & 15) >= SlotPawnA && type == Queen) state.promotedMask |= 1u << id;
        }
    }
}

bool searchBoardIsOk() {
    const SearchBoard& b = searchBoard;
    assert(b.pieceType[NoPiece] == NoType && "searchBoardIsOk: row 32 type");
    assert(b.pieceValue[NoPiece] == 0 && "searchBoardIsOk: row 32 value");
    for (int sq = 0; sq < 64; ++sq) {
        const int id = b.boardPiece[sq];
        if (id == NoPiece) continue;
        assert(id >= 0 && id < PieceIdCount && "searchBoardIsOk: board id");
        assert(b.pieceSquare[id] == sq && "searchBoardIsOk: board and list disagree");
        if (id < 0 || id >= PieceIdCount || b.pieceSquare[id] != sq) return false;
    }
    for (int id = 0; id < PieceIdCount; ++id) {
        const int sq = b.pieceSquare[id];
        if (sq == NoSquare) continue;
        assert(sq >= 0 && sq < 64 && b.boardPiece[sq] == id && "searchBoardIsOk: list and board disagree");
        if (sq < 0 || sq >= 64 || b.boardPiece[sq] != id) return false;
    }
    assert(b.pieceSquare[WhiteKingId] != NoSquare && b.pieceSquare[BlackKingId] != NoSquare &&
           "searchBoardIsOk: king missing");
    return true;
}

bool nodeStateIsOk(const NodeState& state) {
    if (!searchBoardIsOk()) return false;
    NodeState fresh = state;
    rebuildDerivedFields(fresh);
    assert(fresh.hashKey[0] == state.hashKey[0] && fresh.hashKey[1] == state.hashKey[1] && "nodeStateIsOk: hashKey");
    assert(fresh.pawnKey[0] == state.pawnKey[0] && fresh.pawnKey[1] == state.pawnKey[1] && "nodeStateIsOk: pawnKey");
    assert(fresh.materialBalance == state.materialBalance && "nodeStateIsOk: materialBalance");
    assert(fresh.pstScore == state.pstScore && "nodeStateIsOk: pstScore");
    assert(fresh.promotedMask == state.promotedMask && "nodeStateIsOk: promotedMask");
    for (int c = 0; c < 2; ++c) {
        assert(fresh.pieceCount[c] == state.pieceCount[c] && "nodeStateIsOk: pieceCount");
        assert(fresh.pawnCount[c] == state.pawnCount[c] && "nodeStateIsOk: pawnCount");
        assert(fresh.materialTotal[c] == state.materialTotal[c] && "nodeStateIsOk: materialTotal");
        assert(fresh.pawnFiles[c] == state.pawnFiles[c] && "nodeStateIsOk: pawnFiles");
    }
    assert(state.phaseClass >= 0 && state.phaseClass <= 5 && "nodeStateIsOk: phaseClass");
    return std::memcmp(&fresh, &state, sizeof fresh) == 0;
}

}  // namespace position
