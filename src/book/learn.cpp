// The learning step, done as one pass that copies the book record by record
// into its replacement, updating the records that the plays name.

#include "book/learn.h"

#include <cstring>
#include <vector>

#include "platform/replacefile.h"

namespace book {

namespace {

constexpr int ScoreLimit = 65533;

// The side to move follows the board field and its blank: "... w KQkq -".
int moverHalfPoints(const char* key, int whiteHalfPoints) {
    const char* blank = static_cast<const char*>(std::memchr(key, ' ', BookKeySize));
    const bool white = blank == nullptr || blank[1] != 'b';
    return white ? whiteHalfPoints : 2 - whiteHalfPoints;
}

// Only the first record of a key is ever found by a probe, so only it learns.
int learnRecord(BookRecord& record, const BookPlay* plays, int count, std::vector<char>& done,
                int whiteHalfPoints) {
    int updated = 0;
    for (int i = 0; i < count; ++i) {
        if (done[i] || std::strncmp(record.key, plays[i].key, BookKeySize) != 0) continue;
        done[i] = 1;
        for (BookEntry& entry : record.entry) {
            if (entry.move != plays[i].move) continue;
            if (entry.games < CountLimit) entry.games += 1;
            if (entry.score <= ScoreLimit) entry.score += std::uint16_t(moverHalfPoints(record.key, whiteHalfPoints));
            ++updated;
            break;
        }
    }
    return updated;
}

}  // namespace

// The tail of fewer than 100 bytes is copied too: the file keeps every byte
// it had but the counters.
int bookLearn(const BookPlay* plays, int count, int whiteHalfPoints) {
    if (whiteHalfPoints < 0 || whiteHalfPoints > 2) return LearnBadResult;
    if (count <= 0) return 0;
    char path[BookPathSize];
    std::FILE* in = openBook("rb", path);
    if (in == nullptr) return LearnNoBook;
    platform::ReplacementFile out;
    if (!platform::beginReplacement(out, path)) {
        std::fclose(in);
        return LearnNotWritten;
    }
    std::vector<char> done(std::size_t(count), 0);
    int updated = 0;
    bool written = true;
    BookRecord record;
    std::size_t got;
    while ((got = std::fread(&record, 1, sizeof record, in)) == sizeof record) {
        updated += learnRecord(record, plays, count, done, whiteHalfPoints);
        written = written && std::fwrite(&record, sizeof record, 1, out.stream) == 1;
    }
    if (got > 0) written = written && std::fwrite(&record, 1, got, out.stream) == got;
    const bool readThrough = std::ferror(in) == 0;
    std::fclose(in);
    if (updated == 0 || !readThrough || !written) {
        platform::abandonReplacement(out);
        return updated == 0 && readThrough ? 0 : LearnNotWritten;
    }
    return platform::commitReplacement(out) ? updated : LearnNotWritten;
}

}  // namespace book
