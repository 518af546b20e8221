// The region of the white king and the images that bring it there.

#include "tbgen/symmetry.h"

namespace tbgen {

namespace {

constexpr int PawnSlots = 32, PlainSlots = 10;

struct Transforms {
    std::int8_t square[8][64];
    constexpr Transforms() : square() {
        for (int t = 0; t < 8; ++t)
            for (int sq = 0; sq < 64; ++sq) {
                const int turned = t & 4 ? board::makeSquare(board::rankOf(sq), board::fileOf(sq)) : sq;
                square[t][sq] = std::int8_t(turned ^ (t & 1 ? 7 : 0) ^ (t & 2 ? 56 : 0));
            }
    }
};
constexpr Transforms transforms;

// For each square, the symmetries that take it into the region (two when
// it lands on the region's diagonal edge), and the region's squares by slot.
struct Region {
    int slot[64];
    int square[PawnSlots];
    int transforms[64][2];
    int transformCount[64];
};

bool inPlainRegion(int sq) { return board::rankOf(sq) <= board::fileOf(sq) && board::fileOf(sq) <= 3; }
bool inPawnRegion(int sq) { return board::fileOf(sq) <= 3; }

Region makeRegion(bool pawns) {
    Region region{};
    int slots = 0;
    for (int sq = 0; sq < 64; ++sq) {
        region.slot[sq] = -1;
        if (pawns ? inPawnRegion(sq) : inPlainRegion(sq)) {
            region.slot[sq] = slots;
            region.square[slots++] = sq;
        }
    }
    for (int sq = 0; sq < 64; ++sq)
        for (int t = 0; t < (pawns ? 2 : 8); ++t)
            if (region.slot[transformSquare(t, sq)] >= 0) region.transforms[sq][region.transformCount[sq]++] = t;
    return region;
}

const Region& regionOf(const Layout& layout) {
    static const Region pawnRegion = makeRegion(true), plainRegion = makeRegion(false);
    return layout.symmetries == 2 ? pawnRegion : plainRegion;
}

}  // namespace

int transformSquare(int t, int sq) { return transforms.square[t][sq]; }

Layout layoutOf(const Material& material) {
    Layout layout;
    layout.men = material.count;
    layout.symmetries = 8;
    for (int m = 0; m < material.count; ++m)
        if (material.men[m].type == board::WhitePawn || material.men[m].type == board::BlackPawn) layout.symmetries = 2;
    layout.size = std::uint32_t(layout.symmetries == 2 ? PawnSlots : PlainSlots) << (6 * (material.count - 1));
    return layout;
}

std::uint32_t positionOf(const Layout& layout, const int* squares) {
    const Region& region = regionOf(layout);
    const int king = squares[0];
    std::uint32_t best = ~std::uint32_t(0);
    for (int i = 0; i < region.transformCount[king]; ++i) {
        const int t = region.transforms[king][i];
        std::uint32_t position = 0;
        const std::int8_t* image = transforms.square[t];
        for (int m = layout.men - 1; m >= 1; --m) position = (position << 6) | std::uint32_t(image[squares[m]]);
        position |= std::uint32_t(region.slot[image[king]]) << (6 * (layout.men - 1));
        if (position < best) best = position;
    }
    return best;
}

void squaresOf(const Layout& layout, std::uint32_t position, int* squares) {
    const int shift = 6 * (layout.men - 1);
    squares[0] = regionOf(layout).square[position >> shift];
    squaresOfPlacement(position & ((std::uint32_t(1) << shift) - 1), layout.men - 1, squares + 1);
}

}  // namespace tbgen
