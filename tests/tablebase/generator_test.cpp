// The table generator: its table bytes, its rules for a few men (moves taken
// back must be exactly the moves made forward, or the retrograde counts go
// wrong silently), and the tool on whole endings.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <random>

#include "tablebase/index.h"
#include "tablebase/probe.h"
#include "tablefiles.h"
#include "tbgen/material.h"
#include "tbgen/rules.h"
#include "tbgen/values.h"
#include "tbgenrun.h"

namespace {

using namespace tbgen;
using namespace board;

TEST(TbgenValues, BytesCountMovesAsTheProbeReadsThem) {
    std::int8_t byte = 0;
    const struct {
        int score;
        int byte;
    } cases[] = {
        {scoreOfWin(1), 126},      {scoreOfWin(3), 125},    {scoreOfWin(251), 1},
        {scoreOfWin(253), -128},   {scoreOfLoss(0), -126},  {scoreOfLoss(2), -125},
        {scoreOfLoss(250), -1},    {scoreOfLoss(252), -127}, {0, 0},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(byteOfScore(c.score, byte)) << c.score;
        EXPECT_EQ(byte, c.byte) << c.score;
    }
    EXPECT_FALSE(byteOfScore(scoreOfWin(255), byte));
    EXPECT_FALSE(byteOfScore(scoreOfLoss(254), byte));
    for (int b = -128; b < 127; ++b) {
        ASSERT_TRUE(byteOfScore(scoreOfByte(std::int8_t(b)), byte)) << b;
        EXPECT_EQ(byte, b);
    }
    EXPECT_EQ(scoreOfByte(127), NoScore);
}

// Squares by man for a material from a list such as {E1, E8, E5, D5}.
struct Placed {
    Material material;
    int squares[MaxMen];
};
Placed place(const char* name, std::initializer_list<int> squares) {
    Placed placed{};
    materialOfName(name, placed.material);
    int m = 0;
    for (const int sq : squares) placed.squares[m++] = sq;
    return placed;
}

bool hasMove(const GenMove* list, int count, int from, int to, bool enPassant = false) {
    for (int i = 0; i < count; ++i)
        if (list[i].from == from && list[i].to == to && list[i].enPassant == enPassant) return true;
    return false;
}

TEST(TbgenRules, EnPassantNeedsTheRightAndASafeKing) {
    initRules();
    GenMove list[MaxGenMoves];
    // Black has just played d7-d5 beside the pawn on e5.
    const Placed open = place("kpkp", {A1, H8, E5, D5});
    EXPECT_TRUE(hasMove(list, generateMoves(open.material, open.squares, White, D6, list), E5, D6, true));
    EXPECT_FALSE(hasMove(list, generateMoves(open.material, open.squares, White, -1, list), E5, D6, true));
    // Both pawns leave the fifth rank: the rook on h5 would then hit the king on a5.
    const Placed pinned = place("kpkrp", {A5, H8, E5, H5, D5});
    EXPECT_FALSE(hasMove(list, generateMoves(pinned.material, pinned.squares, White, D6, list), E5, D6, true));
    // A pawn on the seventh promotes four ways, capturing or not.
    const Placed promoting = place("kpkn", {A1, H1, G7, H8});
    const int count = generateMoves(promoting.material, promoting.squares, White, -1, list);
    int promotions = 0;
    for (int i = 0; i < count; ++i) promotions += list[i].promotion != NoType;
    EXPECT_EQ(promotions, 8);
}

TEST(TbgenRules, MovesTakenBackAreExactlyTheMovesMade) {
    initRules();
    std::mt19937 random(20240611);
    for (const char* name : {"kpkp", "kqpkp", "kppkp", "krkb", "knnk", "kbpkn"}) {
        Material material;
        ASSERT_TRUE(materialOfName(name, material));
        for (int trial = 0, tested = 0; tested < 3000 && trial < 100000; ++trial) {
            int squares[MaxMen];
            for (int m = 0; m < material.count; ++m) squares[m] = int(random() % 64);
            const int stm = int(random() % 2);
            if (!isLegal(material, squares, stm)) continue;
            ++tested;
            // Forward: every quiet move is found again from where it leads,
            // except a double step that gives an en passant right.
            GenMove list[MaxGenMoves];
            const int count = generateMoves(material, squares, stm, -1, list);
            for (int i = 0; i < count; ++i) {
                const GenMove& move = list[i];
                if (move.captured != NoMan || move.promotion != NoType) continue;
                int after[MaxMen];
                std::copy(squares, squares + material.count, after);
                after[move.man] = move.to;
                int found = 0;
                forEachUnmove(material, after, stm ^ 1, [&](int man, int from) { found += man == move.man && from == move.from; });
                const int expected = isDoubleStepWithCapturer(material, after, move.man, move.from, move.to) ? 0 : 1;
                ASSERT_EQ(found, expected) << name << " move " << int(move.from) << "-" << int(move.to);
            }
            // Backward: every position taken back has the move forward.
            forEachUnmove(material, squares, stm, [&](int man, int from) {
                int before[MaxMen];
                std::copy(squares, squares + material.count, before);
                before[man] = from;
                ASSERT_TRUE(isLegal(material, before, stm ^ 1)) << name;
                GenMove back[MaxGenMoves];
                EXPECT_TRUE(hasMove(back, generateMoves(material, before, stm ^ 1, -1, back), from, squares[man]))
                    << name << " unmove " << squares[man] << "-" << from;
            });
        }
    }
}

// Positions of every row, either colour holding the row's first side, with
// and without an en passant right: the generator must write each where the
// engine's probe will read it, equal sides and swapped colours included.
TEST(TbgenMaterial, WritesWhereTheProbeReads) {
    initRules();
    tablebase::tbMarkAllPresent();
    std::mt19937 random(7);
    for (int row = 1; row < tablebase::TbRowCount; ++row) {
        Material material;
        ASSERT_TRUE(materialOfRow(row, material)) << row;
        // Rows with a pawn on each side also get positions right after a double step.
        int pawnColours = 0;
        for (int m = 0; m < material.count; ++m)
            pawnColours |= material.men[m].type == WhitePawn ? 1 : material.men[m].type == BlackPawn ? 2 : 0;
        for (int tested = 0, withEp = pawnColours == 3 ? 0 : 10; tested < 40 || withEp < 10;) {
            int squares[MaxMen], steppers[MaxMen];
            for (int m = 0; m < material.count; ++m) squares[m] = int(random() % 64);
            const int stm = int(random() % 2);
            if (!isLegal(material, squares, stm)) continue;
            const int stepper = doubleSteppers(material, squares, stm, steppers) > 0 ? steppers[0] : NoMan;
            if (stepper == NoMan && tested >= 40) continue;
            ++tested;
            withEp += stepper != NoMan;
            const bool swapped = random() % 2;
            // The board as the engine holds it, colours exchanged and turned over if swapped.
            Material onBoard = material;
            int boardSquares[MaxMen];
            std::int32_t pieceSquare[PieceIdCount], pieceType[PieceIdCount + 1];
            std::fill(pieceSquare, pieceSquare + PieceIdCount, NoSquare);
            std::fill(pieceType, pieceType + PieceIdCount + 1, NoType);
            int next[2] = {1, BlackIdBase + 1};
            for (int m = 0; m < material.count; ++m) {
                Man& man = onBoard.men[m];
                man.colour = std::int8_t(man.colour ^ int(swapped));
                if (man.type == WhitePawn || man.type == BlackPawn) man.type = std::int8_t(pawnTypeOf(Color(man.colour)));
                if (man.type == King) onBoard.king[man.colour] = m;
                boardSquares[m] = swapped ? flipRank(squares[m]) : squares[m];
                const int id = man.type == King ? idBase(Color(man.colour)) : next[man.colour]++;
                pieceSquare[id] = boardSquares[m];
                pieceType[id] = man.type;
            }
            const int boardStm = stm ^ int(swapped);
            int epSquare = stepper == NoMan ? -1 : passedSquare(material.men[stepper], squares[stepper]);
            if (swapped && epSquare >= 0) epSquare = flipRank(epSquare);

            TableMap map;
            ASSERT_TRUE(mapMaterial(onBoard, map));
            tablebase::tbCountPieces(pieceSquare, pieceType);
            tablebase::tbBuildLists(pieceSquare, pieceType);
            tablebase::TbTarget target{};
            ASSERT_TRUE(tablebase::tbLocate(boardStm, epSquare, target));
            EXPECT_EQ(map.rowId, target.rowId);
            EXPECT_EQ(tableSide(map, boardStm), target.side) << tablebase::tbRowName(row);
            EXPECT_EQ(tableIndex(map, onBoard, boardSquares, boardStm, epSquare), target.index)
                << tablebase::tbRowName(row) << (swapped ? " swapped" : "") << " ep " << epSquare;
        }
    }
    tablebase::tbShutdown();
}

// The longest win with the row's first side to move, as the tool prints it.
int longestWin(const std::string& printed, const char* name) {
    const std::string head = std::string(name) + " side 0: longest win ";
    const std::size_t at = printed.find(head);
    return at == std::string::npos ? -1 : std::atoi(printed.c_str() + at + head.size());
}

TEST(TbgenTool, LongestMatesFileSizesAndTheOneMoveCheck) {
    tbtest::TableDirectory dir;
    int status = -1;
    const std::string printed = tbtest::runTbgen("--dir " + dir.path() + " kpk kbnk kqkr", &status);
    ASSERT_EQ(status, 0) << printed;
    // kbnk and kqkr need the three-man tables of their captures first.
    const struct {
        const char* name;
        int moves;
    } longest[] = {{"kqk", 10}, {"krk", 16}, {"kpk", 28}, {"kbnk", 33}, {"kqkr", 35}};
    for (const auto& row : longest) {
        EXPECT_EQ(longestWin(printed, row.name), row.moves) << row.name;
        for (int side = 0; side < 2; ++side) {
            const std::string file = dir.file(std::string(row.name) + (side ? ".nbb" : ".nbw"));
            EXPECT_EQ(std::filesystem::file_size(file), tablebase::tbPositions(tablebase::tbRowId(row.name), side)) << file;
        }
    }
    EXPECT_EQ(tbtest::runTbgen("--dir " + dir.path() + " --verify kqk kpk", &status), "kqk verified\nkpk verified\n");
    EXPECT_EQ(status, 0);

    // A mate in 1 turned into a mate in 2 is caught from both sides of the move.
    std::FILE* file = std::fopen(dir.file("kpk.nbw").c_str(), "r+b");
    ASSERT_NE(file, nullptr);
    long index = 0;
    for (int byte; (byte = std::fgetc(file)) != 126; ++index) ASSERT_NE(byte, EOF);
    std::fseek(file, index, SEEK_SET);
    std::fputc(125, file);
    std::fclose(file);
    EXPECT_NE(tbtest::runTbgen("--dir " + dir.path() + " --verify kpk", &status).find("kpk: "), std::string::npos);
    EXPECT_NE(status, 0);
}

}  // namespace
