// The generator against an independent set of distance-to-mate tables, the
// Gaviota tables that Debian ships for the five three-man endings: every
// legal position, either side to move, must have the same value.
#include <gtest/gtest.h>

#include <string>

#include "tbgen/material.h"
#include "tbgen/solver.h"
#include "tbgen/values.h"

#if MORVANE_GAVIOTA
#include <gtb-probe.h>
#include <unistd.h>
#endif

namespace {

using namespace tbgen;

#if MORVANE_GAVIOTA

// Opens the first of the Debian package's directories that holds the
// tables, with the compression scheme its files carry.
class Gaviota : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        for (int scheme = 1; scheme <= 4 && !ready; ++scheme) {
            const std::string dir = "/usr/share/gaviotatb/gtb" + std::to_string(scheme);
            if (access((dir + "/kqk.gtb.cp" + std::to_string(scheme)).c_str(), R_OK) != 0) continue;
            paths = tbpaths_add(tbpaths_init(), dir.c_str());
            tb_init(0, scheme, paths);
            tbcache_init(1 << 22, 0);
            ready = (tb_availability() & 3) == 3;  // every three-man table present
        }
    }
    static void TearDownTestSuite() {
        if (paths == nullptr) return;
        tbcache_done();
        tb_done();
        paths = tbpaths_done(paths);
    }
    void SetUp() override {
        if (!ready) GTEST_SKIP() << "Gaviota tables not found under /usr/share/gaviotatb (package gaviotatb)";
    }

    // The Gaviota value of a position of `material` in the generator's scale.
    static int value(const Material& material, const int* squares, int stm) {
        unsigned where[2][MaxMen + 1];
        unsigned char what[2][MaxMen + 1];
        int count[2] = {0, 0};
        for (int m = 0; m < material.count; ++m) {
            const int colour = material.men[m].colour;
            where[colour][count[colour]] = unsigned(squares[m]);
            what[colour][count[colour]++] = pieceCode(material.men[m].type);
        }
        for (int colour = 0; colour < 2; ++colour) {
            where[colour][count[colour]] = tb_NOSQUARE;
            what[colour][count[colour]] = tb_NOPIECE;
        }
        unsigned info = 0, plies = 0;
        if (!tb_probe_hard(unsigned(stm), tb_NOSQUARE, tb_NOCASTLE, where[0], where[1], what[0], what[1], &info, &plies))
            return NoScore;
        if (info == tb_DRAW) return 0;
        if (info != tb_WMATE && info != tb_BMATE) return NoScore;
        return (info == tb_WMATE) == (stm == board::White) ? scoreOfWin(int(plies)) : scoreOfLoss(int(plies));
    }

    static unsigned char pieceCode(int type) {
        switch (type) {
            case board::King: return tb_KING;
            case board::Queen: return tb_QUEEN;
            case board::Rook: return tb_ROOK;
            case board::Bishop: return tb_BISHOP;
            case board::Knight: return tb_KNIGHT;
            default: return tb_PAWN;
        }
    }

    static inline const char** paths = nullptr;
    static inline bool ready = false;
};

TEST_F(Gaviota, GeneratedPiecesEndingsAgreeEverywhere) {
    for (const char* name : {"kqk", "krk", "kbk", "knk"}) {
        Material material;
        ASSERT_TRUE(materialOfName(name, material));
        Solution solution;
        ASSERT_TRUE(solveRow(0, material, TableSet{}, solution));
        long compared = 0, differing = 0;
        for (int stm = 0; stm < 2; ++stm)
            for (std::uint32_t position = 0; position < solution.size; ++position) {
                if (solution.moves[stm][position] == NoLegalPosition) continue;
                int squares[MaxMen];
                squaresOf(position, material.count, squares);
                const int expected = value(material, squares, stm);
                const int got = scoreOfDistance(solution.distance[stm][position]);
                ++compared;
                if (got != expected && differing++ < 5)
                    ADD_FAILURE() << name << " position " << position << " side " << stm << ": generated " << got
                                  << ", Gaviota " << expected;
            }
        EXPECT_EQ(differing, 0) << name;
        EXPECT_GT(compared, 100000) << name;
    }
}

#else

TEST(Gaviota, GeneratedPiecesEndingsAgreeEverywhere) {
    GTEST_SKIP() << "built without libgaviotatb-dev; run scripts/install-deps.sh --test and reconfigure";
}

#endif

}  // namespace
