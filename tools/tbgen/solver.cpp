// The retrograde solution: a first pass values every position's moves that
// leave the ending and counts those that stay; then, level by level, the
// positions decided at that distance are taken back one move each.

#include "tbgen/solver.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "tablebase/index.h"
#include "tbgen/parallel.h"
#include "tbgen/values.h"

namespace tbgen {

namespace {

// The deepest distance a table byte can carry is a loss in 127 moves.
constexpr int MaxPlies = 254;
constexpr int Unreached = 1 << 30;
constexpr int PromotionKinds = 5;  // none, queen, rook, bishop, knight

bool isPawn(const Man& man) { return man.type == board::WhitePawn || man.type == board::BlackPawn; }

// Bytes that threads share while levels are taken back.
inline std::atomic_ref<std::uint8_t> shared(std::uint8_t& byte) { return std::atomic_ref<std::uint8_t>(byte); }

struct Solver {
    Solution& s;
    const TableSet& tables;
    int men = 0;
    std::atomic<int> maxLevel{0};
    std::atomic<bool> failed{false};

    // The smaller ending of each kind of move that leaves this one, by
    // captured man, promoted man and promotion.
    struct ExitTable {
        Exit exit;
        bool known = false;
    };
    static constexpr int ExitKinds = (MaxMen + 1) * (MaxMen + 1) * PromotionKinds;
    ExitTable exits[ExitKinds];

    Solver(Solution& solution, const TableSet& set) : s(solution), tables(set), men(solution.material.count) {
        for (int captured = NoMan; captured < men; ++captured)
            for (int promoted = NoMan; promoted < men; ++promoted)
                for (int kind = 0; kind < PromotionKinds; ++kind) {
                    if ((promoted == NoMan) != (kind == 0)) continue;
                    ExitTable& entry = exits[exitKey(captured, promoted, kind)];
                    entry.known = makeExit(s.material, captured, promoted, kind == 0 ? board::NoType : kind, entry.exit);
                }
    }

    // Promotion kinds 1 to 4 are board::Queen to board::Knight.
    static int exitKey(int captured, int promoted, int kind) {
        return ((captured + 1) * (MaxMen + 1) + promoted + 1) * PromotionKinds + kind;
    }

    // Reports the first fault only: the rest follow from it.
    void fail(const char* what, int rowId) {
        if (!failed.exchange(true)) std::fprintf(stderr, "tbgen: %s: %s\n", tablebase::tbRowName(rowId), what);
    }

    // The value for the mover of a move that captures or promotes.
    int exitScore(const GenMove& move, const int* squares, int stm) {
        const bool promotes = move.promotion != board::NoType;
        const ExitTable& entry =
            exits[exitKey(move.captured, promotes ? move.man : NoMan, promotes ? move.promotion : 0)];
        if (!entry.known) {
            fail("a move leads to an ending that has no table", s.rowId);
            return 0;
        }
        int after[MaxMen];
        for (int m = 0; m < men; ++m)
            if (entry.exit.newMan[m] != NoMan) after[entry.exit.newMan[m]] = m == move.man ? move.to : squares[m];
        const int score = lookupScore(tables, entry.exit, after, stm ^ 1);
        if (score == NoScore) {
            fail("table missing or broken", entry.exit.map.rowId);
            return 0;
        }
        return backUp(score);
    }

    static bool leaves(const GenMove& move) { return move.captured != NoMan || move.promotion != board::NoType; }

    // The best of the moves that leave the ending, NoScore if none does.
    int bestExit(const GenMove* list, int count, const int* squares, int stm) {
        int best = NoScore;
        for (int i = 0; i < count; ++i)
            if (leaves(list[i])) best = std::max(best, exitScore(list[i], squares, stm));
        return best;
    }

    // Several threads may decide one position in a level, always alike.
    void decide(int side, std::uint32_t position, int plies) {
        if (plies > MaxPlies) fail("a distance beyond what a table byte holds", s.rowId);
        shared(s.distance[side][position]).store(std::uint8_t(std::min(plies, MaxPlies) + 1), std::memory_order_relaxed);
        reach(plies);
    }

    // The levels must run on to the deepest distance yet decided.
    void reach(int plies) {
        for (int level = maxLevel.load(std::memory_order_relaxed); plies > level;)
            if (maxLevel.compare_exchange_weak(level, plies, std::memory_order_relaxed)) break;
    }

    // A position whose moves within the ending are all refuted, the last at
    // `plies`: lost, unless a move out of it holds the draw.
    void exhaust(int side, std::uint32_t position, int plies) {
        int squares[MaxMen];
        squaresOf(s.layout, position, squares);
        GenMove list[MaxGenMoves];
        const int count = generateMoves(s.material, squares, side, -1, list);
        const int best = bestExit(list, count, squares, side);
        if (best == NoScore)
            decide(side, position, plies);
        else if (best < 0)
            decide(side, position, std::max(plies, pliesOf(best)));
    }

    // Without pawns two moves, or two moves taken back, can lead to images
    // of one position; each family counts once on both ends.
    int distinct(std::uint32_t* positions, int count) const {
        if (s.layout.symmetries == 2 || count < 2) return count;
        std::sort(positions, positions + count);
        return int(std::unique(positions, positions + count) - positions);
    }

    // The first look at a position: mate, stalemate, the value of its best
    // capture or promotion, and how many positions its other moves reach.
    void initialise(int side, std::uint32_t position) {
        int squares[MaxMen];
        squaresOf(s.layout, position, squares);
        if (positionOf(s.layout, squares) != position || !isLegal(s.material, squares, side)) {
            s.moves[side][position] = NoLegalPosition;
            return;
        }
        GenMove list[MaxGenMoves];
        const int count = generateMoves(s.material, squares, side, -1, list);
        std::uint32_t next[MaxGenMoves];
        int inside = 0;
        for (int i = 0; i < count; ++i) {
            if (leaves(list[i])) continue;
            const int from = squares[list[i].man];
            squares[list[i].man] = list[i].to;
            next[inside++] = positionOf(s.layout, squares);
            squares[list[i].man] = from;
        }
        inside = distinct(next, inside);
        s.moves[side][position] = std::uint8_t(inside);
        if (count == 0) {
            if (inCheck(s.material, squares, side)) decide(side, position, 0);
            return;
        }
        const int best = bestExit(list, count, squares, side);
        // A win by leaving the ending may yet be beaten by a quicker one inside it.
        if (best > 0 || (inside == 0 && best < 0)) decide(side, position, pliesOf(best));
    }

    // `position` has a move into a position decided at `level` for the
    // opponent: won at level + 1 if that was a loss, one move fewer to
    // refute if it was a win.
    void reached(int side, std::uint32_t position, int level) {
        const std::uint8_t known = shared(s.distance[side][position]).load(std::memory_order_relaxed);
        if (level % 2 == 0) {
            if (known > level + 2 && (known - 1) % 2 == 0) fail("a lost position has a winning move", s.rowId);
            if (known == 0 || known > level + 2) decide(side, position, level + 1);
            return;
        }
        if (known != 0) return;
        const std::uint8_t left = shared(s.moves[side][position]).fetch_sub(1, std::memory_order_relaxed);
        if (left == 0 || left == NoLegalPosition) {
            fail("moves and moves taken back disagree", s.rowId);
            return;
        }
        if (left == 1) exhaust(side, position, level + 1);
    }

    // Passes a position decided at `level` to every position with a move into it.
    void takeBack(int side, std::uint32_t position, int level) {
        int squares[MaxMen];
        squaresOf(s.layout, position, squares);
        std::uint32_t before[MaxGenMoves];
        int count = 0;
        forEachUnmove(s.material, squares, side, [&](int man, int from) {
            const int to = squares[man];
            squares[man] = from;
            before[count++] = positionOf(s.layout, squares);
            squares[man] = to;
        });
        count = distinct(before, count);
        for (int i = 0; i < count; ++i) reached(side ^ 1, before[i], level);
    }

    void collectEpNodes();
    void settleEpNodes(int level, std::vector<std::size_t>& settled);
    void run();
};

// Every legal position in which the side not to move has a pawn that may
// just have stepped twice past an enemy pawn.
void Solver::collectEpNodes() {
    for (int side = 0; side < 2; ++side)
        for (std::uint32_t position = 0; position < s.layout.size; ++position) {
            if (s.moves[side][position] == NoLegalPosition) continue;
            int squares[MaxMen];
            squaresOf(s.layout, position, squares);
            int steppers[MaxMen];
            const int count = doubleSteppers(s.material, squares, side, steppers);
            for (int i = 0; i < count; ++i) {
                const int man = steppers[i], to = squares[man];
                const int passed = passedSquare(s.material.men[man], to), from = 2 * passed - to;
                EpNode node{position, NoPosition, NoScore, std::int8_t(side), std::int8_t(passed), 0, false};
                GenMove list[MaxGenMoves];
                const int moves = generateMoves(s.material, squares, side, passed, list);
                for (int k = 0; k < moves; ++k)
                    if (list[k].enPassant) node.capture = std::int16_t(std::max<int>(node.capture, exitScore(list[k], squares, side)));
                if (node.capture != NoScore && node.capture != 0) reach(pliesOf(node.capture));
                squares[man] = from;
                if (isLegal(s.material, squares, side ^ 1)) node.before = positionOf(s.layout, squares);
                squares[man] = to;
                s.epNodes.push_back(node);
            }
        }
}

// An en passant position is worth the better of its placement without the
// right and its captures en passant; it is settled once both are known far
// enough to tell.
void Solver::settleEpNodes(int level, std::vector<std::size_t>& settled) {
    for (std::size_t i = 0; i < s.epNodes.size(); ++i) {
        EpNode& node = s.epNodes[i];
        if (node.settled) continue;
        const std::uint8_t plain = s.distance[node.side][node.position];
        const bool plainKnown = plain != 0 && plain - 1 <= level;
        const int plainWin = plainKnown && (plain - 1) % 2 == 1 ? plain - 1 : Unreached;
        int plies = Unreached;
        if (node.capture > 0)
            plies = std::min(plainWin, pliesOf(node.capture));
        else if (plainWin != Unreached)
            plies = plainWin;
        else if (plainKnown) {
            if (node.capture == 0) {
                node.settled = true;  // the capture holds the draw
                continue;
            }
            plies = node.capture == NoScore ? plain - 1 : std::max(plain - 1, pliesOf(node.capture));
        }
        if (plies != level) continue;
        node.distance = std::uint8_t(level + 1);
        node.settled = true;
        settled.push_back(i);
    }
}

// Levels run while any position is decided that far: a win by a capture
// or a slow loss may lie deeper than the last level reached by moves.
void Solver::run() {
    s.layout = layoutOf(s.material);
    for (int side = 0; side < 2; ++side) {
        s.distance[side].assign(s.layout.size, 0);
        s.moves[side].assign(s.layout.size, 0);
    }
    for (int side = 0; side < 2; ++side)
        parallelFor(s.layout.size, [&](std::uint32_t begin, std::uint32_t end) {
            for (std::uint32_t position = begin; position < end; ++position) initialise(side, position);
        });
    bool pawns[2] = {false, false};
    for (int m = 0; m < men; ++m) pawns[s.material.men[m].colour] |= isPawn(s.material.men[m]);
    if (pawns[board::White] && pawns[board::Black]) collectEpNodes();

    std::vector<std::size_t> settled;
    for (int level = 0; level <= maxLevel && !failed; ++level) {
        settled.clear();
        settleEpNodes(level, settled);
        const std::uint8_t mark = std::uint8_t(level + 1);
        // Taking back from one side writes only the other side's bytes.
        for (int side = 0; side < 2; ++side) {
            const std::uint8_t* distance = s.distance[side].data();
            parallelFor(s.layout.size, [&](std::uint32_t begin, std::uint32_t end) {
                for (const std::uint8_t* at = distance + begin;
                     (at = static_cast<const std::uint8_t*>(std::memchr(at, mark, distance + end - at))) != nullptr; ++at)
                    takeBack(side, std::uint32_t(at - distance), level);
            });
        }
        for (const std::size_t i : settled)
            if (s.epNodes[i].before != NoPosition) reached(s.epNodes[i].side ^ 1, s.epNodes[i].before, level);
    }
}

}  // namespace

int scoreOfDistance(std::uint8_t distance) {
    if (distance == 0) return 0;
    const int plies = distance - 1;
    return plies % 2 == 1 ? scoreOfWin(plies) : scoreOfLoss(plies);
}

bool solveRow(int rowId, const Material& material, const TableSet& tables, Solution& out) {
    out = Solution{};
    out.rowId = rowId;
    out.material = material;
    initRules();
    Solver solver(out, tables);
    solver.run();
    return !solver.failed;
}

}  // namespace tbgen
