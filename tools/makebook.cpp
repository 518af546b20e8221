// makebook [--plies N] IN.pgn... OUT.bo2
// makebook --eco [--plies N] LINES.eco OUT.bo2
// makebook --dump BOOK.bo2
//
// Writes an opening book in the engine's format. From PGN games, each move
// of the first N plies (30 by default) counts one game for its position and
// the game's result for the side that played it. From an ECO file of named
// opening lines, whole lines by default, each move counts the lines that
// pass through it, and its score says how it ranks among the position's
// moves, so main lines are chosen most and sidelines still sometimes.
// Moves are short algebraic notation, matched against the legal moves of the
// position; a game with a move that matches none or several, or with broken
// text, is reported on standard error and left out. --dump lists a book.

#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "board/sanmove.h"
#include "book/bookfile.h"
#include "book/bookwriter.h"
#include "makebook/pgnreader.h"

namespace {

constexpr int DefaultPgnPlies = 30;
constexpr int PlyLimit = 1000;  // beyond any game; the ECO default

struct Options {
    bool eco = false;
    const char* dump = nullptr;
    int plies = 0;  // 0: the default of the input kind
    std::vector<const char*> inputs;
    const char* output = nullptr;
};

struct Counts {
    long games = 0;
    long skipped = 0;
};

struct PlayedMove {
    std::string key;
    std::uint16_t move;
    int mover;
};

int usage() {
    std::fprintf(stderr,
                 "usage: makebook [--plies N] IN.pgn... OUT.bo2\n"
                 "       makebook --eco [--plies N] LINES.eco OUT.bo2\n"
                 "       makebook --dump BOOK.bo2\n");
    return 2;
}

bool endsWith(const char* text, const char* tail) {
    const std::size_t n = std::strlen(text), m = std::strlen(tail);
    return n >= m && strcasecmp(text + n - m, tail) == 0;
}

// False, after a message, for anything but a well-formed command line.
bool parseArguments(int argc, char** argv, Options& o) {
    std::vector<const char*> files;
    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        if (std::strcmp(a, "--eco") == 0) {
            o.eco = true;
        } else if (std::strcmp(a, "--dump") == 0 && i + 1 < argc) {
            o.dump = argv[++i];
        } else if (std::strcmp(a, "--plies") == 0 && i + 1 < argc) {
            char* end = nullptr;
            const long n = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || n < 1 || n > PlyLimit) {
                std::fprintf(stderr, "makebook: --plies wants a number from 1 to %d\n", PlyLimit);
                return false;
            }
            o.plies = int(n);
        } else if (a[0] == '-' && a[1] != '\0') {
            std::fprintf(stderr, "makebook: unknown option %s\n", a);
            return false;
        } else {
            files.push_back(a);
        }
    }
    if (o.dump != nullptr) return files.empty() && !o.eco && o.plies == 0;
    if (files.size() < 2) return false;
    o.output = files.back();
    files.pop_back();
    o.inputs = files;
    // "makebook a.pgn b.pgn" would otherwise overwrite a game file with a book.
    if (endsWith(o.output, ".pgn") || endsWith(o.output, ".eco")) {
        std::fprintf(stderr, "makebook: the last name is the book to write, not %s\n", o.output);
        return false;
    }
    if (o.plies == 0) o.plies = o.eco ? PlyLimit : DefaultPgnPlies;
    return true;
}

// White's half points for a result token; NoResult for "*".
int whiteHalfPoints(const std::string& result) {
    if (result == "1-0") return 2;
    if (result == "1/2-1/2") return 1;
    if (result == "0-1") return 0;
    return book::NoResult;
}

void reportSkipped(const char* file, const makebook::GameText& g, long line, int ply, const std::string& what) {
    std::fprintf(stderr, "makebook: %s:%ld: game %ld", file, line, g.number);
    if (!g.name.empty()) std::fprintf(stderr, " (%s)", g.name.c_str());
    if (ply > 0) std::fprintf(stderr, ", ply %d", ply);
    std::fprintf(stderr, ": %s; game skipped\n", what.c_str());
}

const char* sanProblem(int why) {
    switch (why) {
        case board::SanAmbiguous: return "fits more than one legal move";
        case board::SanNoMatch: return "fits no legal move";
        default: return "is not a move";
    }
}

// Plays the game's first `plies` moves on the global game, noting each
// position's key and the move played from it. False after a report.
bool replay(const char* file, const makebook::GameText& g, int plies, std::vector<PlayedMove>& played) {
    played.clear();
    board::Game& game = board::game;
    board::resetGame(game);
    board::rescanMoves(game);
    if (!g.fen.empty() && board::setupFromFen(game, g.fen.c_str()) != 0) {
        reportSkipped(file, g, g.line, 0, "its FEN tag is no legal position");
        return false;
    }
    for (std::size_t i = 0; i < g.moves.size() && i < std::size_t(plies); ++i) {
        const makebook::MoveText& m = g.moves[i];
        char key[board::BoardTextSize];
        board::boardText(game, key);
        int why = board::SanFound;
        const board::Move move = board::findSanMove(game, m.text.c_str(), &why);
        if (move == board::NoMove) {
            reportSkipped(file, g, m.line, int(i) + 1, "'" + m.text + "' " + sanProblem(why));
            return false;
        }
        played.push_back({key, std::uint16_t(move & board::LowMoveMask), game.sideToMove});
        board::makeGameMove(game, move);
    }
    return true;
}

void tallyGame(book::BookTally& tally, const std::vector<PlayedMove>& played, int result) {
    for (const PlayedMove& p : played) {
        const int points = result == book::NoResult ? book::NoResult : p.mover == board::White ? result : 2 - result;
        book::tallyMove(tally, p.key, p.move, points);
    }
}

// False if the file can't be read; bad games in it are only reported.
bool readGames(const char* file, const Options& o, book::BookTally& tally, Counts& counts) {
    std::FILE* in = std::fopen(file, "rb");
    if (in == nullptr) {
        std::fprintf(stderr, "makebook: can't open %s\n", file);
        return false;
    }
    makebook::MovetextReader reader;
    reader.in = in;
    makebook::GameText g;
    std::vector<PlayedMove> played;
    while (o.eco ? makebook::readEcoLine(reader, g) : makebook::readPgnGame(reader, g)) {
        ++counts.games;
        if (!g.error.empty()) {
            reportSkipped(file, g, g.errorLine, 0, g.error);
            ++counts.skipped;
            continue;
        }
        if (!replay(file, g, o.plies, played)) {
            ++counts.skipped;
            continue;
        }
        if (g.unterminated) {
            std::fprintf(stderr, "makebook: %s:%ld: game %ld has no result at its end; counted as %s\n", file,
                         g.line, g.number, g.result.c_str());
        }
        tallyGame(tally, played, o.eco ? book::NoResult : whiteHalfPoints(g.result));
    }
    const bool ok = !std::ferror(in);
    if (!ok) std::fprintf(stderr, "makebook: read error in %s\n", file);
    std::fclose(in);
    return ok;
}

// A record's key as text, whatever bytes a damaged file holds there.
void printKey(const book::BookRecord& record) {
    char key[book::BookKeySize + 1];
    int n = 0;
    for (; n < book::BookKeySize && record.key[n] != '\0'; ++n)
        key[n] = record.key[n] >= ' ' && record.key[n] < 0x7f ? record.key[n] : '?';
    key[n] = '\0';
    std::printf("%s\n", key);
}

int dumpBook(const char* path) {
    std::FILE* in = std::fopen(path, "rb");
    if (in == nullptr) {
        std::fprintf(stderr, "makebook: can't open %s\n", path);
        return 1;
    }
    book::BookRecord record;
    long records = 0;
    std::size_t got;
    while ((got = std::fread(&record, 1, sizeof record, in)) == sizeof record) {
        ++records;
        printKey(record);
        for (int i = 0; i < book::recordMoveCount(record); ++i) {
            const book::BookEntry& e = record.entry[i];
            char move[8];
            board::formatCoordinateMove(e.move, move);
            std::printf("    %-6s games %5u  score %5u\n", move, unsigned(e.games), unsigned(e.score));
        }
    }
    const bool readError = std::ferror(in) != 0;
    std::fclose(in);
    std::fprintf(stderr, "makebook: %ld records\n", records);
    if (got > 0) std::fprintf(stderr, "makebook: %s: %zu bytes at the end make no whole record\n", path, got);
    if (readError) std::fprintf(stderr, "makebook: read error in %s\n", path);
    return readError ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options o;
    if (!parseArguments(argc, argv, o)) return usage();
    board::initGame();
    if (o.dump != nullptr) return dumpBook(o.dump);

    book::BookTally tally;
    Counts counts;
    for (const char* file : o.inputs)
        if (!readGames(file, o, tally, counts)) return 1;
    book::BookSummary summary;
    if (!book::writeBook(tally, o.eco ? book::ScoreRule::Popularity : book::ScoreRule::Results, o.output, summary)) {
        std::fprintf(stderr, "makebook: can't write %s\n", o.output);
        return 1;
    }
    std::printf("makebook: %ld games read, %ld skipped; %ld records written to %s\n", counts.games, counts.skipped,
                summary.records, o.output);
    if (summary.keysTooLong > 0)
        std::printf("makebook: %ld positions left out: their keys are over %d characters\n", summary.keysTooLong,
                    book::BookKeyLimit);
    return 0;
}
