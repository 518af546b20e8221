#include "board/game.h"
#include "search/search.h"

namespace search {

using namespace board;

namespace {
// Most material with which a side alone can't mate: one minor piece.
constexpr int LoneMinorMaterial = BishopValue;
}  // namespace

// Without pawns, a lone minor piece can't mate a bare king, and neither can
// bishops that run on squares of one colour, so such nodes end as draws.
int isMaterialDraw(const NodeState& node) {
    if (node.pawnCount[White] != 0 || node.pawnCount[Black] != 0) return 0;
    if (node.pieceCount[Black] == 0) return node.materialTotal[White] <= LoneMinorMaterial;
    if (node.pieceCount[White] == 0) return node.materialTotal[Black] <= LoneMinorMaterial;
    if (node.materialTotal[White] > LoneMinorMaterial || node.materialTotal[Black] > LoneMinorMaterial) return 0;
    // One minor piece each: drawn if they are bishops of one square colour.
    // The f1 and c8 bishops run on light squares, the c1 and f8 bishops on dark.
    const int* square = searchBoard.pieceSquare;
    constexpr int whiteLight = SlotBishopF, whiteDark = SlotBishopC;
    constexpr int blackLight = BlackIdBase + SlotBishopC, blackDark = BlackIdBase + SlotBishopF;
    return (square[whiteLight] != NoSquare && square[blackLight] != NoSquare) ||
           (square[whiteDark] != NoSquare && square[blackDark] != NoSquare);
}

// The node's entry is at historyTop + ply; the same side was to move two,
// four, ... plies earlier, and a position can first recur four plies back.
// One occurrence in the played game isn't a draw yet; one inside the tree is,
// since the side that could avoid it has chosen not to.
int countRepetitions(int blackToMove, const NodeState& node) {
    int i = game.historyTop + node.ply - 4;
    if (i < 0) return 0;
    int count = 0;
    bool firstInside = false;
    for (;;) {
        const GameHistoryEntry& entry = game.history[i];
        if (entry.keyHigh == node.hashKey[1] && ((entry.flags & HistorySideToMove) != 0) == (blackToMove != 0)) {
            if (++count == 1) firstInside = i >= game.historyTop;
        }
        if (entry.move == 0 || (entry.flags & HistoryIrreversible) || i - 2 < 0) break;
        i -= 2;
    }
    if (count == 1) return firstInside ? 1 : 0;
    return count;
}

}  // namespace search
