// The generated tables, read back through the engine's own probe, against
// an independent set of distance-to-mate tables: the Gaviota tables that
// Debian ships for the five three-man endings. Every legal position, either
// side to move, either colour holding the piece, must get the same value.
#include <gtest/gtest.h>

#include <string>

#include "tablebase/probe.h"
#include "tablebase/registry.h"
#include "tablefiles.h"
#include "tbgen/material.h"
#include "tbgen/symmetry.h"
#include "tbgen/values.h"
#include "tbgenrun.h"

#if MORVANE_GAVIOTA
#include <gtb-probe.h>
#endif

namespace {

using namespace tbgen;

#if MORVANE_GAVIOTA

// A position as both probes take it: men by colour on the board.
struct Board {
    int count = 0;
    int colour[MaxMen], type[MaxMen], square[MaxMen];
    int stm = 0;
};

// The position of `material` (its first side White), or its twin with the
// colours exchanged and the board turned upside down.
Board boardOf(const Material& material, const int* squares, int stm, bool swapped) {
    Board b;
    b.count = material.count;
    b.stm = stm ^ int(swapped);
    for (int m = 0; m < material.count; ++m) {
        const Man man = material.men[m];
        b.colour[m] = man.colour ^ int(swapped);
        b.square[m] = swapped ? board::flipRank(squares[m]) : squares[m];
        b.type[m] = man.type == board::WhitePawn || man.type == board::BlackPawn ? board::pawnTypeOf(board::Color(b.colour[m]))
                                                                                 : man.type;
    }
    return b;
}

// Opens the first of the package's directories that holds the tables, with
// the compression scheme its files carry, and generates ours.
class Gaviota : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        initRules();
        for (int scheme = 1; scheme <= 4 && !ready; ++scheme) {
            const std::string dir = "/usr/share/gaviotatb/gtb" + std::to_string(scheme);
            if (access((dir + "/kqk.gtb.cp" + std::to_string(scheme)).c_str(), R_OK) != 0) continue;
            paths = tbpaths_add(tbpaths_init(), dir.c_str());
            tb_init(0, scheme, paths);
            tbcache_init(1 << 22, 0);
            ready = (tb_availability() & 3) == 3;  // every three-man table present
        }
        ours = new tbtest::TableDirectory;
        int status = -1;
        tbtest::runTbgen("--dir " + ours->path() + " kqk krk kpk kbk knk", &status);
        generated = status == 0;
    }
    static void TearDownTestSuite() {
        delete ours;
        if (paths == nullptr) return;
        tbcache_done();
        tb_done();
        paths = tbpaths_done(paths);
    }
    void SetUp() override {
        if (!ready) GTEST_SKIP() << "Gaviota tables not found under /usr/share/gaviotatb (package gaviotatb)";
        ASSERT_TRUE(generated);
        ASSERT_EQ(tbtest::initTables(ours->path()), 3);
    }
    void TearDown() override { tablebase::tbShutdown(); }

    // The Gaviota value in the generator's scale.
    static int theirs(const Board& b) {
        unsigned where[2][MaxMen + 1];
        unsigned char what[2][MaxMen + 1];
        int count[2] = {0, 0};
        for (int m = 0; m < b.count; ++m) {
            where[b.colour[m]][count[b.colour[m]]] = unsigned(b.square[m]);
            what[b.colour[m]][count[b.colour[m]]++] = pieceCode(b.type[m]);
        }
        for (int colour = 0; colour < 2; ++colour) {
            where[colour][count[colour]] = tb_NOSQUARE;
            what[colour][count[colour]] = tb_NOPIECE;
        }
        unsigned info = 0, plies = 0;
        if (!tb_probe_hard(unsigned(b.stm), tb_NOSQUARE, tb_NOCASTLE, where[0], where[1], what[0], what[1], &info,
                           &plies))
            return NoScore;
        if (info == tb_DRAW) return 0;
        if (info != tb_WMATE && info != tb_BMATE) return NoScore;
        return (info == tb_WMATE) == (b.stm == board::White) ? scoreOfWin(int(plies)) : scoreOfLoss(int(plies));
    }

    // The engine's probe value in the same scale: a mate in n moves is
    // 2n - 1 plies away, a mate suffered in n moves 2n plies.
    static int engines(const Board& b) {
        std::int32_t pieceSquare[board::PieceIdCount], pieceType[board::PieceIdCount + 1];
        std::fill(pieceSquare, pieceSquare + board::PieceIdCount, board::NoSquare);
        std::fill(pieceType, pieceType + board::PieceIdCount + 1, board::NoType);
        int next[2] = {1, board::BlackIdBase + 1};
        for (int m = 0; m < b.count; ++m) {
            const int id = b.type[m] == board::King ? board::idBase(board::Color(b.colour[m])) : next[b.colour[m]]++;
            pieceSquare[id] = b.square[m];
            pieceType[id] = b.type[m];
        }
        tablebase::tbCountPieces(pieceSquare, pieceType);
        tablebase::tbBuildLists(pieceSquare, pieceType);
        const int v = tablebase::tbProbe(b.stm, -1);
        if (v == tablebase::TbUnknown) return NoScore;
        if (v == 0) return 0;
        return v > 0 ? scoreOfWin(2 * (32767 - v) - 1) : scoreOfLoss(2 * (v + 32766));
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
    static inline tbtest::TableDirectory* ours = nullptr;
    static inline bool generated = false;
};

TEST_F(Gaviota, EveryThreeManPositionReadsBackWithTheirValue) {
    for (const char* name : {"kqk", "krk", "kpk", "kbk", "knk"}) {
        Material material;
        ASSERT_TRUE(materialOfName(name, material));
        long compared = 0, differing = 0;
        int squares[MaxMen];
        for (std::uint32_t position = 0; position < (1u << 18); ++position) {
            squaresOfPlacement(position, material.count, squares);
            for (int stm = 0; stm < 2; ++stm) {
                if (!isLegal(material, squares, stm)) continue;
                for (const bool swapped : {false, true}) {
                    const Board b = boardOf(material, squares, stm, swapped);
                    const int expected = theirs(b), got = engines(b);
                    ++compared;
                    if (got != expected && differing++ < 5)
                        ADD_FAILURE() << name << " men on " << b.square[0] << " " << b.square[1] << " " << b.square[2]
                                      << (swapped ? " (colours exchanged)" : "") << ", side " << b.stm
                                      << ": probe " << got << ", Gaviota " << expected;
                }
            }
        }
        EXPECT_EQ(differing, 0) << name;
        EXPECT_GT(compared, 400000) << name;
    }
}

#else

TEST(Gaviota, EveryThreeManPositionReadsBackWithTheirValue) {
    GTEST_SKIP() << "built without libgaviotatb-dev; run scripts/install-deps.sh --test and reconfigure";
}

#endif

}  // namespace
