// Probing the book: finding the game's position, choosing among its moves by
// lottery, and handing the choice to the think driver when it is legal here.
// The choice draws from the standard rand, which the game's reset and each
// think seed.

#include "book/book.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "board/fen.h"

namespace book {

std::atomic<int> useBook{1};

namespace {

// The start position is answered by a fixed split rather than its entries,
// whatever side is to move and whatever the rights; the board alone counts.
constexpr char StartBoard[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR";
constexpr std::size_t StartBoardLength = sizeof StartBoard - 1;
constexpr int KingPawnPercent = 60;
constexpr int KingPawnOpening = board::makeMove(board::E2, board::E4);   // 1804
constexpr int QueenPawnOpening = board::makeMove(board::D2, board::D4);  // 1739

// Eleven tickets at most an entry for five entries, with room to spare.
constexpr int TicketTableSize = 57;

BookPlay lastPlay{};

}  // namespace

// A score above twice the games (a file written elsewhere, or a game
// counter stuck at its limit while learning still adds points) would claim
// more than 100 percent; it is held at 100, so no move outweighs one that
// won every game.
int bookTickets(const BookEntry& entry) {
    float percent = entry.games == 0 ? 50.0f : float(entry.score) * 0.5f / float(entry.games) * 100.0f;
    if (percent > 100.0f) percent = 100.0f;
    return int(percent / 10.0f) + 1;
}

int bookPickMove(const BookRecord& record) {
    const int count = recordMoveCount(record);
    if (count == 0) return 0;
    int owner[TicketTableSize];
    int total = 0;
    for (int i = 0; i < count; ++i)
        for (int t = bookTickets(record.entry[i]); t > 0; --t) owner[total++] = i;
    return record.entry[owner[std::rand() % total]].move;
}

int bookLookup(const board::Game& game, BookPlay* found) {
    std::FILE* stream = openBook("rb");
    if (stream == nullptr) return 0;
    char key[board::BoardTextSize];
    board::boardText(game, key);
    BookRecord record;
    int move = 0;
    if (bookFindRecord(stream, key, record)) {
        if (std::strncmp(key, StartBoard, StartBoardLength) == 0)
            move = std::rand() % 100 < KingPawnPercent ? KingPawnOpening : QueenPawnOpening;
        else
            move = bookPickMove(record);
    }
    std::fclose(stream);
    if (move != 0 && found != nullptr) {
        std::memcpy(found->key, record.key, sizeof found->key);
        found->move = std::uint16_t(move);
    }
    return move;
}

// Only from and to squares are compared, so a book move without promotion
// bits takes the first promotion on its squares. A book move that isn't
// legal here is no miss: the position was in the book.
int bookProbe(board::Game& game, board::Move* moveList) {
    if (game.bookMissesLeft <= 0) return 0;
    BookPlay play;
    const int move = bookLookup(game, &play);
    if (move == 0) {
        game.bookMissesLeft -= 1;
        return 0;
    }
    board::Move* word = moveList;
    while (*word != board::NoMove && (*word & board::FromToMask) != (move & board::FromToMask)) ++word;
    if (*word == board::NoMove) return 0;
    std::swap(*word, moveList[0]);
    lastPlay = play;
    return 1;
}

const BookPlay& lastBookMove() { return lastPlay; }

}  // namespace book
