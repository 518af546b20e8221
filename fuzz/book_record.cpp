// Fuzz target: book files. The input is a book: it is searched for the key
// of its own first record and for a key it may not hold, and every whole
// record in it goes through the lottery, which must pick one of the
// record's moves and never index past its ticket table.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "book/book.h"
#include "book/bookfile.h"

namespace {

constexpr char StartKey[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR/ w KQkq -";

void checkPick(const book::BookRecord& record) {
    const int count = book::recordMoveCount(record);
    const int move = book::bookPickMove(record);
    if (count == 0) {
        if (move != 0) std::abort();
        return;
    }
    for (int i = 0; i < count; ++i) {
        const int tickets = book::bookTickets(record.entry[i]);
        if (tickets < 1 || tickets > 11) std::abort();
    }
    for (int i = 0; i < count; ++i)
        if (record.entry[i].move == move) return;
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::FILE* stream = fmemopen(const_cast<std::uint8_t*>(data), size, "rb");
    if (stream == nullptr) return 0;
    book::BookRecord record;
    if (size >= sizeof record) {
        char key[book::BookKeySize];
        std::memcpy(key, data, book::BookKeyLimit);
        key[book::BookKeyLimit] = '\0';
        // The first record always holds its own key, unless a later NUL cut it.
        const int found = book::bookFindRecord(stream, key, record);
        if (found && std::strncmp(record.key, key, book::BookKeySize) != 0) std::abort();
        if (!found && std::memchr(data, '\0', book::BookKeySize) != nullptr) std::abort();
    }
    book::bookFindRecord(stream, StartKey, record);
    for (std::size_t at = 0; at + sizeof record <= size; at += sizeof record) {
        std::memcpy(&record, data + at, sizeof record);
        checkPick(record);
    }
    std::fclose(stream);
    return 0;
}
