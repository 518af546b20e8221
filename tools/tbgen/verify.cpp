// The one-move check of a row's tables. The move check runs on one
// position of each family of symmetric images, and the others must hold
// the same value: together that reaches every legal position.

#include "tbgen/verify.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "tablebase/index.h"
#include "tbgen/parallel.h"
#include "tbgen/symmetry.h"
#include "tbgen/values.h"

namespace tbgen {

namespace {

constexpr long ReportedFaults = 5;

int backedUp(int score) { return score == NoScore ? NoScore : backUp(score); }

struct Verifier {
    const TableSet& tables;
    Material material;
    Layout layout;
    Exit same;  // the row's own material, no man taken or promoted
    std::atomic<long> faults{0};

    // The value a move leads to, for the side that makes it.
    int moveScore(const GenMove& move, const int* squares, int stm) {
        Exit exit;
        const bool promotes = move.promotion != board::NoType;
        if (move.captured == NoMan && !promotes) {
            int after[MaxMen];
            std::copy(squares, squares + material.count, after);
            after[move.man] = move.to;
            const bool steps = isDoubleStepWithCapturer(material, after, move.man, move.from, move.to);
            const int epSquare = steps ? passedSquare(material.men[move.man], move.to) : -1;
            return backedUp(lookupScore(tables, same, after, stm ^ 1, epSquare));
        }
        if (!makeExit(material, move.captured, promotes ? move.man : NoMan, move.promotion, exit)) return NoScore;
        int after[MaxMen];
        for (int m = 0; m < material.count; ++m)
            if (exit.newMan[m] != NoMan) after[exit.newMan[m]] = m == move.man ? move.to : squares[m];
        return backedUp(lookupScore(tables, exit, after, stm ^ 1));
    }

    void check(const int* squares, int stm, int epSquare) {
        GenMove list[MaxGenMoves];
        const int count = generateMoves(material, squares, stm, epSquare, list);
        int best = count == 0 && inCheck(material, squares, stm) ? scoreOfLoss(0) : count == 0 ? 0 : NoScore;
        for (int i = 0; i < count; ++i) {
            const int score = moveScore(list[i], squares, stm);
            if (score == NoScore) {
                best = NoScore;
                break;
            }
            best = std::max(best, score);
        }
        const int stored = lookupScore(tables, same, squares, stm, epSquare);
        if (stored != best) report(squares, stm, epSquare, stored, best);
        // Its images must hold the same value wherever the index puts them.
        int image[MaxMen];
        for (int t = 1; t < layout.symmetries; ++t) {
            for (int m = 0; m < material.count; ++m) image[m] = transformSquare(t, squares[m]);
            const int imageEp = epSquare < 0 ? -1 : transformSquare(t, epSquare);
            const int imageStored = lookupScore(tables, same, image, stm, imageEp);
            if (imageStored != stored) report(image, stm, imageEp, imageStored, stored);
        }
    }

    void report(const int* squares, int stm, int epSquare, int stored, int expected) {
        if (faults.fetch_add(1) >= ReportedFaults) return;
        std::fprintf(stderr, "tbgen: %s, side to move %d, en passant %d, men on", tablebase::tbRowName(same.map.rowId),
                     stm, epSquare);
        for (int m = 0; m < material.count; ++m) std::fprintf(stderr, " %d", squares[m]);
        std::fprintf(stderr, ": stored %d, expected %d\n", stored, expected);
    }
};

}  // namespace

long verifyRow(int rowId, const TableSet& tables) {
    initRules();
    Verifier verifier{tables, {}, {}, {}, {}};
    if (!materialOfRow(rowId, verifier.material) || !makeExit(verifier.material, NoMan, NoMan, board::NoType, verifier.same))
        return 1;
    const Layout& layout = verifier.layout = layoutOf(verifier.material);
    parallelFor(layout.size, [&](std::uint32_t begin, std::uint32_t end) {
        int squares[MaxMen], steppers[MaxMen];
        for (std::uint32_t position = begin; position < end; ++position) {
            squaresOf(layout, position, squares);
            if (positionOf(layout, squares) != position) continue;
            for (int stm = 0; stm < 2; ++stm) {
                if (!isLegal(verifier.material, squares, stm)) continue;
                verifier.check(squares, stm, -1);
                const int count = doubleSteppers(verifier.material, squares, stm, steppers);
                for (int i = 0; i < count; ++i)
                    verifier.check(squares, stm, passedSquare(verifier.material.men[steppers[i]], squares[steppers[i]]));
            }
        }
    });
    return verifier.faults.load();
}

}  // namespace tbgen
