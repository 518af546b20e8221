#pragma once
// Private to the search node: its quiescence mode, for a node whose depth
// has run below one ply. Inlined into the node so that both modes share one
// frame and one move list; the node unmakes after it returns.

#include <algorithm>
#include <cstdint>

#include "board/types.h"
#include "eval/evaluate.h"
#include "search/hashtable.h"
#include "search/nodeside.h"
#include "search/pv.h"
#include "search/search.h"

namespace search {

template <board::Color C>
int searchOf(board::Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent);

// ------------------------------------------------------------ shared by both modes

constexpr int FiftyMoveLimit = 100;     // plies without an irreversible move
constexpr int ThreefoldScore = 1;       // two earlier occurrences
constexpr int TreeRepetitionScore = 2;  // one earlier occurrence inside the tree
// Scores within this bound are no mates.
constexpr int ScoreBound = OrdinaryScoreMax - 1;

// NodeState::lastMove: the move's low half and the id it took (32 for none).
inline std::uint32_t lastMoveWord(board::Move move, int captured) {
    return std::uint32_t(move & board::LowMoveMask) | std::uint32_t(captured) << 16;
}

// Rule draws of a node that a real move led to: 0 for fifty moves, 1 for a
// third occurrence, 2 for a repetition inside the tree; -1 if none. Below
// four reversible plies no repetition is possible.
template <board::Color C>
inline int ruleDrawScore(const NodeState& node) {
    if (node.fiftyCounter == FiftyMoveLimit) return 0;
    const int r = countRepetitions(C == board::Black, node);
    if (r > 1) return ThreefoldScore;
    if (r == 1) return TreeRepetitionScore;
    return -1;
}

// The table's entry for the node, or null if there is none or its move
// can't be this position's (a collision of keys): a move must start on a
// piece of the side to move and not land on one.
template <board::Color C>
inline const HashEntry* probeFitting(const NodeState& node) {
    const HashEntry* entry = hashProbe(C == board::Black, node);
    if (entry == nullptr || entry->move == 0) return entry;
    const int fromId = searchBoard.boardPiece[board::moveFrom(entry->move)];
    const int toId = searchBoard.boardPiece[board::moveTo(entry->move)];
    if (fromId == board::NoPiece || !SearchSide<C>::owns(fromId)) return nullptr;
    if (toId != board::NoPiece && SearchSide<C>::owns(toId)) return nullptr;
    return entry;
}

// ------------------------------------------------------------ quiescence

// Material lead beyond which quiescence takes a bound as its static score
// without evaluating: four pawns.
constexpr int LazyMaterialMargin = 1920;
// Delta margins: a queen in general, less with a zero stand-pat score.
constexpr int DeltaMargin = 5616;
constexpr int DeltaMarginAtZero = 800;
// With this little material on one side the position is an ending.
constexpr int DeltaEndingMaterial = 2808;
// Gain of a promotion on top of the captured piece: queen minus pawn.
constexpr int PromotionGain = 5136;

// Settles captures below the horizon: stand still on the static score, or
// try captures and queen promotions; in check, escapes while depth allows.
// `alpha` is the window's lower end as passed, `lo` the one raised by the
// mate distance. Fail-soft: may return at or below lo.
template <board::Color C>
[[gnu::always_inline]] inline int quiesce(NodeState& node, board::Move move, int depth, int alpha, int lo, int beta,
                                          bool isPv, int inCheck, board::Move* list) {
    using namespace board;
    using S = SearchSide<C>;
    using N = NodeSide<C>;
    constexpr Color them = S::them;
    constexpr int blackToMove = C == Black;
    const SearchBoard& b = searchBoard;

    // Rule draws on the first quiescence ply only.
    if (depth >= 0 && move != NoMove && node.fiftyCounter >= 4) {
        const int draw = ruleDrawScore<C>(node);
        if (draw >= 0) return draw;
    }

    // The table: any depth will do here.
    bool hasEntry = false;
    int entryScore = 0, kind = HashEmpty, storedEval = UnknownEval;
    if (const HashEntry* entry = probeFitting<C>(node)) {
        hasEntry = true;
        entryScore = scoreFromHash(entry->score, node.ply);
        kind = entryKind(*entry);
        storedEval = entry->staticEval;
        if (!isPv && !inCheck) {
            if (kind == HashExact || kind == HashTablebase) return entryScore;
            if (kind == HashLower && entryScore >= beta) return entryScore;
            if (kind == HashUpper && entryScore <= lo) return entryScore;
        }
    }

    const int parentFrom = moveFrom(move), parentTo = moveTo(move);
    const bool escapes = inCheck && depth >= -OnePly;
    int best = lo;
    int standPat = lo;
    int evalToStore = UnknownEval;
    if (escapes) {
        N::generateAll(list, parentFrom, parentTo, inCheck, node);
    } else {
        if (!inCheck) {
            // Stand still. A clearly decided material balance takes the
            // window's bound without an evaluation, and stores no eval.
            bool known = false;
            int staticScore = 0;
            if (storedEval == UnknownEval && !isPv) {
                const int lead = S::sign * node.materialBalance;
                if (beta >= -ScoreBound && node.pieceCount[C] != 0 && lead - LazyMaterialMargin > beta) {
                    staticScore = beta;
                    known = true;
                } else if (lo <= ScoreBound && node.pieceCount[them] != 0 &&
                           lead + LazyMaterialMargin < lo) {
                    staticScore = lo;
                    known = true;
                }
            }
            if (!known) {
                staticScore = storedEval != UnknownEval ? storedEval : eval::evaluate(blackToMove, node);
                evalToStore = staticScore;
            }
            standPat = staticScore;
            if (hasEntry) {
                if (kind == HashExact || kind == HashTablebase) standPat = entryScore;
                else if (kind == HashLower) standPat = std::max(entryScore, staticScore);
                else if (kind == HashUpper) standPat = std::min(entryScore, staticScore);
            }
            if (standPat > lo) {
                if (standPat >= beta) return standPat;
                best = alpha = standPat;
            }
        }
        if (N::generateCaptures(list, parentFrom, parentTo) == 0) return inCheck ? lo : standPat;
    }

    int margin = InfiniteScore;
    if (!inCheck && standPat >= -ScoreBound && standPat <= ScoreBound) {
        const int ending = node.materialTotal[White] <= DeltaEndingMaterial || node.materialTotal[Black] <= DeltaEndingMaterial;
        margin = standPat + ending == 0 ? DeltaMarginAtZero : DeltaMargin;
    }

    int searched = 0;
    for (int p = 0;; ++p) {
        const Move m = selectNextMove(list, p, 0);
        if (m == NoMove) break;
        if (!inCheck) {
            // Delta pruning: not even the whole gain would reach best.
            int gain = moveSpecial(m) == SpecialEnPassant ? PawnValue : b.pieceValue[b.boardPiece[moveTo(m)]];
            if (isPromotion(m)) gain += PromotionGain;
            if (gain + margin < best) continue;
        }
        int v = searchOf<them>(m, CheckLegality, depth - OnePly, -beta, -best, &node);
        if (v == IllegalScore) continue;
        v = -v;
        if (v > best) {
            if (isPv) updatePvLine(node.ply, m, v);
            if (v >= beta) {
                hashStore(HashLower, v, NoMove, 0, isPv, blackToMove, node, evalToStore);
                return v;
            }
            best = v;
        }
        ++searched;
    }

    if (escapes && searched == 0) return node.ply - MateBase;
    if (!inCheck) {
        if (best == alpha)
            hashStore(HashUpper, best, NoMove, 0, isPv, blackToMove, node, evalToStore);
        else
            hashStore(HashExact, best, NoMove, 0, 1, blackToMove, node, evalToStore);
    }
    return best;
}

}  // namespace search
