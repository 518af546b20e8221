// tbgen --dir DIR [--verify] [--all4] NAME...
// Generates endgame tables from the rules of chess and writes NAME.nbw (the
// row's first side to move) and NAME.nbb into DIR, one signed byte per index
// of the engine's own numbering. The smaller endings that captures and
// promotions lead to are generated first, or read from DIR when both of
// their files are there and weren't asked for. For each table side written
// one line tells the longest mate given and suffered, in moves:
//   kqk side 0: longest win 10, longest loss none
// With --verify nothing is generated: the tables of DIR are checked one move
// deep against the rules, a line "NAME verified" or "NAME: N faults" each.

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include <unistd.h>

#include "tablebase/index.h"
#include "tbgen/fill.h"
#include "tbgen/material.h"
#include "tbgen/solver.h"
#include "tbgen/tableset.h"
#include "tbgen/verify.h"

namespace {

constexpr int LastFourManRow = 35;  // rows 1-5 hold three men, 6-35 four

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

int usage() {
    std::fprintf(stderr, "usage: tbgen --dir DIR [--verify] [--all4] NAME...   (NAME a row such as kqk, krk, kbnk)\n");
    return 2;
}

struct Run {
    const char* dir = nullptr;
    bool verifyOnly = false;
    std::vector<int> wanted;
    tbgen::TableSet tables;

    bool isWanted(int rowId) const {
        for (const int row : wanted)
            if (row == rowId) return true;
        return false;
    }

    void printExtremes(int rowId, const tbgen::Extremes (&extremes)[2]) const {
        for (int side = 0; side < 2; ++side) {
            char loss[16] = "none", win[16] = "none";
            if (extremes[side].longestWin >= 0) std::snprintf(win, sizeof win, "%d", extremes[side].longestWin);
            if (extremes[side].longestLoss >= 0) std::snprintf(loss, sizeof loss, "%d", extremes[side].longestLoss);
            std::printf("%s side %d: longest win %s, longest loss %s\n", tablebase::tbRowName(rowId), side, win, loss);
        }
        std::fflush(stdout);
    }

    // Checks a row of DIR, which must hold its smaller endings too.
    bool verify(int rowId) {
        tbgen::Material material;
        if (!tbgen::materialOfRow(rowId, material)) return false;
        std::vector<int> rows = tbgen::exitRows(material);
        rows.push_back(rowId);
        for (const int row : rows)
            if (tables.rows.count(row) == 0 && !tbgen::readRow(dir, row, tables)) {
                std::fprintf(stderr, "tbgen: %s is missing or has the wrong size\n",
                             tbgen::tableFileName(dir, row, 0).c_str());
                return false;
            }
        const long faults = tbgen::verifyRow(rowId, tables);
        if (faults == 0)
            std::printf("%s verified\n", tablebase::tbRowName(rowId));
        else
            std::printf("%s: %ld faults\n", tablebase::tbRowName(rowId), faults);
        std::fflush(stdout);
        return faults == 0;
    }

    // Makes the row's tables available, its smaller endings first.
    bool ensure(int rowId) {
        if (tables.rows.count(rowId) != 0) return true;
        tbgen::Material material;
        if (!tbgen::materialOfRow(rowId, material)) return false;
        for (const int smaller : tbgen::exitRows(material)) {
            if (tables.rows.count(smaller) != 0) continue;
            if (!isWanted(smaller) && tbgen::readRow(dir, smaller, tables)) continue;
            if (!ensure(smaller)) return false;
        }
        const Clock::time_point start = Clock::now();
        std::array<std::vector<std::int8_t>, 2> bytes;
        tbgen::Extremes extremes[2];
        {
            tbgen::Solution solution;
            if (!tbgen::solveRow(rowId, material, tables, solution) || !tbgen::fillTables(solution, bytes, extremes)) return false;
        }
        tables.rows[rowId] = std::move(bytes);
        if (!tbgen::writeRow(dir, rowId, tables)) {
            std::fprintf(stderr, "tbgen: can't write %s\n", tbgen::tableFileName(dir, rowId, 0).c_str());
            return false;
        }
        printExtremes(rowId, extremes);
        std::fprintf(stderr, "tbgen: %s in %.1f s\n", tablebase::tbRowName(rowId), secondsSince(start));
        return true;
    }
};

}  // namespace

int main(int argc, char** argv) {
    tablebase::tbBuildIndexTables();
    Run run;
    for (int arg = 1; arg < argc; ++arg) {
        if (std::strcmp(argv[arg], "--dir") == 0 && arg + 1 < argc) {
            run.dir = argv[++arg];
        } else if (std::strcmp(argv[arg], "--verify") == 0) {
            run.verifyOnly = true;
        } else if (std::strcmp(argv[arg], "--all4") == 0) {
            for (int row = 1; row <= LastFourManRow; ++row) run.wanted.push_back(row);
        } else if (argv[arg][0] == '-') {
            return usage();
        } else {
            const int row = tablebase::tbRowId(argv[arg]);
            if (row <= 0) {
                std::fprintf(stderr, "tbgen: no table has the ending \"%s\"\n", argv[arg]);
                return usage();
            }
            run.wanted.push_back(row);
        }
    }
    if (run.dir == nullptr || run.wanted.empty()) return usage();
    // Checked before any work: a five-man row takes long to make.
    std::error_code error;
    std::filesystem::create_directories(run.dir, error);
    if (!run.verifyOnly && (error || access(run.dir, W_OK) != 0)) {
        std::fprintf(stderr, "tbgen: can't write into %s\n", run.dir);
        return 1;
    }

    const Clock::time_point start = Clock::now();
    bool good = true;
    for (const int row : run.wanted) {
        if (!run.verifyOnly && !run.ensure(row)) return 1;
        if (run.verifyOnly) good = run.verify(row) && good;
    }
    std::fprintf(stderr, "tbgen: done in %.1f s\n", secondsSince(start));
    return good ? 0 : 1;
}
