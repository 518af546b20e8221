// Fuzzing of the front end and the set-ups behind it. One maker of random
// input with several generators (bytes, mutated and crowded FENs, edit
// dialogues, move texts, command words) feeds two drivers: whole lines
// through the real binary in force mode, and FENs and dialogues straight
// into the game, whose invariants are checked after every step. Seeds are
// fixed (MORVANE_FUZZ_SEED varies them), so a failure repeats.

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
#include "board/scan.h"
#include "frontend/commandloop.h"
#include "platform/text.h"
#include "support/engine.h"

namespace {

using board::game;

const char* const BaseFens[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1",
};

class InputMaker {
public:
    explicit InputMaker(unsigned seed) {
        const char* text = std::getenv("MORVANE_FUZZ_SEED");
        rng_.seed(text ? seed ^ unsigned(std::strtoul(text, nullptr, 10)) : seed);
    }

    int below(int n) { return int(rng_() % unsigned(n)); }
    bool chance(int percent) { return below(100) < percent; }

    // Any bytes but line feeds (and NULs, whose case has a transcript test).
    std::string bytes(int maxLength) {
        std::string s(below(maxLength + 1), ' ');
        for (char& c : s)
            if ((c = char(1 + below(255))) == '\n') c = ' ';
        return s;
    }

    std::string mutatedFen() {
        static const char alphabet[] = "KQRBNPkqrbnp12345678/ -wbKQkq";
        std::string fen = BaseFens[below(int(std::size(BaseFens)))];
        for (int i = 1 + below(6); i > 0 && !fen.empty(); --i) {
            const int at = below(int(fen.size()));
            switch (below(4)) {
                case 0: fen.erase(at, 1); break;
                case 1: fen.insert(fen.begin() + at, alphabet[below(sizeof alphabet - 1)]); break;
                case 2: fen[at] = alphabet[below(sizeof alphabet - 1)]; break;
                default: fen.resize(at); break;
            }
        }
        return fen;
    }

    // Up to `count` men on random squares, kings or not, pawns even on the
    // first and last ranks.
    std::string crowdedFen() {
        char squares[64] = {};
        const int count = below(40);
        if (chance(80)) squares[below(64)] = 'K', squares[below(64)] = 'k';
        for (int i = 0; i < count; ++i) squares[below(64)] = "QRBNPqrbnp"[below(10)];
        std::string fen;
        for (int rank = 7; rank >= 0; --rank) {
            for (int file = 0, run = 0; file < 8; ++file) {
                const char c = squares[rank * 8 + file];
                if (c) fen += (run ? std::string(1, char('0' + run)) : "") + c;
                run = c ? 0 : run + 1;
                if (!c && file == 7) fen += char('0' + run);
            }
            if (rank) fen += '/';
        }
        return fen + (chance(50) ? " w " : " b ") + (chance(50) ? "KQkq" : "-");
    }

    std::string fen() { return chance(50) ? mutatedFen() : crowdedFen(); }

    std::string editDialogue(bool ended) {
        std::string dialogue = chance(70) ? "#\n" : "";
        for (int n = below(24); n > 0; --n) {
            switch (below(4)) {
                case 0: dialogue += chance(50) ? "#" : "c"; break;
                case 1: dialogue += bytes(20); break;
                default:
                    dialogue += std::string(1, "KQRBNPXkqrbnpxZ"[below(15)]) + char('a' + below(9)) +
                                char('0' + below(10));
            }
            dialogue += "\n";
        }
        return ended ? dialogue + ".\n" : dialogue;
    }

    std::string moveText() {
        if (chance(10)) return std::string("o-o-o-o").substr(0, 3 + 2 * below(3));
        std::string s = {char('a' + below(9)), char('0' + below(10)), char('a' + below(9)), char('0' + below(10))};
        return chance(20) ? s + "QRBNqkx="[below(8)] : s;
    }

    std::string commandWord() {
        static const char* const words[] = {"undo", "remove", "force", "print", "white", "black", "level 40 5 0",
                                            "level x", "time 100", "otim 0", "post", "nopost", "?", "exit",
                                            "result 1-0", "ping 3", "xboard", "hard", "easy", ".", "protover 2",
                                            "option USE BOOK=1", "ucinewgame", "accepted y"};
        return words[below(int(std::size(words)))];
    }

    // One chunk of input for the command loop: a line or a whole dialogue.
    std::string chunk() {
        switch (below(9)) {
            case 0: return bytes(90) + "\n";
            case 1: return std::string(2000 + below(4000), char(33 + below(94))) + "\n";
            case 2: case 3: return (chance(50) ? "setboard " : "SETBOARD ") + fen() + "\n";
            case 4: return "edit\n" + editDialogue(true);
            case 5: case 6: return moveText() + "\n";
            default: return commandWord() + "\n";
        }
    }

private:
    std::mt19937 rng_;
};

// Lines that would start a think, leave, resize or read files keep out of
// the binary's input: the fuzz stays in force mode and the game.
bool safeForForceMode(const std::string& chunk) {
    std::FILE* file = std::tmpfile();
    std::fwrite(chunk.data(), 1, chunk.size(), file);
    std::rewind(file);
    char line[frontend::CommandLineSize];
    bool safe = true;
    for (bool first = true; frontend::readCommandLine(file, line, frontend::CommandLineSize); first = false) {
        platform::upperCaseInPlace(line);
        for (const char* prefix : {"GO", "QUIT", "MEMORY", "SETOPTION", "EGTPATH", "PARTIE"})
            safe &= std::strncmp(line, prefix, std::strlen(prefix)) != 0;
        for (const char* word : {"NEW", "ANALYZE", "UCI", "EDIT"})
            safe &= std::strcmp(line, word) != 0 || (first && chunk.rfind("edit\n", 0) == 0);
    }
    std::fclose(file);
    return safe;
}

TEST(FrontEndFuzz, RandomLinesThroughTheBinaryLeaveAPlayableGame) {
    static const std::regex boardPrint("([.rdtfcpRDTFCP]{8}\n){8}");
    InputMaker maker(20240611);
    for (int batch = 0; batch < 120; ++batch) {
        std::string input = "force\n";
        for (int i = 0; i < 160; ++i) {
            const std::string chunk = maker.chunk();
            if (safeForForceMode(chunk)) input += chunk;
            if (i % 40 == 39) input += "ping M" + std::to_string(i) + "\nprint\n";
        }
        input += "new\nforce\ne2e4\nping END\nprint\n";
        if (batch % 8 == 7) input += "edit\n#\nKe1\n";  // the input's end must end a dialogue
        const auto run = testing_support::runEngine(input, {}, {}, 60000);
        ASSERT_FALSE(run.timedOut) << "batch " << batch;
        ASSERT_EQ(run.exitCode, 0) << "batch " << batch << "\n" << run.err.substr(0, 4000);
        EXPECT_EQ(run.err.find("runtime error"), std::string::npos) << run.err.substr(0, 4000);
        for (int i = 39; i < 160; i += 40) {
            const std::string pong = "pong M" + std::to_string(i) + "\n";
            const std::size_t at = run.out.rfind(pong);
            ASSERT_NE(at, std::string::npos) << "batch " << batch;
            EXPECT_TRUE(std::regex_match(run.out.substr(at + pong.size(), 72), boardPrint)) << "batch " << batch;
        }
        const std::size_t end = run.out.rfind("pong END\n");
        ASSERT_NE(end, std::string::npos) << "batch " << batch;
        EXPECT_EQ(run.out.substr(end + 9),
                  "TCFDRFCT\nPPPPPPPP\n........\n........\n....p...\n........\npppp.ppp\ntcfdrfct\n");
    }
}

// Board and piece list agree, the Position mirrors the Game, a game on has
// both kings, and the list ends.
::testing::AssertionResult gameIsConsistent() {
    for (int id = 0; id < 32; ++id) {
        const int square = game.pieceSquare[id];
        if (square != board::NoSquare && (square < 0 || square > 63 || game.boardPiece[square] != id))
            return ::testing::AssertionFailure() << "id " << id << " not on its square";
    }
    for (int square = 0; square < 64; ++square) {
        const int id = game.boardPiece[square];
        if (id != board::NoPiece && (id < 0 || id > 31 || game.pieceSquare[id] != square))
            return ::testing::AssertionFailure() << "square " << square << " holds a stray id";
    }
    if (std::memcmp(game.boardPiece, game.position->boardPiece, sizeof game.boardPiece) != 0)
        return ::testing::AssertionFailure() << "Position differs from Game";
    int n = 0;
    while (n < board::MoveListSize && game.legalMoves[n] != 0) ++n;
    if (n == board::MoveListSize) return ::testing::AssertionFailure() << "move list unterminated";
    if (game.gameOver == board::GameOn &&
        (game.pieceSquare[board::WhiteKingId] == board::NoSquare || game.pieceSquare[board::BlackKingId] == board::NoSquare))
        return ::testing::AssertionFailure() << "game on without a king";
    return ::testing::AssertionSuccess();
}

std::vector<std::int32_t> placementOf() {
    std::vector<std::int32_t> p(game.pieceSquare, game.pieceSquare + 32);
    p.insert(p.end(), game.boardPiece, game.boardPiece + 64);
    p.insert(p.end(), game.castleState, game.castleState + 4);
    p.push_back(game.sideToMove);
    return p;
}

// Random listed moves, each of which the game must take, then take-backs to
// the placement it started from.
void playAndTakeBack(InputMaker& maker, int plies) {
    const auto start = placementOf();
    int played = 0;
    for (; played < plies && game.gameOver == board::GameOn && game.legalMoves[0] != 0; ++played) {
        int n = 0;
        while (game.legalMoves[n] != 0) ++n;
        const board::Move move = game.legalMoves[maker.below(n)];
        ASSERT_EQ(move & board::scanIllegal, 0) << "marked move in the list of a game on";
        ASSERT_GE(board::makeGameMove(game, move), 0);
        ASSERT_TRUE(gameIsConsistent());
    }
    for (int i = 0; i < played; ++i) ASSERT_EQ(board::takeBackMove(game), 0);
    EXPECT_TRUE(placementOf() == start) << "take-backs didn't restore the set-up";
}

TEST(FrontEndFuzz, FensAndEditDialoguesKeepTheGameConsistent) {
    InputMaker maker(7);
    board::resetGame(game);
    board::rescanMoves(game);
    for (int i = 0; i < 24000; ++i) {
        const auto before = placementOf();
        std::string input;
        if (i % 3 == 2) {
            input = maker.editDialogue(maker.chance(80));  // some run into the end of input
            std::FILE* file = std::tmpfile();
            std::fwrite(input.data(), 1, input.size(), file);
            std::rewind(file);
            board::editPosition(maker.below(2), file);
            std::fclose(file);
        } else {
            input = maker.fen();
            const int result = board::setupFromFenChecked(game, input.c_str());
            ASSERT_TRUE(result == 0 || result == board::scanIllegal || result == board::SetupNoSlot ||
                        result == board::SetupNoKing)
                << input;
            if (result < 0) {
                EXPECT_TRUE(placementOf() == before) << "a refused set-up changed the game: " << input;
            }
        }
        ASSERT_TRUE(gameIsConsistent()) << input;
        playAndTakeBack(maker, maker.below(30));
        if (::testing::Test::HasFatalFailure()) FAIL() << input;
    }
    board::resetGame(game);
    board::rescanMoves(game);
}

}  // namespace
