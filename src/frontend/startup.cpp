#include "frontend/startup.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "board/game.h"
#include "board/tables.h"
#include "book/bookfile.h"
#include "frontend/gamefiles.h"
#include "frontend/commandloop.h"
#include "frontend/config.h"
#include "frontend/logfile.h"
#include "frontend/thinkthread.h"
#include "search/hashtable.h"
#include "eval/pawnhash.h"
#include "position/searchboard.h"
#include "search/think.h"
#include "tablebase/probe.h"
#include "tablebase/registry.h"

namespace frontend {

namespace {

// The hash tables are sized for HashSizeUnit << hashExponent bytes: one
// bucket's worth shifted, so that the exponent n + 1 gives 2^n buckets.
constexpr std::int64_t HashSizeUnit = sizeof(search::HashBucket);
// Beyond this no table could be had anyway; it keeps the shift defined.
constexpr int MaxHashExponent = 40;
constexpr int TenthsPerSecond = 10;

// The tablebases are first looked for beside the program: its directory
// without the closing separator. A directory too long for the list leaves
// it empty, which means the working directory.
void startPathList(char* pathList) {
    const char* directory = programDirectory();
    const std::size_t length = std::strlen(directory);
    pathList[0] = '\0';
    if (length == 0 || length - 1 > std::size_t(tablebase::TbPathListLimit)) return;
    std::memcpy(pathList, directory, length - 1);
    pathList[length - 1] = '\0';
}

// -1 when the tables can't be had.
std::int64_t sizeHashTables(int hashExponent) {
    if (hashExponent < 0) hashExponent = 0;
    if (hashExponent > MaxHashExponent) hashExponent = MaxHashExponent;
    return search::setHashSize(HashSizeUnit << hashExponent);
}

// -t: both limits of a batch run's think, in tenths.
void timeSwitch(const char* value) {
    const int seconds = readSettingInteger(value);
    if (seconds < 1) {
        std::printf("temps??\n");
        std::fflush(stdout);
        return;
    }
    const int tenths = seconds > search::NoTimeLimit / TenthsPerSecond ? search::NoTimeLimit : seconds * TenthsPerSecond;
    board::game.softTimeLimit = board::game.hardTimeLimit = tenths;
}

void badFile() {
    std::printf("fichier??\n");
    std::fflush(stdout);
}

// The one think of a batch run, on the main thread, after the tablebases
// along the paths gathered so far are set up. Its move is neither played nor
// printed as a move; the search's lines are the output.
void runBatch() {
    tablebase::tbMaxMen = tablebase::tbInit(tablebase::tbPathList, tablebase::tbCacheBytes);
    tablebase::tablebasesOpen = 1;
    search::postThinking.store(1, std::memory_order_relaxed);
    if (board::game.gameOver != board::GameOn) return;
    runThink(board::game, 0);
    std::fflush(stdout);
}

// The tables are closed at the end of the run, unless a think still probes
// them: at the end of input the program leaves with its think running.
void closeTablebasesAtExit() {
    if (tablebase::tablebasesOpen && !thinking.load(std::memory_order_relaxed)) tablebase::tbShutdown();
}

void printBanner() {
    const unsigned hashMegabytes = unsigned(std::uint64_t(search::hashEntries) * sizeof(search::HashBucket) >> 20);
    const unsigned pawnMegabytes =
        unsigned(std::uint64_t(eval::pawnHashEntries) * sizeof(eval::PawnHashEntry) >> 20);
    std::fprintf(stderr, "%s\n%s\n", engineName, MakerNotice);
    std::fprintf(stderr, "Hash=%uMB HP=%uMB Sst=%d\n", hashMegabytes, pawnMegabytes, int(sizeof(position::NodeState)));
}

}  // namespace

// A switch's value is glued to its letter. Bare words and unknown letters
// are passed over.
int processCommandLine(int argc, char** argv) {
    Settings settings;
    book::setBookDirectory(programDirectory());
    startPathList(settings.tbPathList);
    readConfiguration(settings);
    applySwitches(settings);

    bool batch = false, tablesSized = false;
    for (int i = 1; i < argc; ++i) {
        const char* argument = argv[i];
        if (argument == nullptr || argument[0] != '-' || argument[1] == '\0') continue;
        const char* value = argument + 2;
        switch (argument[1]) {
            case 'd':
                // A list too long to hold is refused whole rather than cut.
                if (std::strlen(value) <= std::size_t(tablebase::TbPathListLimit)) std::strcpy(settings.tbPathList, value);
                break;
            case 'h': setHashTableSize(settings, value); break;
            case 't': timeSwitch(value); break;
            case 'f':
                if (sizeHashTables(settings.hashExponent) < 0) return 1;
                tablesSized = true;
                if (loadGameFile(board::game, value) < 0) {
                    badFile();
                    return 1;
                }
                batch = true;
                break;
            case 'p':
                if (loadPositionFile(board::game, value) < 0) {
                    badFile();
                    return 1;
                }
                batch = true;
                break;
            default: break;
        }
    }
    if (!tablesSized && sizeHashTables(settings.hashExponent) < 0) return 1;
    std::memcpy(tablebase::tbPathList, settings.tbPathList, sizeof settings.tbPathList);
    tablebase::tbCacheBytes = settings.tbCacheBytes;
    if (batch) {
        runBatch();
        return 0;
    }
    return StartupContinue;
}

// The banner and the tablebase lines go to standard error, out of the way
// of a protocol on standard output.
int startUp(int argc, char** argv) {
    formLogFileName(argc > 0 ? argv[0] : nullptr);
    board::rescanMoves(board::game);
    board::pieceLetters = board::pieceLetterTable;
    const int code = processCommandLine(argc, argv);
    if (code != StartupContinue) return code;
    if (logEnabled) openLog();
    printBanner();
    tablebase::tbMaxMen = tablebase::tbInit(tablebase::tbPathList, tablebase::tbCacheBytes);
    std::fprintf(stderr, "type quit to exit\n");
    std::fflush(stderr);
    pendingOutput[0] = '\0';
    tablebase::tablebasesOpen = 1;
    std::atexit(closeTablebasesAtExit);
    return StartupContinue;
}

}  // namespace frontend
