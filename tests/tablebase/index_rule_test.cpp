// The index rule over whole endings: every legal position of every three-
// and four-man table, and a sample of the five-man ones, lies inside its
// table; positions that the board's symmetries make equal share an index,
// and no other two positions do; the order of men of one kind in the lists
// doesn't matter.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "rowpositions.h"
#include "tablebase/index.h"

using namespace tbtest;
using tablebase::tbIndexOf;
using tablebase::tbPositions;
using tablebase::tbRowName;

namespace {

constexpr int Triangle[10] = {0, 1, 2, 3, 9, 10, 11, 18, 19, 27};
constexpr int ReportLimit = 5;

bool isPawnRow(const RowMen& men) { return std::count(men.letter, men.letter + men.count, 'p') > 0; }

// The mover's king, fixed to one symmetry class: every position of the
// ending has an image among these.
struct KingRegion {
    int squares[32];
    int count = 0;
};

KingRegion regionOf(bool pawnRow) {
    KingRegion region;
    if (pawnRow) {
        for (int s = 0; s < 64; ++s)
            if (fileOf(s) < 4) region.squares[region.count++] = s;
    } else {
        for (int s : Triangle) region.squares[region.count++] = s;
    }
    return region;
}

// What one position must satisfy on its own: inside the table, the same
// index for its images, for the colours exchanged and for men of one kind
// listed the other way round.
class RowChecker {
public:
    RowChecker(int row, int side) : row_(row), side_(side), men_(rowMen(tbRowName(row))) {
        pawnRow_ = isPawnRow(men_);
        size_ = tbPositions(row, side);
        ordinaryEnd_ = tablebase::tbEnPassantStart(row, side) ? tablebase::tbEnPassantStart(row, side) : size_;
    }

    const RowMen& men() const { return men_; }
    bool pawnRow() const { return pawnRow_; }
    int faults() const { return faults_; }

    // The index, or the table's size when something is wrong. `images`
    // picks the symmetries compared: bit g for symmetry g, and in a pawn row
    // bit 1 for the file mirror, bit 2 for the colours exchanged.
    std::uint32_t check(const RowPosition& p, unsigned images) {
        const std::uint32_t index = indexOf(row_, side_, men_, p);
        if (index >= size_) return fault(p, "index " + std::to_string(index) + " outside the table");
        if (index >= ordinaryEnd_) return fault(p, "index " + std::to_string(index) + " in the en passant region");
        if (pawnRow_) {
            if ((images & 2) && indexOf(row_, side_, men_, transformed(men_, p, 1)) != index)
                return fault(p, "file mirror differs");
            if ((images & 4) && indexOf(row_, side_, men_, transformed(men_, p, 2), 1) != index)
                return fault(p, "colours exchanged differ");
        } else {
            for (int g = 1; g < 8; ++g) {
                if (!(images >> g & 1)) continue;
                const std::uint32_t image = indexOf(row_, side_, men_, transformed(men_, p, g));
                if (image == index) continue;
                if (kingsOnOneLongDiagonal(p) &&
                    image == indexOf(row_, side_, men_, transformed(men_, p, diagonalSymmetry(p))))
                    continue;
                return fault(p, "symmetry " + std::to_string(g) + " differs");
            }
        }
        for (int k = 1; k < men_.count; ++k) {
            if (men_.letter[k] != men_.letter[k - 1] || men_.list[k] != men_.list[k - 1]) continue;
            RowPosition q = p;
            std::swap(q.man[k], q.man[k - 1]);
            if (indexOf(row_, side_, men_, q) != index) return fault(p, "order of men of one kind matters");
        }
        return index;
    }

    std::uint32_t fault(const RowPosition& p, const std::string& what) {
        if (++faults_ <= ReportLimit)
            ADD_FAILURE() << tbRowName(row_) << " side " << side_ << ": " << what << " (kings " << p.king[0] << ","
                          << p.king[1] << " men " << p.man[0] << "," << p.man[1] << "," << p.man[2] << " ep " << p.ep
                          << ")";
        return size_;
    }

private:
    int row_, side_;
    RowMen men_;
    bool pawnRow_;
    std::uint32_t size_, ordinaryEnd_;
    int faults_ = 0;
};

// Every legal position with the mover's king in the region; two of them
// share an index only as a plain row's reflection in a1-h8 with the
// mover's king on that diagonal and the other king off it.
void walkWholeRow(int row, int side) {
    RowChecker checker(row, side);
    const RowMen& men = checker.men();
    const KingRegion region = regionOf(checker.pawnRow());
    std::vector<std::uint64_t> owner(tbPositions(row, side), 0);
    const int imageCount = checker.pawnRow() ? 2 : 7;
    int turn = 0;
    forEachPlacement(men, side, region.squares, region.count, [&](const RowPosition& p) {
        if (!legal(men, p, side)) return;
        // Three men: every image of every position; four: one image each, in turn.
        const unsigned images = men.count == 1 ? 0xfe : 2u << (turn++ % imageCount);
        const std::uint32_t index = checker.check(p, images);
        if (index >= owner.size()) return;
        const std::uint64_t k = key(men, p);
        if (owner[index] == 0 || owner[index] == k) {
            owner[index] = k;
            return;
        }
        const int m = p.king[side], o = p.king[side ^ 1];
        const bool twin = !checker.pawnRow() && fileOf(m) == rankOf(m) && fileOf(o) != rankOf(o) &&
                          owner[index] == key(men, transformed(men, p, 4));
        if (!twin) checker.fault(p, "shares index " + std::to_string(index) + " with another position");
    });
    EXPECT_EQ(checker.faults(), 0) << tbRowName(row) << " side " << side;
}

}  // namespace

TEST(TbIndexRule, EveryThreeAndFourManPositionHasItsOwnIndex) {
    tablebase::tbBuildIndexTables();
    for (int row = 1; row < tablebase::TbFirstFiveMenRow; ++row)
        for (int side = 0; side < 2; ++side) walkWholeRow(row, side);
}

// Five men: random legal positions of every row and side, for the
// position's own checks; a collision among them is a fault too.
TEST(TbIndexRule, FiveManSamplesStayInsideAndAgreeWithTheirImages) {
    tablebase::tbBuildIndexTables();
    std::mt19937 random(20240611);
    for (int row = tablebase::TbFirstFiveMenRow; row < tablebase::TbRowCount; ++row)
        for (int side = 0; side < 2; ++side) {
            RowChecker checker(row, side);
            const RowMen& men = checker.men();
            const KingRegion region = regionOf(checker.pawnRow());
            std::vector<std::pair<std::uint32_t, RowPosition>> seen;
            while (seen.size() < 2000) {
                RowPosition p;
                p.king[side] = region.squares[random() % region.count];
                p.king[side ^ 1] = int(random() % 64);
                for (int k = 0; k < men.count; ++k) p.man[k] = int(random() % 64);
                if (legal(men, p, side)) seen.push_back({checker.check(p, 0xfe), p});
            }
            std::sort(seen.begin(), seen.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
            for (std::size_t i = 1; i < seen.size(); ++i) {
                const RowPosition &a = seen[i - 1].second, &b = seen[i].second;
                if (seen[i].first != seen[i - 1].first || key(men, a) == key(men, b)) continue;
                if (!checker.pawnRow() && key(men, transformed(men, a, 4)) == key(men, b)) continue;
                checker.fault(b, "shares index " + std::to_string(seen[i].first) + " with another position");
            }
            EXPECT_EQ(checker.faults(), 0) << tbRowName(row) << " side " << side;
        }
}
