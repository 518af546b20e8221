#pragma once
// The book file: fixed 100-byte records with no header, no index and no
// order, each found by the key text of a position (its board text). This
// file knows the record layout, the two places a book is looked for and the
// linear scan for a record.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace book {

constexpr int BookKeySize = 70;  // the key text and its terminator
constexpr int BookKeyLimit = BookKeySize - 1;
constexpr int BookEntries = 5;
constexpr int CountLimit = 65535;  // both counters are 16 bits wide

// One move of a record: games counted with it, the half points it won
// (a win 2, a draw 1), and the low 16 bits of its Move word; move 0 is none.
struct BookEntry {
    std::uint16_t games;
    std::uint16_t score;
    std::uint16_t move;
};

// The entries in use stand first; the first empty move ends them.
struct BookRecord {
    char key[BookKeySize];
    BookEntry entry[BookEntries];
};
static_assert(sizeof(BookRecord) == 100 && offsetof(BookRecord, entry) == 70);
static_assert(std::endian::native == std::endian::little, "records are read and written as they lie on disk");

constexpr char MainBookName[] = "Morvane.bo2";
constexpr char SpareBookName[] = "Mini.bo2";
// Room for the book directory and a book name.
constexpr std::size_t BookPathSize = 4096 + sizeof MainBookName;

// Where "Morvane.bo2" is looked for: a directory text that ends in the path
// separator, as start-up gives the program's own. An empty text (the state
// before start-up) means the working directory. A directory too long to
// hold leaves only "Mini.bo2" to try.
void setBookDirectory(const char* directory);

// Opens the book in `mode`: "Morvane.bo2" in the book directory, else
// "Mini.bo2" in the working directory. `path`, if given (BookPathSize
// characters), receives the name that opened. Null if neither opens.
std::FILE* openBook(const char* mode, char* path = nullptr);

// Scans `stream` from its start for the first record whose key equals
// `key`. On a hit (result 1) `record` holds it and the stream stands at its
// start. On a miss (0) `record` is cleared but for the key, and the stream
// stands at the end. A key too long for a record prints "too long".
int bookFindRecord(std::FILE* stream, const char* key, BookRecord& record);

// The entries in use: those before the first empty move, at most five.
int recordMoveCount(const BookRecord& record);

}  // namespace book
