// The book's file access: the names it is opened by, and the record scan
// that every probe and every learning step goes through.

#include "book/bookfile.h"

#include <algorithm>
#include <cstring>

namespace book {

namespace {

char mainBookPath[BookPathSize] = "Morvane.bo2";
bool mainBookPathValid = true;

// A record holds at most BookKeyLimit characters and a terminator, so a
// longer key can't match; comparing the terminator too keeps a prefix from
// matching a longer key, and a record without any terminator is never read
// past its key field.
bool keyMatches(const BookRecord& record, const char* key, std::size_t length) {
    return length <= std::size_t(BookKeyLimit) && std::memcmp(record.key, key, length + 1) == 0;
}

}  // namespace

void setBookDirectory(const char* directory) {
    const std::size_t length = std::strlen(directory);
    mainBookPathValid = length + sizeof MainBookName <= sizeof mainBookPath;
    if (!mainBookPathValid) return;
    std::memcpy(mainBookPath, directory, length);
    std::memcpy(mainBookPath + length, MainBookName, sizeof MainBookName);
}

// The second name is tried only when the first doesn't open, so a present
// but broken main book hides the spare one: the user asked for the main one.
std::FILE* openBook(const char* mode, char* path) {
    const char* names[] = {mainBookPathValid ? mainBookPath : nullptr, SpareBookName};
    for (const char* name : names) {
        if (name == nullptr) continue;
        std::FILE* stream = std::fopen(name, mode);
        if (stream == nullptr) continue;
        if (path != nullptr) std::snprintf(path, BookPathSize, "%s", name);
        return stream;
    }
    return nullptr;
}

// A short read is the end of the book, whether it was a tail of fewer than
// 100 bytes or a read error; either way the stream is left at the end.
int bookFindRecord(std::FILE* stream, const char* key, BookRecord& record) {
    std::fseek(stream, 0, SEEK_SET);
    const std::size_t length = std::strlen(key);
    if (length > std::size_t(BookKeyLimit)) {
        std::printf("too long\n");
        std::fflush(stdout);
    }
    while (std::fread(&record, 1, sizeof record, stream) == sizeof record) {
        if (!keyMatches(record, key, length)) continue;
        std::fseek(stream, -long(sizeof record), SEEK_CUR);
        return 1;
    }
    if (!std::feof(stream)) std::fseek(stream, 0, SEEK_END);
    std::memset(&record, 0, sizeof record);
    std::memcpy(record.key, key, std::min(length, std::size_t(BookKeyLimit)));
    return 0;
}

int recordMoveCount(const BookRecord& record) {
    int count = 0;
    while (count < BookEntries && record.entry[count].move != 0) ++count;
    return count;
}

}  // namespace book
