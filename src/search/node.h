#pragma once
// Private to search.cpp: the search node, written once on the colour to
// move. A call makes the move that leads to its node, searches, and unmakes
// before it returns; below one ply it continues as quiescence.
//
// The frame holds the node's NodeState copy, its move list and the list of
// tried moves, all trivially destructible, so an abort may longjmp out of
// any depth. Keep it lean: the think thread's stack is small.

#include <algorithm>
#include <csetjmp>
#include <cstdint>

#include "board/game.h"
#include "board/tables.h"
#include "board/types.h"
#include "eval/evaluate.h"
#include "search/hashtable.h"
#include "search/make.h"
#include "search/movegen.h"
#include "search/nodeside.h"
#include "search/pv.h"
#include "search/quiescence.h"
#include "search/search.h"
#include "tablebase/probe.h"

namespace search {

// ------------------------------------------------------------ tuning

// Margins by remaining depth in plies (index 1 to 3), in 1/480 pawn.
constexpr int razorMargin[4] = {0, 2400, 5760, 10080};
constexpr int reverseMargin[4] = {0, 960, 1920, 2880};
constexpr int futilityMargin[4] = {0, 800, 1920, 2880};
// Quiet moves searched before the rest are dropped, by depth 1 to 6.
constexpr int lateMoveLimit[7] = {0, 3, 5, 10, 17, 26, 37};

constexpr int ShallowDepth = 3 * OnePly;        // razoring and static null move up to here
constexpr int VerifyDepth = 11 * OnePly;        // null cuts with one piece left are verified from here
constexpr int NullMoveScoreStep = 960;          // eval above beta per extra ply of null reduction
constexpr int InternalReductionPlies = 4;       // no hash move from here: one ply less
constexpr int PruneQuietsPlies = 6;
constexpr int FutilityPlies = 3;
constexpr int ReductionPlies = 3;
constexpr int SingularDepth = 7 * OnePly;
constexpr int SingularMarginPerPly = 11;
constexpr int SingularMarginBase = 90;
constexpr int SingularEntryPlies = 3;           // the entry may be this much shallower
constexpr int OptimismMargin = 1440;            // eval this far above best in a PV node: reduce less
constexpr int HalfPly = OnePly / 2;
constexpr int HeavyPieceValue = 1871;           // above this a piece is a rook or a queen
constexpr int TriedRoom = 64;
constexpr int OrderingOffset = 512;             // the score half of a word is history + 512

// Tablebase values: a win at 32766 - n mates in n + 1 moves.
constexpr int TbMateValue = 32766;
constexpr int TbLossOffset = 32832;
constexpr int TbStoreExtra = 6 * OnePly;
constexpr int TbStoreMaxDepth = 59 * OnePly;

// Turns a table value into a search score at `ply`: a win in n moves is a
// mate in 2n - 1 plies, a loss in n moves a mate in 2n plies.
inline int tablebaseScore(int value, int ply) {
    if (value == 0) return 0;
    if (value > 0) return MateBase - ply - 2 * (TbMateValue - value) - 1;
    return ply + 2 * value + TbLossOffset;
}

inline bool isQueenPromotion(board::Move m) { return board::moveSpecial(m) == board::SpecialPromoteQueen; }

// Relaxed increment: the statistics have one writer.
inline void bump(std::atomic<std::uint32_t>& counter) {
    counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

// ------------------------------------------------------------ the node

// The principal-variation search of a node with C to move, reached by the
// other side's `move`. See search.h for the arguments.
template <board::Color C>
int searchOf(board::Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent) {
    using namespace board;
    using S = SearchSide<C>;
    using N = NodeSide<C>;
    constexpr Color them = S::them;
    constexpr int blackToMove = C == Black;
    SearchBoard& b = searchBoard;

    // ---- entry
    if (++timeCheckCounter >= timeCheckInterval) {
        checkTime();
        timeCheckCounter = 0;
    }
    if (abortSearch.load(std::memory_order_relaxed)) std::longjmp(abortJump, 1);

    NodeState node = *parent;
    const int parentFrom = moveFrom(move), parentTo = moveTo(move);
    const bool makes = move != NoMove && !(flags & SameNode);
    int captured = NoPiece;
    if (makes) {
        if (b.boardPiece[parentTo] == S::kingId) return IllegalScore;  // the line before was illegal
        captured = makeMoveOf<them>(node, move);
        if ((flags & CheckLegality) && leavesKingAttacked<them>(move)) {
            unmakeMoveOf<them>(move, captured);
            return IllegalScore;
        }
    }
    // Every exit below goes through here.
    auto leave = [&](int score) {
        if (makes) unmakeMoveOf<them>(move, captured);
        return score;
    };

    bump(nodeCount);
    if (!(flags & (RootNode | SameNode))) ++node.ply;
    const int ply = node.ply;
    if (ply == MaxSearchDepthPly) return leave(eval::evaluate(blackToMove, node));

    const bool isPv = beta - alpha > 1;
    if (ply == 0) {
        node.lastMove = lastMoveWord(move, captured);
    } else {
        // A line that ends here is the empty line.
        pvHeads[ply]->word = 0;
        pvHeads[ply]->next->word = 0;
        // The history entry and the fifty-move count belong to full-width
        // nodes and the first quiescence ply. A re-entered node keeps the
        // lastMove of its first entry, which knows the capture.
        if (depth >= 0 && !(flags & SameNode)) recordHistoryOf<them>(node, move, captured);
        else if (!(flags & SameNode)) node.lastMove = lastMoveWord(move, captured);
    }
    int inCheck = 0;  // a null move is only tried out of check
    if (move != NoMove || ply == 0) {
        inCheck = checkerOf<C>();
        if (captured != NoPiece && isMaterialDraw(node)) return leave(0);
    }
    int lo = alpha;
    if (ply != 0) {
        // Mate distance: no score here can beat a mate found nearer the root.
        lo = std::max(ply - MateBase, alpha);
        beta = std::min(MateBase - 1 - ply, beta);
        if (beta <= lo) return leave(lo);
    }

    Move list[SearchListRoom];  // both modes use it
    if (depth < OnePly) {
        bump(quiesceCount);
        return leave(quiesce<C>(node, move, depth, alpha, lo, beta, isPv, inCheck, list));
    }
    alpha = lo;

    // ---- node set-up
    // After a double step beside an enemy pawn the key misses the en passant
    // right, so such a node neither reads nor writes the table.
    bool epAvailable = false;
    if (move != NoMove && b.pieceType[b.boardPiece[parentTo]] == SearchSide<them>::pawnType &&
        rankOf(parentFrom) == SearchSide<them>::doubleFromRank && rankOf(parentTo) == SearchSide<them>::doubleToRank) {
        const int file = fileOf(parentTo);
        epAvailable = (file > 0 && b.pieceType[b.boardPiece[parentTo - 1]] == S::pawnType) ||
                      (file < 7 && b.pieceType[b.boardPiece[parentTo + 1]] == S::pawnType);
    }
    node.excludedMove = 0;
    bump(interiorCount);

    if (move != NoMove && !(flags & SameNode) && node.fiftyCounter > 3) {
        const int draw = ruleDrawScore<C>(node);
        if (draw >= 0) return leave(draw);
    }

    // ---- the table
    int P = depth >> 8;
    HashEntry entry{};  // a copy: the slot may change under the children
    bool hasEntry = false;
    Move hashMove = NoMove;
    bool hashMoveIsCapture = false;
    bool ttPv = isPv;
    bool deepUpperInPv = false;
    int eval = UnknownEval;
    if (const HashEntry* found = probeFitting<C>(node); found != nullptr && !epAvailable && ply != 0) {
        entry = *found;
        hasEntry = true;
        bump(hashHitCount);
        const int d = entryDepth(entry), kind = entryKind(entry);
        const int s = scoreFromHash(entry.score, ply);
        if (kind == HashTablebase) return leave(s);
        if (d >= P && !isPv && parent->excludedMove == 0) {
            if (kind == HashExact) return leave(s);
            if (kind == HashLower && s >= beta) return leave(s);
            if (kind == HashUpper && s <= alpha) return leave(s);
        }
        hashMove = entry.move;
        hashMoveIsCapture = (entry.move & CaptureMark) != 0;
        ttPv = isPv || entryPv(entry);
        deepUpperInPv = isPv && kind == HashUpper && d >= P;
        eval = entry.staticEval;
        if (kind == HashExact) eval = entry.score;
        else if (kind == HashLower) eval = std::max(eval, int(entry.score));
        else if (kind == HashUpper) eval = std::min(eval, int(entry.score));
    }

    // ---- tablebases
    const int men = node.pieceCount[White] + node.pieceCount[Black] + node.pawnCount[White] + node.pawnCount[Black] + 1;
    if (men < tablebase::tbMaxMen && parent->excludedMove == 0 &&
        ((ply > 3 && move != NoMove && (captured != NoPiece || isPromotion(move))) || (ply >= 1 && ply <= 3))) {
        if (tablebase::tbCountPieces(b.pieceSquare, b.pieceType) < 1) return leave(0);
        tablebase::tbBuildLists(b.pieceSquare, b.pieceType);
        const int value = tablebase::tbProbe(blackToMove, epAvailable ? parentTo + S::up : -1);
        if (value != tablebase::TbUnknown && value >= -(TbMateValue)) {
            const int score = tablebaseScore(value, ply);
            if (!epAvailable)
                hashStore(HashTablebase, score, NoMove, std::min(depth + TbStoreExtra, TbStoreMaxDepth), 1, blackToMove,
                          node, 0);
            return leave(score);
        }
    }

    // ---- static score
    if (inCheck) eval = ply - MateBase;  // no standing still in check
    else if (eval == UnknownEval) eval = eval::evaluate(blackToMove, node);

    // ---- pruning before moves
    const bool ownPiece = node.pieceCount[C] != 0;
    if (!inCheck && !isPv && move != NoMove) {
        // Razoring: far below alpha, ask quiescence of this same node.
        if (depth <= ShallowDepth && eval >= -ScoreBound && hashMove == NoMove && eval + razorMargin[P] < alpha) {
            const int v = searchOf<C>(move, (flags | SameNode) & ~CheckLegality, 0, alpha - 1, alpha, &node);
            if (v < alpha) return leave(v);
        }
        // Static null move: far above beta even after a margin.
        if (depth <= ShallowDepth && ownPiece && eval >= -ScoreBound && eval <= ScoreBound &&
            eval - reverseMargin[P] >= beta)
            return leave(beta);
        // Null move; with a single piece left zugzwang is likely, so a deep
        // cut is verified by a reduced search of this node.
        if (!(flags & NoNullMove) && ownPiece && beta >= -ScoreBound && eval >= beta && parent->excludedMove == 0) {
            const int R = (depth >> 10) + std::min((eval - beta) / NullMoveScoreStep, 3) + 3;
            const int v = searchOf<them>(NoMove, (flags & NoNullMove) | NoKillers, depth - R * OnePly, -beta, 1 - beta,
                                         &node);
            if (-v >= beta && v >= -ScoreBound) {
                if (depth < VerifyDepth || node.pieceCount[C] != 1) return leave(beta);
                const int d2 = std::max(depth - ((depth >> 10) * OnePly + ShallowDepth), 0);
                const int w = searchOf<C>(move, (flags | SameNode | NoNullMove) & ~CheckLegality, d2, beta - 1, beta, &node);
                if (w >= beta) {
                    if (!epAvailable) hashStore(HashLower, beta, NoMove, d2, 0, blackToMove, node, eval);
                    return leave(beta);
                }
            }
        }
    }

    // ---- moves
    N::generateAll(list, parentFrom, parentTo, inCheck, node);
    if (move != NoMove && hashMove == NoMove && P >= InternalReductionPlies) {
        depth -= OnePly;
        P = depth >> 8;
    }
    // The children start without killers. Both colours' words of the next
    // ply are cleared, since a null move below swaps which colour uses them.
    killersWhite[ply + 1] = 0;
    killersBlack[ply + 1] = 0;
    const bool pawnsAndPieces = ownPiece && node.pawnCount[C] != 0;
    const bool pruneQuiets = P <= PruneQuietsPlies && !isPv && !inCheck && pawnsAndPieces && ply != 0;
    const bool singularOk = isPv && depth >= SingularDepth;
    const int checkExtension = inCheck ? OnePly : 0;
    const unsigned inherited = flags & (NoKillers | NoNullMove);
    const int enemyKing = b.pieceSquare[SearchSide<them>::kingId];
    int best = alpha;
    Move bestMove = NoMove;
    int movesDone = 0, quietDone = 0, triedCount = 0;
    int promoDone = 0;
    std::uint16_t tried[TriedRoom];
    const unsigned hashLow = unsigned(hashMove) & 0xffffu;
    const int scoreFrom = hashMove != NoMove ? 1 : 0;

    for (int p = 0;; ++p) {
        // The hash move comes first, unscored; the rest by score.
        if (p == scoreFrom && list[p] != NoMove) N::scoreMoves(list + p, move, node);
        const Move m = selectNextMove(list, p, hashLow);
        if (m == NoMove) break;
        const unsigned low = unsigned(m) & 0xffffu;
        const bool quiet = isQuietWord(m);
        const int to = moveTo(m);

        if (low == parent->excludedMove) continue;
        if (isPromotion(m) && !isQueenPromotion(m) && promoDone != 0 && ply != 0) continue;

        int r = 0;
        if (movesDone > 0) {
            const bool safe =
                N::checksEnemyKing(m, enemyKing, node) ||
                (b.pieceType[b.boardPiece[moveFrom(m)]] == S::pawnType && N::inEnemyHalf(to) && N::isPassed(to, node));
            if (!safe) {
                if (pruneQuiets && quietDone > lateMoveLimit[P] && quiet) continue;
                if (P <= FutilityPlies && !isPv && !inCheck && quiet && pawnsAndPieces &&
                    eval + futilityMargin[P] <= best)
                    continue;
                if (P >= ReductionPlies && movesDone > (ply == 0 ? 3 : 1) && pawnsAndPieces && !inCheck) {
                    r = reductionTable[std::min(P, 31)][std::min(movesDone, 63)] * OnePly;
                    if (ttPv && !deepUpperInPv) r -= OnePly * (1 + isPv);
                    if (isPv && best >= -ScoreBound && eval - best > OptimismMargin) r -= OnePly;
                    const int h = int(wordScore(m)) - OrderingOffset;
                    r -= OnePly * std::min(h / OnePly, 2);
                    if (hashMoveIsCapture && !isPv) r += OnePly;
                    if (r < 1) r = 0;
                    else if (r >= depth - 2 * OnePly + 1) r = depth - 2 * OnePly;
                }
            }
        }

        // Extensions, none beyond twice the iteration's plies.
        int e = 0;
        if (ply < extensionPlyLimit) {
            e = checkExtension;
            if (isPv && (m & CaptureMark) && (node.lastMove >> 16) != NoPiece && moveTo(int(node.lastMove)) == to)
                e = OnePly;  // recapture
            const int victim = b.boardPiece[to];
            if (node.pieceCount[them] == 1 && victim != NoPiece && b.pieceValue[victim] > HeavyPieceValue)
                e += HalfPly;  // takes the last heavy piece
            if (singularOk && low == hashLow && e == 0 && move != NoMove && hasEntry &&
                entryKind(entry) == HashLower && std::abs(int(entry.score)) < OrdinaryScoreMax &&
                entryDepth(entry) >= P - SingularEntryPlies && ply > 0 && parent->excludedMove == 0) {
                // Is the hash move the only good one? Search the rest below it.
                const int t = entry.score - SingularMarginPerPly * P - SingularMarginBase;
                node.excludedMove = std::uint16_t(low);
                const int v = searchOf<C>(move, (flags | SameNode) & ~CheckLegality, (depth - OnePly) >> 1, t - 1, t, &node);
                node.excludedMove = 0;
                if (v < t) e = OnePly;
            }
        }
        const int d = depth + e - OnePly;

        const bool first = movesDone == 0;
        int v = first ? searchOf<them>(m, inherited | CheckLegality, d, -beta, -best, &node)
                      : searchOf<them>(m, inherited | CheckLegality, d - r, -best - 1, -best, &node);
        if (v == IllegalScore) continue;
        bump(moveCount);
        if (ply == 0) currentRootMove.store(m, std::memory_order_relaxed);
        v = -v;
        if (!first && isPv && r != 0 && v > best) {
            v = -searchOf<them>(m, inherited, d, -best - 1, -best, &node);
            r = 0;
        }
        ++movesDone;
        bool failHigh = false;
        if (!first && v > best) {
            if (v >= beta && r == 0) failHigh = true;
            else v = -searchOf<them>(m, inherited, d, -beta, -best, &node);
        }
        if (!failHigh && v > best && v >= beta) failHigh = true;

        if (failHigh) {
            if (parent->excludedMove == 0) {
                if (isPv) updatePvLine(ply, m, v);
                if (depth + e != OnePly) updateHistory(N::history(), m, tried, triedCount, P);
                if (quiet) {
                    if (move != NoMove) updateCounter(N::counter(), parentTo, m);
                    if (!(flags & NoKillers)) updateKiller(N::killers(), ply, m);
                }
                if (!epAvailable) hashStore(HashLower, v, m, depth, isPv, blackToMove, node, eval);
            }
            return leave(v);
        }
        if (v > best) {
            if (isPv) updatePvLine(ply, m, v);
            best = v;
            bestMove = m;
            if (quiet) ++quietDone;
        } else {
            if (quiet) ++quietDone;
            if (triedCount < TriedRoom && low != (unsigned(bestMove) & 0xffffu)) tried[triedCount++] = std::uint16_t(low);
        }
        // Once a queen promotion has a real score, underpromotions are skipped.
        if (isQueenPromotion(m) && v != 0 && v >= -ScoreBound && !inCheck) promoDone = m & FromToMask;
    }

    if (movesDone > 0) {
        if (!epAvailable && parent->excludedMove == 0)
            hashStore(bestMove != NoMove ? HashExact : HashUpper, best, bestMove, depth, isPv, blackToMove, node, eval);
        return leave(best);
    }
    if (parent->excludedMove != 0) return leave(best);
    return leave(inCheck ? ply - MateBase : 0);  // mate or stalemate
}

}  // namespace search
