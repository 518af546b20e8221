// Writing a solution through the probe's index. Positions that the index
// folds together (images under the board's symmetries, men of one type
// swapped) land on one byte; they must agree, which checks the generator and
// the index against each other on every position.

#include "tbgen/fill.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "tablebase/index.h"
#include "tbgen/parallel.h"

namespace tbgen {

namespace {

// A loss in 127 moves has no byte of its own: the probe knows the few
// indices where it occurs, and the nearest byte, a loss in 126, is stored.
constexpr int DeepestLossPlies = 254;
constexpr std::int8_t DeepestLossByte = -127;
constexpr std::int8_t Unwritten = 127;

}  // namespace

bool fillTables(const Solution& solution, std::array<std::vector<std::int8_t>, 2>& bytes, Extremes (&extremes)[2]) {
    const Material& material = solution.material;
    const char* name = tablebase::tbRowName(solution.rowId);
    TableMap map;
    if (!mapMaterial(material, map) || map.rowId != solution.rowId) {
        std::fprintf(stderr, "tbgen: %s: the probe doesn't map this ending to its own row\n", name);
        return false;
    }
    // Unwritten bytes hold 127, a byte no value has, until the end.
    for (int side = 0; side < 2; ++side) {
        bytes[side].assign(tablebase::tbPositions(solution.rowId, side), Unwritten);
        extremes[side] = Extremes{};
    }
    std::atomic<long> outside{0}, clashes{0};
    auto store = [&](int stm, const int* squares, int epSquare, int score) {
        const int side = tableSide(map, stm);
        const std::uint32_t index = tableIndex(map, material, squares, stm, epSquare);
        if (index >= bytes[side].size()) {
            if (outside++ == 0) std::fprintf(stderr, "tbgen: %s side %d: index %u outside the table\n", name, side, index);
            return;
        }
        std::int8_t byte = DeepestLossByte;
        const bool fits = byteOfScore(score, byte);
        if (!fits && score != scoreOfLoss(DeepestLossPlies)) return;
        std::int8_t held = Unwritten;
        if (std::atomic_ref<std::int8_t>(bytes[side][index]).compare_exchange_strong(held, byte, std::memory_order_relaxed)) {
            // Named so that they can be held against the indices the probe knows.
            if (!fits) std::fprintf(stderr, "tbgen: %s side %d: index %u is lost in 127 moves, stored as 126\n", name, side, index);
        } else if (held != byte && clashes++ == 0) {
            std::fprintf(stderr, "tbgen: %s side %d: index %u holds positions of values %d and %d\n", name, side,
                         index, held, byte);
        }
    };

    // Every image of a position is written: the index folds them by the
    // mover's king, not by the white king, and leaves a few apart.
    const Layout& layout = solution.layout;
    auto storeImages = [&](int stm, const int* squares, int epSquare, int score) {
        int image[MaxMen];
        for (int t = 0; t < layout.symmetries; ++t) {
            for (int m = 0; m < material.count; ++m) image[m] = transformSquare(t, squares[m]);
            store(stm, image, epSquare < 0 ? -1 : transformSquare(t, epSquare), score);
        }
    };
    parallelFor(layout.size, [&](std::uint32_t begin, std::uint32_t end) {
        int squares[MaxMen];
        for (int stm = 0; stm < 2; ++stm)
            for (std::uint32_t position = begin; position < end; ++position) {
                if (solution.moves[stm][position] == NoLegalPosition) continue;
                squaresOf(layout, position, squares);
                storeImages(stm, squares, -1, scoreOfDistance(solution.distance[stm][position]));
            }
    });
    int squares[MaxMen];
    for (const EpNode& node : solution.epNodes) {
        squaresOf(layout, node.position, squares);
        storeImages(node.side, squares, node.epSquare, scoreOfDistance(node.distance));
        noteScore(extremes[tableSide(map, node.side)], scoreOfDistance(node.distance));
    }
    for (int stm = 0; stm < 2; ++stm)
        for (std::uint32_t position = 0; position < layout.size; ++position)
            if (solution.moves[stm][position] != NoLegalPosition)
                noteScore(extremes[tableSide(map, stm)], scoreOfDistance(solution.distance[stm][position]));
    for (int side = 0; side < 2; ++side) std::replace(bytes[side].begin(), bytes[side].end(), Unwritten, std::int8_t(0));
    if (outside != 0 || clashes != 0)
        std::fprintf(stderr, "tbgen: %s: %ld positions outside the tables, %ld clashes\n", name, outside.load(),
                     clashes.load());
    return outside == 0 && clashes == 0;
}

}  // namespace tbgen
