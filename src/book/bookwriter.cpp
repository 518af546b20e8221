// The book writer behind the makebook tool: counting, choosing the five
// moves a record can hold, and fitting counts of any size into its 16-bit
// fields.

#include "book/bookwriter.h"

#include <algorithm>
#include <cstring>

#include "platform/replacefile.h"

namespace book {

namespace {

// Counters past 16 bits are scaled down together, so the percentage, which
// is all the choice reads, survives: games reach 65535 unless the score
// field fills first, above 50 percent.
void fitCounts(std::uint64_t games, std::uint64_t score, BookEntry& entry) {
    score = std::min(score, 2 * games);
    double scale = 1.0;
    if (games > std::uint64_t(CountLimit)) scale = std::min(scale, double(CountLimit) / double(games));
    if (score > std::uint64_t(CountLimit)) scale = std::min(scale, double(CountLimit) / double(score));
    const auto fittedGames = std::uint64_t(double(games) * scale);
    const auto fittedScore = std::min(std::uint64_t(double(score) * scale), 2 * fittedGames);
    entry.games = std::uint16_t(std::min(fittedGames, std::uint64_t(CountLimit)));
    entry.score = std::uint16_t(std::min(fittedScore, std::uint64_t(CountLimit)));
}

// Lines without results still rank their moves: the most followed one gets
// 100 percent and the others their share of it, so the lottery favours the
// main line ten to one over a rare sideline without ever dropping it.
std::uint64_t popularityScore(const MoveTally& move, std::uint64_t mostGames) {
    return mostGames == 0 ? move.games : 2 * move.games * move.games / mostGames;
}

}  // namespace

void tallyMove(BookTally& tally, const std::string& key, std::uint16_t move, int halfPoints) {
    std::vector<MoveTally>& moves = tally[key];
    auto found = std::find_if(moves.begin(), moves.end(), [move](const MoveTally& m) { return m.move == move; });
    if (found == moves.end()) found = moves.insert(moves.end(), MoveTally{move, 0, 0});
    found->games += 1;
    if (halfPoints > 0) found->score += std::uint64_t(halfPoints);
}

void buildRecord(const std::string& key, const std::vector<MoveTally>& moves, ScoreRule rule, BookRecord& record) {
    std::memset(&record, 0, sizeof record);
    std::memcpy(record.key, key.data(), std::min(key.size(), std::size_t(BookKeyLimit)));
    std::vector<MoveTally> ranked(moves);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const MoveTally& a, const MoveTally& b) { return a.games > b.games; });
    const std::size_t kept = std::min(ranked.size(), std::size_t(BookEntries));
    const std::uint64_t mostGames = ranked.empty() ? 0 : ranked[0].games;
    for (std::size_t i = 0; i < kept; ++i) {
        const MoveTally& m = ranked[i];
        fitCounts(m.games, rule == ScoreRule::Popularity ? popularityScore(m, mostGames) : m.score, record.entry[i]);
        record.entry[i].move = m.move;
    }
}

bool writeBook(const BookTally& tally, ScoreRule rule, const char* path, BookSummary& summary) {
    summary = BookSummary{};
    std::vector<const BookTally::value_type*> positions;
    positions.reserve(tally.size());
    for (const auto& position : tally) {
        if (position.first.size() > std::size_t(BookKeyLimit))
            ++summary.keysTooLong;
        else if (!position.second.empty())
            positions.push_back(&position);
    }
    std::sort(positions.begin(), positions.end(), [](auto* a, auto* b) { return a->first < b->first; });

    platform::ReplacementFile out;
    if (!platform::beginReplacement(out, path)) return false;
    for (const auto* position : positions) {
        BookRecord record;
        buildRecord(position->first, position->second, rule, record);
        if (std::fwrite(&record, sizeof record, 1, out.stream) != 1) {
            platform::abandonReplacement(out);
            return false;
        }
        ++summary.records;
    }
    return platform::commitReplacement(out);
}

}  // namespace book
