#include "frontend/commandloop.h"

#include <cerrno>
#include <cstring>

#include "board/editposition.h"
#include "board/fen.h"
#include "board/game.h"
#include "board/movetext.h"
#include "frontend/booklearning.h"
#include "frontend/gamefiles.h"
#include "frontend/logfile.h"
#include "frontend/thinkthread.h"
#include "frontend/ucicommands.h"
#include "frontend/xboardcommands.h"
#include "platform/clock.h"
#include "search/hashtable.h"
#include "eval/pawnhash.h"
#include "search/ordering.h"
#include "search/think.h"
#include "platform/text.h"

namespace frontend {

char commandLine[CommandLineSize];
int forceMode = 0;
std::atomic<int> analyzeMode{0};
char pendingOutput[PendingOutputSize];
const char* engineName = "Morvane 4.2";

namespace {

// A read that fails for another reason than the end of input is tried again.
// Waiting on a non-blocking stream is no failure; after this many real ones
// in a row the input is taken as gone, so that a broken stream can't spin
// the loop for ever.
constexpr int MaxReadFailures = 100;
constexpr int ReadRetryPauseMs = 10;

bool opensWith(const char* line, const char* word) { return std::strncmp(line, word, std::strlen(word)) == 0; }

// getc, with a failed read that isn't the end of input cleared and repeated.
int readChar(std::FILE* input) {
    int failures = 0;
    for (;;) {
        errno = 0;
        const int c = std::getc(input);
        if (c != EOF || std::feof(input) || !std::ferror(input)) return c;
        std::clearerr(input);
        if (errno == EINTR) continue;
        const bool waiting = errno == EAGAIN || errno == EWOULDBLOCK;
        if (!waiting && ++failures > MaxReadFailures) return EOF;
        platform::sleepMs(ReadRetryPauseMs);
    }
}

// One character of a line, with CR LF read as a line feed, as a text-mode
// stream gives it: interfaces on this system may send either ending.
int readLineChar(std::FILE* input) {
    const int c = readChar(input);
    if (c != '\r') return c;
    const int next = readChar(input);
    if (next == '\n') return '\n';
    if (next != EOF) std::ungetc(next, input);
    return c;
}

}  // namespace

// A failed read that isn't the end of input is retried inside readChar, so
// 0 here always means the input is over.
int readCommandLine(std::FILE* input, char* buffer, int size) {
    int length = 0;
    for (;;) {
        const int c = readLineChar(input);
        if (c == EOF) {
            if (length == 0) return 0;
            break;
        }
        if (c == '\n') break;
        buffer[length++] = char(c);
        if (length == size - 1) {
            // A line feed right behind a full buffer ends this line; anything
            // else opens the tail, read as the next line. A lone CR there is
            // dropped, since only one character can be pushed back.
            const int next = readLineChar(input);
            if (next != '\n' && next != '\r' && next != EOF) std::ungetc(next, input);
            break;
        }
    }
    buffer[length] = '\0';
    return 1;
}

// The commands that carry case-sensitive text get their word in the form the
// chain tests for, and keep the rest.
void normaliseCommand(char* line) {
    // Words whose tails keep their case: a FEN, paths, UCI keywords. A game
    // file's path keeps its case too, since file names here have one.
    struct CaseRule {
        const char* word;
        const char* normalForm;
    };
    static constexpr CaseRule rules[] = {
        {"SETBOARD", "SETBOARD"},
        {"EGTPATH", "EGTPATH"},
        {"POSITION", "position"},
        {"SETOPTION", "setoption"},
        {"PARTIE ", "PARTIE "},
    };
    for (const CaseRule& rule : rules) {
        if (platform::opensWithNoCase(line, rule.word)) {
            std::memcpy(line, rule.normalForm, std::strlen(rule.normalForm));
            return;
        }
    }
    platform::upperCaseInPlace(line);
}

// Flushed at once, so that a reply built during a think isn't held back.
void flushPendingOutput() {
    if (pendingOutput[0] == '\0') return;
    std::fputs(pendingOutput, stdout);
    pendingOutput[0] = '\0';
    std::fflush(stdout);
}

namespace {

// Move entry: the one path for a line that no command claims. A castling
// text is read for the side the running think was started for, if one runs:
// the line is parsed before the stop, while the think may be making its move
// on the game.
void enterMove() {
    const board::Move move = board::parseCoordinateMove(commandLine, sideSeenByThink());
    if (move == board::NoMove) {
        std::printf("Error (unknown command): %s\n", commandLine);
        std::fflush(stdout);
        return;
    }
    stopThinking();
    logMoveLine(board::game, move, 0);
    const int result = board::makeGameMove(board::game, move);
    if (result != board::ResultOk) {
        board::reportResult(result, commandLine);
        // Draws by rule (4, 5, 6) are announced, and the game goes on.
        if (result < board::ResultRepetition) return;
    }
    if (forceMode) return;
    startThink();
}

// A new game forgets everything the last one taught the search; an analysis
// goes on from the start position.
void newGame() {
    board::resetGame(board::game);
    board::rescanMoves(board::game);
    search::clearHash();
    eval::clearPawnHash();
    search::clearHistory();
    search::clearKillers();
    search::clearCounters();
    forgetBookPlays();
    logNewGame();
    if (analyzeMode.load(std::memory_order_relaxed))
        startThink();
    else
        forceMode = 0;
}

// An analysis follows the position back; a game waits for the next move.
void undoCommand() {
    if (board::takeBackMove(board::game) != 0) {
        std::printf("Error (command not legal now): undo\n");
        std::fflush(stdout);
        return;
    }
    if (analyzeMode.load(std::memory_order_relaxed)) startThink();
}

// Only the second take-back counts, so with one ply played that ply goes and
// the error is printed as well.
void removeCommand() {
    board::takeBackMove(board::game);
    if (board::takeBackMove(board::game) != 0) {
        std::printf("Error (command not legal now): remove\n");
        std::fflush(stdout);
    }
}

// The log marks where the analysis began with an empty move line.
void analyzeCommand() {
    analyzeMode.store(1, std::memory_order_relaxed);
    logMoveLine(board::game, board::NoMove, 0);
    startThink();
}

// The text behind the first blank is the interface's result line; the
// book learns it if asked to.
void resultCommand() {
    const char* blank = std::strchr(commandLine, ' ');
    if (blank) logText(blank + 1);
    learnFromResult(board::game, blank ? blank + 1 : "");
}

// The dialogue reads its own lines from standard input until ".". Like a
// failed placement inside it, its result is left unreported: xboard's edit
// mode has no reply.
void editCommand() {
    forgetBookPlays();
    board::editPosition(board::game.sideToMove, stdin);
}

// Behind "PARTIE " stands the path; the load's result isn't reported.
constexpr int PartieWordLength = 7;

enum CommandFlags : unsigned {
    Exact = 1,       // the whole line, else a prefix
    StopFirst = 2,   // stopThinking before the handler
    UciOnly = 4,     // claimed only in uciMode, else falls through to the move test
    AnyCase = 8,     // compared free of case
    Quits = 16,      // leaves the loop after the handler
    // Changes the game or the tables, which a running search must never see.
    // An interface sends these only while nothing thinks, but a console user
    // needn't: the think is stopped first (a game's think then plays its
    // move, as on "?"), and an analysis resumes on the new state.
    Guarded = 32,
};

struct Command {
    const char* word;
    unsigned flags;
    void (*handler)();
};

void nothing() {}

// The chain, in order; the first entry that fits wins. "GO" comes first, and
// every word of a dialect sits here, claimed or not yet answered, so none of
// them is ever taken for a move.
const Command commandChain[] = {
    {"GO", 0, [] { startThink(); }},
    {"FORCE", Exact | StopFirst, [] { forceMode = 1; }},
    {"?", Exact | StopFirst, nothing},
    {"UNDO", Exact | StopFirst, undoCommand},
    {"REMOVE", Exact | Guarded, removeCommand},
    {"LEVEL", 0, [] { levelCommand(commandLine); }},
    {"TIME", 0, [] { timeCommand(commandLine); }},
    {"OTIM", 0, [] { timeCommand(commandLine); }},
    {"EXIT", Exact | StopFirst, [] { analyzeMode.store(0, std::memory_order_relaxed); }},
    {"WHITE", Exact, nothing},
    {"BLACK", Exact, nothing},
    {".", Exact, [] { statusCommand(commandLine); }},
    {"POST", Exact, [] { search::postThinking.store(1, std::memory_order_relaxed); }},
    {"NOPOST", Exact, [] { search::postThinking.store(0, std::memory_order_relaxed); }},
    {"HARD", Exact, nothing},
    {"EASY", Exact, [] { ponderEnabled.store(0, std::memory_order_relaxed); }},
    {"QUIT", Exact | StopFirst | Quits, closeLog},
    {"NEW", Exact | StopFirst, newGame},
    {"ANALYZE", Exact | StopFirst, analyzeCommand},
    {"EDIT", Exact | Guarded, editCommand},
    {"SETBOARD", Guarded, [] { forgetBookPlays(); setboardCommand(commandLine); }},
    {"PRINT", Exact, [] { board::printBoard(board::game); }},
    {"PARTIE ", Guarded, [] { forgetBookPlays(); loadGameFile(board::game, commandLine + PartieWordLength); }},
    {"XBOARD", 0, nothing},
    {"RESET", 0, nothing},
    {"PROTOVER 2", 0, [] { protoverCommand(commandLine); }},
    {"NAME", 0, nothing},
    {"ACCEPTED", 0, nothing},
    {"RESULT", StopFirst, resultCommand},
    {"PING", 0, [] { pingCommand(commandLine); }},
    {"MEMORY", Guarded, [] { memoryCommand(commandLine); }},
    {"EGTPATH", AnyCase | Guarded, [] { egtpathCommand(commandLine); }},
    {"option", AnyCase, [] { optionCommand(commandLine); }},
    {"UCI", Exact, [] { uciCommand(commandLine); }},
    {"ISREADY", Exact | UciOnly, [] { isreadyCommand(commandLine); }},
    {"position", UciOnly, [] { positionCommand(commandLine); }},
    {"STOP", Exact | UciOnly | StopFirst, nothing},
    {"setoption", AnyCase | UciOnly | Guarded, [] { setoptionCommand(commandLine); }},
    {"UCINEWGAME", Guarded, [] { ucinewgameCommand(commandLine); }},
};

// Exact, prefix or case-free prefix, as the entry's flags say.
bool fits(const Command& command, const char* line) {
    if (command.flags & Exact) return std::strcmp(line, command.word) == 0;
    if (command.flags & AnyCase) return platform::opensWithNoCase(line, command.word);
    return opensWith(line, command.word);
}

}  // namespace

// The first entry that fits handles the line; a line no entry claims is a move.
Turn dispatchCommand() {
    for (const Command& command : commandChain) {
        if ((command.flags & UciOnly) && !board::game.uciMode) continue;
        if (!fits(command, commandLine)) continue;
        if (command.flags & (StopFirst | Guarded)) stopThinking();
        command.handler();
        if ((command.flags & Guarded) && analyzeMode.load(std::memory_order_relaxed)) startThink();
        return (command.flags & Quits) ? Turn::Quit : Turn::Next;
    }
    enterMove();
    return Turn::Next;
}

// At the end of input the program leaves at once: no think is stopped and
// the log stays as it is.
int commandLoop(int argc, char** argv) {
    board::resultFlushHook = flushLog;
    while (readCommandLine(stdin, commandLine, CommandLineSize)) {
        normaliseCommand(commandLine);
        if (dispatchCommand() == Turn::Quit) break;
    }
    return 0;
}

}  // namespace frontend
