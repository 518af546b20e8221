// The search node, top to bottom: the principal-variation search of one
// node, written once on the colour to move, its quiescence mode below one
// ply, and the draws and repetitions it scores itself. A call makes the move
// that leads to its node, searches, and unmakes before it returns.
//
// The frame holds the node's NodeState copy, its move list and the list of
// tried moves, all trivially destructible, so an abort may longjmp out of
// any depth. Keep it lean: the think thread's stack is small.

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdlib>

#include "board/game.h"
#include "board/side.h"
#include "board/tables.h"
#include "eval/evaluate.h"
#include "position/attacks.h"
#include "position/make.h"
#include "position/movegen.h"
#include "search/hashtable.h"
#include "search/lines.h"
#include "search/ordering.h"
#include "search/search.h"
#include "tablebase/probe.h"

namespace search {

using namespace board;
using position::NodeState;
using position::searchBoard;

std::atomic<int> abortSearch{0};
std::jmp_buf abortJump;
int timeCheckCounter = 0;
int timeCheckInterval = TimeCheckInterval;
std::atomic<std::uint32_t> nodeCount{0};
std::atomic<std::uint32_t> moveCount{0};
std::atomic<std::uint32_t> interiorCount{0};
std::atomic<std::uint32_t> hashHitCount{0};
std::atomic<std::uint32_t> quiesceCount{0};
std::atomic<Move> currentRootMove{0};
int extensionPlyLimit = 0;

namespace {

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

inline bool isQueenPromotion(Move m) { return moveSpecial(m) == SpecialPromoteQueen; }

// Relaxed increment: the statistics have one writer.
inline void bump(std::atomic<std::uint32_t>& counter) {
    counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

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

constexpr int FiftyMoveLimit = 100;     // plies without an irreversible move
constexpr int ThreefoldScore = 1;       // two earlier occurrences
constexpr int TreeRepetitionScore = 2;  // one earlier occurrence inside the tree
// Scores within this bound are no mates.
constexpr int ScoreBound = OrdinaryScoreMax - 1;


// Rule draws of a node that a real move led to: 0 for fifty moves, 1 for a
// third occurrence, 2 for a repetition inside the tree; -1 if none. Below
// four reversible plies no repetition is possible.
template <Color C>
inline int ruleDrawScore(const NodeState& node) {
    if (node.fiftyCounter == FiftyMoveLimit) return 0;
    const int r = countRepetitions(C == Black, node);
    if (r > 1) return ThreefoldScore;
    if (r == 1) return TreeRepetitionScore;
    return -1;
}

// ------------------------------------------------------------ small steps

// NodeState::lastMove: the move's low half and the id it took (32 for none).
inline std::uint32_t lastMoveWord(Move move, int captured) {
    return std::uint32_t(moveHalf(move)) | std::uint32_t(captured) << 16;
}

// Writes the game-history entry of a node at historyTop + ply after a move of
// colour C (0 for a null move), and moves lastMove and fiftyCounter on. The
// repetition test reads these entries back.
template <Color C>
inline void recordHistoryOf(NodeState& node, Move move, int captured) {
    GameHistoryEntry& entry = game.history[game.historyTop + node.ply];
    const bool irreversible =
        move != NoMove && (captured != NoPiece || moveSpecial(move) != SpecialNone ||
                           searchBoard.pieceType[searchBoard.boardPiece[moveTo(move)]] == Side<C>::pawnType);
    entry.keyHigh = node.hashKey[1];
    entry.move = std::uint16_t(moveHalf(move));
    entry.flags = std::uint8_t((entry.flags & HistoryCapturedMask) | (C == White ? HistorySideToMove : 0) |
                               (irreversible ? HistoryIrreversible : 0));
    node.lastMove = lastMoveWord(move, captured);
    node.fiftyCounter = irreversible || move == NoMove ? 0 : node.fiftyCounter + 1;
}

// Below one ply: inlined into the node, so that both modes share one frame
// and one move list; the node unmakes after it returns.
template <Color C>
[[gnu::always_inline]] inline int quiesce(NodeState& node, Move move, int depth, int alpha, int lo, int beta,
                                          bool isPv, int inCheck, Move* list);

// ------------------------------------------------------------ the node

// The principal-variation search of a node with C to move, reached by the
// other side's `move`. See search.h for the arguments.
template <Color C>
int searchOf(Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent) {
    using S = Side<C>;
    constexpr Color them = S::them;
    constexpr int blackToMove = C == Black;
    position::SearchBoard& b = searchBoard;

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
        captured = position::makeMoveOf<them>(node, move);
        if ((flags & CheckLegality) && position::leavesKingAttacked<them>(move)) {
            position::unmakeMoveOf<them>(move, captured);
            return IllegalScore;
        }
    }
    // Every exit below goes through here.
    auto leave = [&](int score) {
        if (makes) position::unmakeMoveOf<them>(move, captured);
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
        inCheck = position::checkerOf<C>();
        if (captured != NoPiece && isMaterialDraw(node)) return leave(0);
    }
    int lo = alpha;
    if (ply != 0) {
        // Mate distance: no score here can beat a mate found nearer the root.
        lo = std::max(ply - MateBase, alpha);
        beta = std::min(MateBase - 1 - ply, beta);
        if (beta <= lo) return leave(lo);
    }

    Move list[position::SearchListRoom];  // both modes use it
    if (depth < OnePly) {
        bump(quiesceCount);
        return leave(quiesce<C>(node, move, depth, alpha, lo, beta, isPv, inCheck, list));
    }
    alpha = lo;

    // ---- node set-up
    // After a double step beside an enemy pawn the key misses the en passant
    // right, so such a node neither reads nor writes the table.
    bool epAvailable = false;
    if (move != NoMove && b.pieceType[b.boardPiece[parentTo]] == Side<them>::pawnType &&
        rankOf(parentFrom) == Side<them>::doubleFromRank && rankOf(parentTo) == Side<them>::doubleToRank) {
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
    if (const HashEntry* found = hashProbeFitting<C>(node); found != nullptr && !epAvailable && ply != 0) {
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
    position::generateAll<C>(list, parentFrom, parentTo, inCheck, node);
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
    const int enemyKing = b.pieceSquare[Side<them>::kingId];
    int best = alpha;
    Move bestMove = NoMove;
    int movesDone = 0, quietDone = 0, triedCount = 0;
    int promoDone = 0;
    std::uint16_t tried[TriedRoom];
    const unsigned hashLow = unsigned(moveHalf(hashMove));
    const int scoreFrom = hashMove != NoMove ? 1 : 0;

    for (int p = 0;; ++p) {
        // The hash move comes first, unscored; the rest by score.
        if (p == scoreFrom && list[p] != NoMove) scoreMoves<C>(list + p, move, node);
        const Move m = selectNextMove(list, p, hashLow);
        if (m == NoMove) break;
        const unsigned low = unsigned(moveHalf(m));
        const bool quiet = isQuiet(m);
        const int to = moveTo(m);

        if (low == parent->excludedMove) continue;
        if (isPromotion(m) && !isQueenPromotion(m) && promoDone != 0 && ply != 0) continue;

        int r = 0;
        if (movesDone > 0) {
            // Checks and passed pawns in the enemy half are never pruned or reduced.
            const bool safe = position::mayAttackKing<C>(m, enemyKing, node) ||
                              (b.pieceType[b.boardPiece[moveFrom(m)]] == S::pawnType && S::relRank(to) >= 4 &&
                               position::isPassed<C>(to, node));
            if (!safe) {
                if (pruneQuiets && quietDone > lateMoveLimit[P] && quiet) continue;
                if (P <= FutilityPlies && !isPv && !inCheck && quiet && pawnsAndPieces &&
                    eval + futilityMargin[P] <= best)
                    continue;
                if (P >= ReductionPlies && movesDone > (ply == 0 ? 3 : 1) && pawnsAndPieces && !inCheck) {
                    r = reductionTable[std::min(P, 31)][std::min(movesDone, 63)] * OnePly;
                    if (ttPv && !deepUpperInPv) r -= OnePly * (1 + isPv);
                    if (isPv && best >= -ScoreBound && eval - best > OptimismMargin) r -= OnePly;
                    const int h = int(orderingHalf(m)) - OrderingOffset;
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
                if (depth + e != OnePly) updateHistory(historyOf<C>(), m, tried, triedCount, P);
                if (quiet) {
                    if (move != NoMove) updateCounter(counterOf<C>(), parentTo, m);
                    if (!(flags & NoKillers)) updateKiller(killersOf<C>(), ply, m);
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
            if (triedCount < TriedRoom && low != unsigned(moveHalf(bestMove))) tried[triedCount++] = std::uint16_t(low);
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

// ------------------------------------------------------------ quiescence

// Settles captures below the horizon: stand still on the static score, or
// try captures and queen promotions; in check, escapes while depth allows.
// `alpha` is the window's lower end as passed, `lo` the one raised by the
// mate distance. Fail-soft: may return at or below lo.
template <Color C>
[[gnu::always_inline]] inline int quiesce(NodeState& node, Move move, int depth, int alpha, int lo, int beta,
                                          bool isPv, int inCheck, Move* list) {
    using S = Side<C>;
    constexpr Color them = S::them;
    constexpr int blackToMove = C == Black;
    const position::SearchBoard& b = searchBoard;

    // Rule draws on the first quiescence ply only.
    if (depth >= 0 && move != NoMove && node.fiftyCounter >= 4) {
        const int draw = ruleDrawScore<C>(node);
        if (draw >= 0) return draw;
    }

    // The table: any depth will do here.
    bool hasEntry = false;
    int entryScore = 0, kind = HashEmpty, storedEval = UnknownEval;
    if (const HashEntry* entry = hashProbeFitting<C>(node)) {
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
        position::generateAll<C>(list, parentFrom, parentTo, inCheck, node);
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
        if (position::generateCaptures<C>(list, parentFrom, parentTo) == 0) return inCheck ? lo : standPat;
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

}  // namespace

// ------------------------------------------------------------ draws

// Most material with which a side alone can't mate: one minor piece.
constexpr int LoneMinorMaterial = BishopValue;

// Without pawns, a lone minor piece can't mate a bare king, and neither can
// bishops that run on squares of one colour, so such nodes end as draws.
int isMaterialDraw(const NodeState& node) {
    if (node.pawnCount[White] != 0 || node.pawnCount[Black] != 0) return 0;
    if (node.pieceCount[Black] == 0) return node.materialTotal[White] <= LoneMinorMaterial;
    if (node.pieceCount[White] == 0) return node.materialTotal[Black] <= LoneMinorMaterial;
    if (node.materialTotal[White] > LoneMinorMaterial || node.materialTotal[Black] > LoneMinorMaterial) return 0;
    // One minor piece each: drawn if they are bishops of one square colour.
    const int* square = searchBoard.pieceSquare;
    using W = Side<White>;
    using B = Side<Black>;
    return (square[W::lightBishopId] != NoSquare && square[B::lightBishopId] != NoSquare) ||
           (square[W::darkBishopId] != NoSquare && square[B::darkBishopId] != NoSquare);
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

// ------------------------------------------------------------ the twins

int searchWhite(Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent) {
    return searchOf<White>(move, flags, depth, alpha, beta, parent);
}

int searchBlack(Move move, unsigned flags, int depth, int alpha, int beta, const NodeState* parent) {
    return searchOf<Black>(move, flags, depth, alpha, beta, parent);
}

}  // namespace search
