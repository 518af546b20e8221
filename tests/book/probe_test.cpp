// Probing the book: the move it puts first, the lottery and the fixed split
// at the start, the files it reads and the ones it must not, the counter of
// empty lookups and what re-arms it, and damaged files of random bytes.
#include <cstdlib>
#include <random>

#include "book/book.h"
#include "book/bookfiles.h"
#include "support/roots.h"

using namespace booktest;

namespace {

class BookProbe : public BookDirectory {
protected:
    // The game's legal list after a probe, and whether it hit.
    int probe(board::Move* list) {
        std::copy(board::game.legalMoves, board::game.legalMoves + board::MoveListSize, list);
        return book::bookProbe(board::game, list);
    }
    int probe() {
        board::Move list[board::MoveListSize];
        return probe(list);
    }
    void play(std::initializer_list<const char*> moves) {
        for (const char* m : moves) ASSERT_GE(playMove(m), 0) << m;
    }
};

}  // namespace

TEST_F(BookProbe, HitPutsTheBookMoveFirstAndNotesIt) {
    play({"e2e4"});
    writeFile(mainBook(), bytesOf({makeRecord("8/8/8/8/8/8/8/8/ w - -", {{1, 2, moveOf("a2a3")}}),
                                   makeRecord(keyOf(), {{10, 10, moveOf("c7c5")}})}));
    board::Move list[board::MoveListSize];
    ASSERT_EQ(probe(list), 1);
    EXPECT_EQ(list[0] & board::FromToMask, moveOf("c7c5"));
    int displaced = 0;
    while (board::game.legalMoves[displaced] != list[0]) ++displaced;
    EXPECT_EQ(list[displaced], board::game.legalMoves[0]);  // swapped, not shifted
    EXPECT_EQ(book::lastBookMove().key, keyOf());
    EXPECT_EQ(book::lastBookMove().move, moveOf("c7c5"));
    EXPECT_EQ(board::game.bookMissesLeft, board::BookMissesStart);
}

TEST_F(BookProbe, StartPositionSplitsSixtyFortyBetweenKingAndQueenPawn) {
    EXPECT_EQ(book::bookLookup(board::game), 0) << "no start record, no fixed answer";
    writeFile(mainBook(), bytesOf({makeRecord(keyOf(), {{5, 10, moveOf("c2c4")}})}));
    std::srand(12345);
    std::vector<int> counts(2, 0);
    for (int i = 0; i < 3000; ++i) {
        const int move = book::bookLookup(board::game);
        ASSERT_TRUE(move == moveOf("e2e4") || move == moveOf("d2d4")) << move;
        ++counts[move == moveOf("e2e4") ? 0 : 1];
    }
    EXPECT_LT(chiSquare(counts, {0.6, 0.4}), 10.8) << counts[0] << " e4, " << counts[1] << " d4";

    // Only the board decides; with Black to move neither pawn move is legal,
    // which is no miss.
    ASSERT_EQ(board::setupFromFen(board::game, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq -"), 0);
    writeFile(mainBook(), bytesOf({makeRecord(keyOf(), {{5, 10, moveOf("e7e5")}})}));
    EXPECT_EQ(probe(), 0);
    EXPECT_EQ(board::game.bookMissesLeft, board::BookMissesStart);
}

TEST(BookTickets, FollowTheScorePercentage) {
    EXPECT_EQ(book::bookTickets({0, 0, 1}), 6);      // unplayed: 50 percent
    EXPECT_EQ(book::bookTickets({10, 0, 1}), 1);     // always lost, still playable
    EXPECT_EQ(book::bookTickets({10, 20, 1}), 11);   // always won
    EXPECT_EQ(book::bookTickets({10, 7, 1}), 4);     // 35 percent
    EXPECT_EQ(book::bookTickets({1, 65535, 1}), 11);  // beyond 100 percent: held there
    EXPECT_EQ(book::bookPickMove(makeRecord("k", {{0, 0, 0}, {5, 5, moveOf("a2a3")}})), 0);
}

TEST_F(BookProbe, DamagedFilesAndOverlongKeysAreMisses) {
    writeFile(mainBook(), "");
    EXPECT_EQ(probe(), 0);
    EXPECT_EQ(board::game.bookMissesLeft, board::BookMissesStart - 1);

    // A tail of 99 bytes is no record, even if it holds the whole key.
    play({"e2e4"});
    const std::string afterE4 = keyOf();
    board::takeBackMove(board::game);
    writeFile(mainBook(), bytesOf({makeRecord(keyOf(), {{1, 1, moveOf("c2c4")}})}) +
                              bytesOf({makeRecord(afterE4, {{1, 1, moveOf("e7e5")}})}).substr(0, 99));
    EXPECT_EQ(probe(), 1);
    play({"e2e4"});
    EXPECT_EQ(probe(), 0);

    const char* crowded = "r1b1k1n1/1p1p1p1p/p1p1p1p1/1q1r1b1n/Q1R1B1N1/1P1P1P1P/P1P1P1P1/1R1B1K1N w - -";
    ASSERT_EQ(board::setupFromFen(board::game, crowded), 0);
    ASSERT_GT(keyOf().size(), std::size_t(book::BookKeyLimit));
    writeFile(mainBook(), bytesOf({makeRecord(keyOf(), {{1, 1, moveOf("a4a5")}})}));  // stored cut to 69
    testing::internal::CaptureStdout();
    EXPECT_EQ(probe(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "too long\n");
}

TEST_F(BookProbe, SpareBookIsReadOnlyWithoutTheMainOne) {
    writeFile(spareBook(), bytesOf({makeRecord(keyOf(), {{1, 1, moveOf("e2e4")}})}));
    writeFile(mainBook(), bytesOf({makeRecord("8/8/8/8/8/8/8/8/ w - -", {{1, 1, moveOf("a2a3")}})}));
    EXPECT_EQ(probe(), 0);
    std::filesystem::remove(mainBook());
    EXPECT_EQ(probe(), 1);
}

TEST_F(BookProbe, TenMissesCloseTheBookUntilTheGameRearmsIt) {
    writeFile(mainBook(), "");
    for (int i = 0; i < board::BookMissesStart; ++i) EXPECT_EQ(probe(), 0);
    writeFile(mainBook(), bytesOf({makeRecord(keyOf(), {{1, 1, moveOf("e2e4")}})}));
    EXPECT_EQ(probe(), 0) << "the eleventh probe opened the book";
    board::resetGame(board::game);
    board::rescanMoves(board::game);
    EXPECT_EQ(probe(), 1);

    // Knights out and back: a take-back into the first twenty plies re-arms.
    const char* shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int plies : {21, 22}) {
        board::resetGame(board::game);
        board::rescanMoves(board::game);
        for (int i = 0; i < plies; ++i) play({shuffle[i % 4]});
        board::game.bookMissesLeft = 0;
        board::takeBackMove(board::game);
        EXPECT_EQ(board::game.bookMissesLeft, plies == 21 ? board::BookMissesStart : 0)
            << "historyCursor " << board::game.historyCursor;
    }
    ASSERT_EQ(board::setupFromFen(board::game, "4k3/8/8/8/8/8/8/4K3 w - -"), 0);
    EXPECT_EQ(board::game.bookMissesLeft, board::BookMissesStart);
}

TEST_F(BookProbe, MoveWithoutPromotionBitsTakesTheFirstPromotion) {
    ASSERT_EQ(board::setupFromFen(board::game, "7k/4P3/8/8/8/8/8/K7 w - -"), 0);
    writeFile(mainBook(), bytesOf({makeRecord(keyOf(), {{1, 1, moveOf("e7e8")}})}));
    board::Move list[board::MoveListSize];
    ASSERT_EQ(probe(list), 1);
    const board::Move* first = board::game.legalMoves;
    while ((*first & board::FromToMask) != moveOf("e7e8")) ++first;
    EXPECT_TRUE(board::isPromotion(list[0]));
    EXPECT_EQ(list[0], *first);
}

// Random records, some of them under the real key, and random tails: a probe
// answers 0 or puts a legal move first, and never reads out of bounds.
TEST_F(BookProbe, RandomBytesFuzz) {
    std::mt19937 rng(2024);
    play({"e2e4"});  // off the start, so the entries are drawn from
    board::Move list[board::MoveListSize];
    for (int round = 0; round < 300; ++round) {
        std::string bytes(rng() % 1200, '\0');
        for (char& b : bytes) b = char(rng());
        for (std::size_t at = 0; at + 100 <= bytes.size(); at += 100) {
            if (rng() % 3 != 0) continue;
            auto& record = *reinterpret_cast<book::BookRecord*>(&bytes[at]);
            std::snprintf(record.key, sizeof record.key, "%s", keyOf().c_str());
            for (book::BookEntry& e : record.entry)
                if (rng() % 2) e.move = std::uint16_t(board::game.legalMoves[rng() % 20]);
        }
        writeFile(rng() % 2 ? mainBook() : spareBook(), bytes);
        board::game.bookMissesLeft = board::BookMissesStart;
        if (probe(list) == 1) {
            const board::Move* legal = board::game.legalMoves;
            while (*legal != board::NoMove && *legal != list[0]) ++legal;
            ASSERT_NE(*legal, board::NoMove);
        }
    }
}
