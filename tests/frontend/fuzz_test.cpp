// Fuzzing of the front end and the set-ups behind it: thousands of random and
// mutated lines through the real binary in force mode, and mutated FENs and
// edit dialogues straight into the game, whose invariants are checked after
// every step. Seeds are fixed, so a failure repeats.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "board/editposition.h"
#include "board/fen.h"
#include "board/game.h"
#include "frontend/commandloop.h"
#include "frontend/engine.h"

namespace {

using board::game;

const char* const BaseFens[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
    "4k3/8/8/8/8/8/8/4K3 w - - 0 1",
    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1",
};

const char FenAlphabet[] = "KQRBNPkqrbnp12345678/ -wbKQkq";
const char PieceLetters[] = "QRBNPqrbnp";

class LineMaker {
public:
    explicit LineMaker(unsigned seed) : rng_(seed) {}

    int below(int n) { return static_cast<int>(rng_() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }

    std::string randomBytes(int maxLength) {
        std::string s;
        const int length = below(maxLength + 1);
        for (int i = 0; i < length; ++i) {
            char c = char(below(256));
            if (c == '\n') c = ' ';
            s += c;
        }
        return s;
    }

    std::string mutatedFen() {
        std::string fen = BaseFens[below(std::size(BaseFens))];
        const int edits = 1 + below(6);
        for (int i = 0; i < edits && !fen.empty(); ++i) {
            const int at = below(int(fen.size()));
            switch (below(5)) {
                case 0: fen.erase(at, 1); break;
                case 1: fen.insert(fen.begin() + at, FenAlphabet[below(sizeof FenAlphabet - 1)]); break;
                case 2: fen[at] = FenAlphabet[below(sizeof FenAlphabet - 1)]; break;
                case 3: fen.resize(at); break;
                default: fen[at] = char(below(256) | 1); break;
            }
        }
        return fen;
    }

    // `count` pieces besides the kings (if any) on random squares.
    std::string crowdedFen(int count, bool kings, bool lastRankPawns) {
        char board[64];
        std::memset(board, 0, sizeof board);
        auto put = [&](char letter, int rankLow, int rankHigh) {
            for (int tries = 0; tries < 200; ++tries) {
                const int square = (rankLow + below(rankHigh - rankLow + 1)) * 8 + below(8);
                if (!board[square]) {
                    board[square] = letter;
                    return;
                }
            }
        };
        if (kings) {
            put('K', 0, 7);
            put('k', 0, 7);
        }
        for (int i = 0; i < count; ++i) put(PieceLetters[below(10)], 0, 7);
        if (lastRankPawns) {
            put('P', 7, 7);
            put('p', 0, 0);
            put('P', 0, 0);
        }
        std::string fen;
        for (int rank = 7; rank >= 0; --rank) {
            int run = 0;
            for (int file = 0; file < 8; ++file) {
                const char c = board[rank * 8 + file];
                if (!c) {
                    ++run;
                    continue;
                }
                if (run) fen += char('0' + run);
                run = 0;
                fen += c;
            }
            if (run) fen += char('0' + run);
            if (rank) fen += '/';
        }
        fen += chance(50) ? " w " : " b ";
        fen += chance(50) ? "KQkq" : "-";
        return fen;
    }

    std::string anyFen() {
        switch (below(5)) {
            case 0: return mutatedFen();
            case 1: return crowdedFen(38, true, false);
            case 2: return crowdedFen(below(12), true, true);
            case 3: return crowdedFen(below(20), false, false);
            default: return crowdedFen(below(30), true, false);
        }
    }

    std::string square() {
        std::string s;
        s += char('a' + below(9));
        s += char('0' + below(10));
        return s;
    }

    std::string editLine() {
        switch (below(6)) {
            case 0: return chance(50) ? "#" : "c";
            case 1: {
                std::string line(1, "KQRBNPXkqrbnpxZ"[below(15)]);
                line += square();
                return line;
            }
            case 2: return std::string(1, "KQRBNPX"[below(7)]);
            case 3: {
                // NUL bytes in dialogue lines have a transcript test of
                // their own; here they would only hide other faults.
                std::string junk = randomBytes(40);
                for (char& c : junk)
                    if (c == '\0') c = '\1';
                return junk;
            }
            default: return std::string(1, "KQRBNP"[below(6)]) + char('a' + below(8)) + char('1' + below(8));
        }
    }

    std::string moveLine() {
        static const char* const castles[] = {"o-o", "O-O-O", "0-0", "0-0-0", "o-o-o-o"};
        if (chance(10)) return castles[below(5)];
        std::string s = square() + square();
        if (chance(20)) s += "QRBNqkx="[below(8)];
        if (chance(5)) s += "ep";
        return s;
    }

    std::string commandLine() {
        static const char* const words[] = {"undo", "remove", "force", "print", "white", "black", "level 40 5 0",
                                            "level x", "time 100", "otim 0", "post", "nopost", "?", "exit",
                                            "result 1-0", "ping 3", "xboard", "hard", "easy", ".", "protover 2",
                                            "option USE BOOK=1", "ucinewgame", "name x", "accepted y"};
        return words[below(std::size(words))];
    }

    // One line, or an edit dialogue of several, for the main chain.
    std::string nextChunk() {
        switch (below(10)) {
            case 0: return randomBytes(90) + "\n";
            case 1: return "setboard " + anyFen() + "\n";
            case 2: return (chance(50) ? "SETBOARD " : "setboard") + mutatedFen() + "\n";
            case 3: {
                std::string dialogue = "edit\n";
                const int n = below(20);
                for (int i = 0; i < n; ++i) dialogue += editLine() + "\n";
                return dialogue + ".\n";
            }
            case 4: {
                std::string s(2000 + below(4000), 'x');
                for (char& c : s) c = char(33 + below(94));
                return s + "\n";
            }
            case 5:
            case 6: return moveLine() + "\n";
            default: return commandLine() + "\n";
        }
    }

private:
    std::mt19937 rng_;
};

// MORVANE_FUZZ_SEED varies the runs; without it they repeat exactly.
unsigned fuzzSeed(unsigned fallback) {
    const char* text = std::getenv("MORVANE_FUZZ_SEED");
    return text ? fallback ^ static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : fallback;
}

// Commands that would start a think, leave the loop, resize tables or read
// files: the fuzz keeps to force mode and the game.
bool unsafeCommand(const char* line) {
    char upper[frontend::CommandLineSize];
    std::snprintf(upper, sizeof upper, "%s", line);
    for (char* p = upper; *p; ++p)
        if (*p >= 'a' && *p <= 'z') *p = char(*p - 'a' + 'A');
    static const char* const prefixes[] = {"GO", "QUIT", "MEMORY", "SETOPTION", "EGTPATH", "PARTIE"};
    for (const char* prefix : prefixes)
        if (std::strncmp(upper, prefix, std::strlen(prefix)) == 0) return true;
    static const char* const exact[] = {"NEW", "ANALYZE", "UCI", "EDIT"};
    for (const char* word : exact)
        if (std::strcmp(upper, word) == 0) return true;
    return false;
}

// Splits a chunk as the engine will read it, so that the tail of an
// overlong line is judged as the command it becomes.
bool chunkIsSafe(const std::string& chunk, bool isDialogue) {
    std::FILE* file = std::tmpfile();
    std::fwrite(chunk.data(), 1, chunk.size(), file);
    std::rewind(file);
    char line[frontend::CommandLineSize];
    bool safe = true;
    bool first = true;
    while (frontend::readCommandLine(file, line, frontend::CommandLineSize)) {
        const bool ownEdit = isDialogue && first;
        if (!ownEdit && unsafeCommand(line)) safe = false;
        first = false;
    }
    std::fclose(file);
    return safe;
}

// The 8 lines that follow the marker's pong form a board print.
::testing::AssertionResult boardFollowsMarker(const std::string& out, const std::string& marker) {
    static const std::regex board("([.rdtfcpRDTFCP]{8}\n){8}");
    const std::string pong = "pong " + marker + "\n";
    const std::size_t at = out.rfind(pong);
    if (at != std::string::npos && std::regex_match(out.substr(at + pong.size(), 72), board))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "no board print after " << marker;
}

// Appended piece by piece: GCC 12 warns falsely on "M" + std::to_string().
std::string markerName(int batch, int chunk) {
    std::string name = "M";
    name += std::to_string(batch);
    name += 'X';
    name += std::to_string(chunk);
    return name;
}

const char* const AfterNewGameE2E4 =
    "TCFDRFCT\nPPPPPPPP\n........\n........\n....p...\n........\npppp.ppp\ntcfdrfct\n";

std::string saveFailure(const std::string& input, int batch) {
    const std::string path = "/tmp/morvane-fuzz-batch-" + std::to_string(batch) + ".txt";
    if (std::FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(input.data(), 1, input.size(), f);
        std::fclose(f);
    }
    return path;
}

TEST(FrontEndFuzz, RandomLinesThroughTheBinaryLeaveAConsistentGame) {
    LineMaker maker(fuzzSeed(20240611));
    constexpr int Batches = 160;
    constexpr int ChunksPerBatch = 160;
    for (int batch = 0; batch < Batches; ++batch) {
        std::string input = "force\n";
        for (int i = 0; i < ChunksPerBatch; ++i) {
            std::string chunk = maker.nextChunk();
            const bool dialogue = chunk.rfind("edit\n", 0) == 0;
            if (chunkIsSafe(chunk, dialogue)) input += chunk;
            if (i % 40 == 39) {
                const std::string marker = markerName(batch, i);
                input += "ping " + marker + "\nprint\n";
            }
        }
        // The engine must still play a plain game after all of it.
        input += "new\nforce\ne2e4\nping END\nprint\n";
        // Some runs end inside an edit dialogue: the input's end must end it.
        if (batch % 8 == 7) input += "edit\n#\nKe1\n";
        const auto run = testing_support::runEngine(input, {}, {}, 60000);
        std::string where;
        if (run.exitCode != 0 || run.timedOut) where = "; input saved in " + saveFailure(input, batch);
        ASSERT_FALSE(run.timedOut) << "batch " << batch << where;
        ASSERT_EQ(run.exitCode, 0) << "batch " << batch << where << "\n" << run.err.substr(0, 4000);
        EXPECT_EQ(run.err.find("runtime error"), std::string::npos) << run.err.substr(0, 4000);
        for (int i = 39; i < ChunksPerBatch; i += 40)
            EXPECT_TRUE(boardFollowsMarker(run.out, markerName(batch, i)))
                << "batch " << batch;
        const std::string end = "pong END\n";
        const std::size_t at = run.out.rfind(end);
        ASSERT_NE(at, std::string::npos) << "batch " << batch << "; input saved in " << saveFailure(input, batch);
        EXPECT_EQ(run.out.substr(at + end.size()), AfterNewGameE2E4) << "batch " << batch;
    }
}

// Board and piece list agree, the Position mirrors the Game, the list ends.
::testing::AssertionResult gameIsConsistent() {
    for (int id = 0; id < 32; ++id) {
        const int square = game.pieceSquare[id];
        if (square == board::NoSquare) continue;
        if (square < 0 || square > 63) return ::testing::AssertionFailure() << "id " << id << " off board";
        if (game.boardPiece[square] != id) return ::testing::AssertionFailure() << "id " << id << " not on its square";
    }
    for (int square = 0; square < 64; ++square) {
        const int id = game.boardPiece[square];
        if (id == 32) continue;
        if (id < 0 || id > 31 || game.pieceSquare[id] != square)
            return ::testing::AssertionFailure() << "square " << square << " holds a stray id";
    }
    if (game.sideToMove != 0 && game.sideToMove != 1) return ::testing::AssertionFailure() << "side";
    if (std::memcmp(game.boardPiece, game.position->boardPiece, sizeof game.boardPiece) != 0 ||
        std::memcmp(game.pieceSquare, game.position->pieceSquare, sizeof game.pieceSquare) != 0)
        return ::testing::AssertionFailure() << "Position differs from Game";
    int n = 0;
    while (n < board::MoveListSize && game.legalMoves[n] != 0) ++n;
    if (n == board::MoveListSize) return ::testing::AssertionFailure() << "move list unterminated";
    if (game.gameOver == board::GameOn && (game.pieceSquare[0] == board::NoSquare || game.pieceSquare[16] == board::NoSquare))
        return ::testing::AssertionFailure() << "game on without a king";
    return ::testing::AssertionSuccess();
}

// What a set-up decides, as one comparable record.
std::vector<std::int32_t> placementOf(const board::Game& g) {
    std::vector<std::int32_t> p(g.pieceSquare, g.pieceSquare + 32);
    p.insert(p.end(), g.boardPiece, g.boardPiece + 64);
    p.insert(p.end(), g.pieceType, g.pieceType + 32);
    p.insert(p.end(), g.castleState, g.castleState + 4);
    p.push_back(g.sideToMove);
    return p;
}

// Plays random listed moves, each of which the game must take, then takes
// them all back to the placement it started from.
void playAndTakeBack(LineMaker& maker, int plies) {
    const auto start = placementOf(game);
    int played = 0;
    for (; played < plies && game.gameOver == board::GameOn; ++played) {
        int n = 0;
        while (game.legalMoves[n] != 0) ++n;
        if (n == 0) break;
        const board::Move move = game.legalMoves[maker.below(n)];
        ASSERT_EQ(move & board::scanIllegal, 0) << "marked move in the list of a game on";
        const int result = board::makeGameMove(game, move);
        ASSERT_GE(result, 0);
        ASSERT_NE(result, board::ResultNeedsPromotion);
        ASSERT_TRUE(gameIsConsistent()) << "after move " << std::hex << move;
    }
    for (int i = 0; i < played; ++i) ASSERT_EQ(board::takeBackMove(game), 0);
    ASSERT_TRUE(gameIsConsistent());
    EXPECT_TRUE(placementOf(game) == start) << "take-backs didn't restore the set-up";
}

TEST(FrontEndFuzz, MutatedFensKeepTheGameConsistent) {
    board::initGame();
    board::resetGame(game);
    board::rescanMoves(game);
    LineMaker maker(fuzzSeed(7));
    for (int i = 0; i < 20000; ++i) {
        const std::string fen = maker.anyFen();
        const auto before = placementOf(game);
        const int result = board::setupFromFenChecked(game, fen.c_str());
        ASSERT_TRUE(result == 0 || result == board::scanIllegal || result == board::SetupNoSlot ||
                    result == board::SetupNoKing)
            << fen << " gave " << result;
        if (result < 0) {
            EXPECT_TRUE(placementOf(game) == before) << "refused set-up changed the game: " << fen;
        }
        ASSERT_TRUE(gameIsConsistent()) << fen;
        if (result == 0) playAndTakeBack(maker, 1 + maker.below(40));
        if (::testing::Test::HasFatalFailure()) {
            ADD_FAILURE() << "FEN: " << fen;
            return;
        }
    }
    board::resetGame(game);
    board::rescanMoves(game);
}

TEST(FrontEndFuzz, EditDialoguesKeepTheGameConsistent) {
    board::initGame();
    board::resetGame(game);
    board::rescanMoves(game);
    LineMaker maker(fuzzSeed(11));
    for (int i = 0; i < 8000; ++i) {
        std::string dialogue;
        if (maker.chance(70)) dialogue += "#\n";
        const int n = maker.below(24);
        for (int j = 0; j < n; ++j) dialogue += maker.editLine() + "\n";
        // A fifth of the dialogues run into the end of input instead of ".".
        if (maker.chance(80)) dialogue += ".\n";
        std::FILE* input = std::tmpfile();
        std::fwrite(dialogue.data(), 1, dialogue.size(), input);
        std::rewind(input);
        board::editPosition(maker.below(2), input);
        std::fclose(input);
        ASSERT_TRUE(gameIsConsistent()) << dialogue;
        playAndTakeBack(maker, maker.below(20));
        if (::testing::Test::HasFatalFailure()) {
            ADD_FAILURE() << "dialogue:\n" << dialogue;
            return;
        }
    }
    board::resetGame(game);
    board::rescanMoves(game);
}

}  // namespace
