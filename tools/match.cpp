// match --opponent 'CMD' [--opponent-uci] [--as-uci] --games N --tc SECONDS+INC --pgn OUT
//       [--engine PATH] [--openings FILE | --book] [--debug-log FILE] [--display :N]
// Plays games between the engine and an opponent through a real xboard on a
// private virtual display, one xboard run per game so that a hung or broken
// game can't take the rest of the match with it. Colours alternate and each
// opening is played once with each colour; with --book every game starts
// from the initial position and the engine's own book opens it. The report
// lists every game, the score, the Elo difference with its 95% error bar and
// every abnormal ending, and closes with "Score: W-D-L" from the engine's
// side. Exit code 0 when the match was played, whatever the score; 1 when it
// couldn't be, with the reason; 2 for a bad command line.

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "matchsupport/anomalies.h"
#include "matchsupport/openings.h"
#include "matchsupport/options.h"
#include "matchsupport/pgn.h"
#include "matchsupport/processes.h"
#include "matchsupport/score.h"

using namespace matchsupport;

namespace {

// A game can't last longer than both clocks, which the increment refills
// once a move; longer games than this many moves a side are rare enough to
// be called hung. The margin covers engine start-up and xboard's own pauses.
constexpr int AssumedMovesPerSide = 150;
constexpr double WatchdogMarginSeconds = 30;
constexpr std::size_t ConsoleTailBytes = 600;
// Games that agree this far are counted as one opening.
constexpr std::size_t OpeningPlies = 6;

bool readFile(const std::string& path, std::string& text) {
    text.clear();
    FILE* in = std::fopen(path.c_str(), "rb");
    if (!in) return false;
    char buffer[65536];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, in)) > 0) text.append(buffer, n);
    std::fclose(in);
    return true;
}

bool writeFile(const std::string& path, const std::string& text, const char* mode = "wb") {
    FILE* out = std::fopen(path.c_str(), mode);
    if (!out) return false;
    bool ok = std::fwrite(text.data(), 1, text.size(), out) == text.size();
    return std::fclose(out) == 0 && ok;
}

std::string selfPath() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    return n > 0 ? std::string(buffer, n) : "";
}

std::string baseName(const std::string& path) {
    std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string firstWord(const std::string& command) {
    std::size_t start = command.find_first_not_of(" \t");
    if (start == std::string::npos) return "";
    return command.substr(start, command.find_first_of(" \t", start) - start);
}

// The end of a program's output, on one line.
std::string tail(const std::string& text, std::size_t bytes) {
    std::string end = text.size() <= bytes ? text : "..." + text.substr(text.size() - bytes);
    while (!end.empty() && (end.back() == '\n' || end.back() == ' ')) end.pop_back();
    for (char& c : end)
        if (c == '\n') c = '|';
    return end;
}

extern "C" void onStopSignal(int) { stopRequested = 1; }

// One side of a game as xboard sees it.
struct Player {
    std::string label;    // name in the saved game
    std::string command;  // shell command of the engine
    bool uci = false;
};

// Everything a game needs to know about the match.
struct MatchSetup {
    Options options;
    std::string workDirectory;
    std::string xboard;
    std::string polyglot;
    std::string self;
    std::string display;
    std::vector<Opening> openings;
    Player engine;
    Player opponent;
};

// The outcome of one game.
struct GameReport {
    bool played = false;  // xboard saved the game
    bool engineWhite = true;
    std::string result = "*";
    std::string termination;
    std::vector<Finding> findings;
    std::vector<std::string> complaints;
    std::string opening;  // the first OpeningPlies moves as played
    std::string pgnText;
    std::string debugText;
    std::string consoleText;
    bool stopped = false;
    bool hung = false;
};

// The script xboard (or polyglot) starts as an engine: the wrapper around
// the real command, so xboard never has to quote it.
void writeEngineScript(const MatchSetup& setup, const std::string& path, const std::string& statusFile,
                       const std::string& command) {
    std::string script = "#!/bin/sh\nexec " + shellQuote(setup.self) + " --wrap-engine " + shellQuote(statusFile) +
                         " " + shellQuote(command) + "\n";
    if (writeFile(path, script)) chmod(path.c_str(), 0755);
}

std::vector<std::string> xboardEnvironment(const MatchSetup& setup) {
    std::vector<std::string> env;
    for (char** e = environ; *e; e++) {
        std::string entry = *e;
        // xboard keeps its settings in $HOME; a scratch home keeps the user's out of the games.
        if (entry.rfind("DISPLAY=", 0) == 0 || entry.rfind("HOME=", 0) == 0 || entry.rfind("PATH=", 0) == 0)
            continue;
        env.push_back(entry);
    }
    env.push_back("DISPLAY=" + setup.display);
    env.push_back("HOME=" + setup.workDirectory);
    env.push_back("PATH=" + searchPath());
    return env;
}

// xboard's command line for one game: a one-game match in which the first
// engine plays White, from the opening file, at the match's clock, with the
// flag called by xboard itself and nothing pondering on the shared cores.
std::vector<std::string> xboardArguments(const MatchSetup& setup, const Player& white, const Player& black,
                                         const Opening& opening, const std::string& prefix) {
    const TimeControl& tc = setup.options.timeControl;
    char clock[32];
    std::snprintf(clock, sizeof clock, "%d:%02d", tc.baseSeconds / 60, tc.baseSeconds % 60);
    // This xboard is a GTK build: it takes its display from $DISPLAY only.
    std::vector<std::string> args = {setup.xboard,
        "-fcp", prefix + "-first.sh", "-scp", prefix + "-second.sh", "-fd", setup.workDirectory,
        "-sd", setup.workDirectory, "-fn", white.label, "-sn", black.label,
        "-firstIsUCI", white.uci ? "true" : "false", "-secondIsUCI", black.uci ? "true" : "false",
        "-tc", clock, "-inc", tc.incrementText, "-mg", "1", "-xexit", "-autoCallFlag", "true",
        "-ponderNextMove", "false", "-saveGameFile", prefix + ".pgn", "-debugMode", "true",
        "-nameOfDebugFile", prefix + ".debug", "-saveSettingsOnExit", "false",
        "-soundMove", "", "-soundProgram", "true", "-timeDelay", "0"};
    if (!setup.polyglot.empty())
        args.insert(args.end(), {"-adapterCommand", setup.polyglot + " -noini -ec \"%fcp\" -ed \"%fd\""});
    if (!opening.fen.empty()) {
        writeFile(prefix + "-opening.fen", opening.fen + "\n");
        args.insert(args.end(), {"-lpf", prefix + "-opening.fen", "-lpi", "1"});
    } else if (!opening.moves.empty()) {
        writeFile(prefix + "-opening.pgn", openingPgn(opening));
        args.insert(args.end(), {"-lgf", prefix + "-opening.pgn", "-lgi", "1"});
    }
    return args;
}

// Adds a finding unless the same text is already there (xboard says many
// things twice, in its log and on its console).
void addFinding(std::vector<Finding>& findings, const Finding& finding) {
    for (const Finding& old : findings)
        if (old.detail == finding.detail) return;
    findings.push_back(finding);
}

// Everything abnormal a finished game left behind: its closing comment,
// xboard's log and console, and the engines' exit records.
void gatherFindings(GameReport& report, const std::string& prefix, const Player& white, const Player& black) {
    auto engineOf = [&](const std::string& which) { return which == "first" ? white.label : black.label; };
    Finding finding;
    if (!report.played && !report.hung)
        addFinding(report.findings, {Anomaly::NoResult, "xboard saved no game; its output: " +
                                                            tail(report.consoleText, ConsoleTailBytes)});
    if (report.played && classifyTermination(report.termination, report.result, finding))
        addFinding(report.findings, finding);
    for (const std::string* text : {&report.debugText, &report.consoleText})
        for (const Finding& f : scanLog(*text, engineOf)) addFinding(report.findings, f);
    // After a hang the runner itself killed the engines: their records say nothing.
    if (!report.hung) {
        for (const auto& [file, who] : {std::pair{prefix + "-first.status", white.label},
                                        std::pair{prefix + "-second.status", black.label}}) {
            std::string records;
            readFile(file, records);
            std::size_t start = 0;
            while (start < records.size()) {
                std::size_t end = records.find('\n', start);
                if (end == std::string::npos) end = records.size();
                ExitRecord exit;
                if (parseExitRecord(records.substr(start, end - start), exit) && classifyExit(exit, who, finding))
                    addFinding(report.findings, finding);
                start = end + 1;
            }
        }
    }
    report.complaints = engineComplaints(report.debugText, engineOf);
}

// Plays game `index` (0-based) under the watchdog and gathers what it left
// behind.
GameReport playGame(const MatchSetup& setup, int index) {
    GameReport report;
    const TimeControl& tc = setup.options.timeControl;
    report.engineWhite = index % 2 == 0;
    const Opening& opening = setup.openings[(index / 2) % setup.openings.size()];
    const Player& white = report.engineWhite ? setup.engine : setup.opponent;
    const Player& black = report.engineWhite ? setup.opponent : setup.engine;
    std::string prefix = setup.workDirectory + "/game" + std::to_string(index + 1);
    writeEngineScript(setup, prefix + "-first.sh", prefix + "-first.status", white.command);
    writeEngineScript(setup, prefix + "-second.sh", prefix + "-second.status", black.command);

    double limit = 2 * (tc.baseSeconds + tc.increment * AssumedMovesPerSide) + WatchdogMarginSeconds;
    pid_t xboard = spawnGroupLeader(xboardArguments(setup, white, black, opening, prefix),
                                    xboardEnvironment(setup), setup.workDirectory, prefix + ".console");
    int status = 0;
    WaitOutcome outcome = xboard > 0 ? waitWithWatchdog(xboard, limit, status) : WaitOutcome::Exited;
    // Engines that outlived xboard belong to this game's group too.
    killGroup(xboard);
    report.stopped = outcome == WaitOutcome::Stopped;
    report.hung = outcome == WaitOutcome::TimedOut;
    if (report.hung) {
        char text[128];
        std::snprintf(text, sizeof text, "game hung: xboard and its engines killed after %.0f s", limit);
        report.findings.push_back({Anomaly::NoResult, text});
    }

    readFile(prefix + ".pgn", report.pgnText);
    readFile(prefix + ".debug", report.debugText);
    readFile(prefix + ".console", report.consoleText);
    std::vector<PgnGame> games = parsePgnGames(report.pgnText);
    if (!games.empty()) {
        const PgnGame& game = games.back();
        report.played = true;
        report.result = game.result;
        report.termination = game.termination;
        report.opening = openingOf(game, OpeningPlies);
        // The saved names are the truth about colours, should xboard ever swap them.
        if (game.white == setup.engine.label && game.black != setup.engine.label) report.engineWhite = true;
        if (game.black == setup.engine.label && game.white != setup.engine.label) report.engineWhite = false;
    }
    if (!report.stopped) gatherFindings(report, prefix, white, black);
    return report;
}

// xboard numbers every one-game match as round 1; the match's own number
// is more use in the saved file.
std::string renumberRound(const std::string& pgn, int round) {
    std::string text = pgn;
    std::size_t at = text.find("[Round \"");
    if (at != std::string::npos) {
        std::size_t end = text.find("\"]", at + 8);
        if (end != std::string::npos) text.replace(at + 8, end - at - 8, std::to_string(round));
    }
    if (!text.empty() && text.back() != '\n') text += '\n';
    return text;
}

// Finds the programs and files the match needs; false with the reason if
// one is missing.
bool prepare(MatchSetup& setup, std::string& error) {
    Options& o = setup.options;
    setup.self = selfPath();
    setup.xboard = findProgram("xboard");
    if (setup.xboard.empty()) {
        error = "xboard not found (scripts/install-match-deps.sh installs it)";
        return false;
    }
    if (o.engineUci || o.opponentUci) {
        setup.polyglot = findProgram("polyglot");
        if (setup.polyglot.empty()) {
            error = "polyglot, xboard's adapter for UCI engines, not found (scripts/install-match-deps.sh)";
            return false;
        }
    }
    if (o.enginePath.empty()) {
        std::size_t slash = setup.self.rfind('/');
        o.enginePath = (slash == std::string::npos ? std::string(".") : setup.self.substr(0, slash)) + "/morvane";
    }
    std::error_code ec;
    std::filesystem::path engine = std::filesystem::absolute(o.enginePath, ec);
    if (ec || !isExecutableFile(engine.string())) {
        error = "engine not found or not executable: " + o.enginePath;
        return false;
    }
    std::string opponentProgram = firstWord(o.opponent);
    if (findProgram(opponentProgram).empty()) {
        error = "opponent program not found: " + opponentProgram;
        return false;
    }
    setup.engine = {baseName(engine.string()), shellQuote(engine.string()), o.engineUci};
    setup.opponent = {baseName(opponentProgram), o.opponent, o.opponentUci};
    if (setup.opponent.label == setup.engine.label) setup.opponent.label += "-2";

    if (o.engineBook) {
        setup.openings = {Opening()};  // the initial position: the engines' own books choose
    } else if (o.openingsFile.empty()) {
        setup.openings = builtInOpenings();
    } else {
        std::string text;
        if (!readFile(o.openingsFile, text)) {
            error = "cannot read openings file " + o.openingsFile;
            return false;
        }
        setup.openings = parseOpenings(text);
        if (setup.openings.empty()) {
            error = "no opening in " + o.openingsFile;
            return false;
        }
    }
    if (!writeFile(o.pgnFile, "")) {
        error = "cannot write " + o.pgnFile;
        return false;
    }
    if (!o.debugLog.empty() && !writeFile(o.debugLog, "")) {
        error = "cannot write " + o.debugLog;
        return false;
    }
    // No spaces: xboard splits engine commands at blanks.
    const char* tmp = std::getenv("TMPDIR");
    std::string base = tmp && *tmp && std::string(tmp).find(' ') == std::string::npos ? tmp : "/tmp";
    std::string pattern = base + "/match-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (!mkdtemp(buffer.data())) {
        error = "cannot create a work directory under " + base;
        return false;
    }
    setup.workDirectory = buffer.data();
    return true;
}

void printGame(int number, int total, const MatchSetup& setup, const GameReport& report) {
    const Opening& opening = setup.openings[((number - 1) / 2) % setup.openings.size()];
    const std::string openingText =
        setup.options.engineBook ? "as played " + report.opening : describeOpening(opening);
    std::printf("Game %d/%d: %s %s, opening %s: %s", number, total, setup.engine.label.c_str(),
                report.engineWhite ? "white" : "black", openingText.c_str(), report.result.c_str());
    if (!report.termination.empty()) std::printf(" {%s}", report.termination.c_str());
    std::printf("\n");
    for (const Finding& f : report.findings) std::printf("  %s: %s\n", anomalyName(f.kind), f.detail.c_str());
    std::fflush(stdout);
}

struct NumberedFinding {
    int game;
    Finding finding;
};

int runMatch(MatchSetup& setup) {
    const Options& o = setup.options;
    VirtualDisplay server;
    if (o.display.empty()) {
        std::string xvfb = findProgram("Xvfb"), error;
        if (xvfb.empty()) {
            std::printf("match: cannot run: Xvfb not found (scripts/install-match-deps.sh installs it)\n");
            return 1;
        }
        if (!startVirtualDisplay(xvfb, setup.workDirectory + "/xvfb.log", server, error)) {
            std::printf("match: cannot run: %s\n", error.c_str());
            return 1;
        }
        setup.display = ":" + std::to_string(server.number);
    } else {
        setup.display = o.display;
    }
    std::printf("Match: %s (%s) vs %s (%s), %d games at %d+%s, display %s\n", setup.engine.label.c_str(),
                setup.engine.uci ? "UCI" : "xboard", setup.opponent.label.c_str(),
                setup.opponent.uci ? "UCI" : "xboard", o.games, o.timeControl.baseSeconds,
                o.timeControl.incrementText.c_str(), setup.display.c_str());
    std::fflush(stdout);

    Tally tally;
    std::vector<NumberedFinding> abnormal;
    std::vector<std::string> complaints;
    std::set<std::string> openingsPlayed;
    int played = 0;
    bool stopped = false;
    std::string failure;
    for (int g = 0; g < o.games; g++) {
        GameReport report = playGame(setup, g);
        if (report.stopped) {
            stopped = true;
            break;
        }
        printGame(g + 1, o.games, setup, report);
        if (report.played) {
            played++;
            addResult(tally, report.result, report.engineWhite);
            openingsPlayed.insert(report.opening);
            writeFile(o.pgnFile, renumberRound(report.pgnText, g + 1), "ab");
        } else {
            tally.unfinished++;
        }
        if (!o.debugLog.empty())
            writeFile(o.debugLog, "=== game " + std::to_string(g + 1) + " ===\n" + report.debugText +
                                      "--- xboard console ---\n" + report.consoleText, "ab");
        for (const Finding& f : report.findings) abnormal.push_back({g + 1, f});
        for (const std::string& c : report.complaints)
            if (std::find(complaints.begin(), complaints.end(), c) == complaints.end()) complaints.push_back(c);
        // A first game in which xboard didn't even start its engines means the
        // set-up is broken: every other game would fail the same way.
        if (g == 0 && !report.played && !report.hung && report.debugText.empty()) {
            failure = "the first game could not be played: " + report.findings.front().detail;
            break;
        }
    }
    stopVirtualDisplay(server);

    std::printf("Wins: %d  Draws: %d  Losses: %d  Unfinished: %d  (points %.1f/%d, %.1f%%)\n", tally.wins,
                tally.draws, tally.losses, tally.unfinished, tally.points(), tally.games(),
                tally.games() ? 100.0 * tally.points() / tally.games() : 0.0);
    std::printf("%s\n", formatElo(tally).c_str());
    if (o.engineBook)
        std::printf("Distinct openings (first %zu plies): %zu in %d games\n", OpeningPlies, openingsPlayed.size(),
                    played);
    if (abnormal.empty()) std::printf("Abnormal endings: none\n");
    else std::printf("Abnormal endings: %zu\n", abnormal.size());
    for (const NumberedFinding& n : abnormal)
        std::printf("  game %d: %s: %s\n", n.game, anomalyName(n.finding.kind), n.finding.detail.c_str());
    if (!complaints.empty()) {
        std::printf("Engine error replies (not game endings):\n");
        for (const std::string& c : complaints) std::printf("  %s\n", c.c_str());
    }
    if (o.keepWorkDirectory) std::printf("Work files kept in %s\n", setup.workDirectory.c_str());
    int code = 0;
    if (stopped) {
        std::printf("match: interrupted after %d games\n", played);
        code = 1;
    } else if (played == 0) {
        std::printf("match: cannot run: %s\n", failure.empty() ? "no game was played" : failure.c_str());
        code = 1;
    }
    std::printf("Score: %d-%d-%d\n", tally.wins, tally.draws, tally.losses);
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    // Inner mode: xboard starts each engine through this program.
    if (argc == 4 && std::string(argv[1]) == "--wrap-engine") return runEngineWrapper(argv[2], argv[3]);
    if (argc == 2 && (std::string(argv[1]) == "--help" || std::string(argv[1]) == "-h")) {
        std::printf("%s", Usage);
        return 0;
    }
    MatchSetup setup;
    std::string error;
    if (!parseOptions(argc, argv, setup.options, error)) {
        std::fprintf(stderr, "match: %s\n%s", error.c_str(), Usage);
        return 2;
    }
    if (!prepare(setup, error)) {
        std::printf("match: cannot run: %s\n", error.c_str());
        return 1;
    }
    struct sigaction stop {};
    stop.sa_handler = onStopSignal;
    sigemptyset(&stop.sa_mask);
    sigaction(SIGINT, &stop, nullptr);
    sigaction(SIGTERM, &stop, nullptr);
    sigaction(SIGHUP, &stop, nullptr);
    int code = runMatch(setup);
    if (!setup.options.keepWorkDirectory) {
        std::error_code ec;
        std::filesystem::remove_all(setup.workDirectory, ec);
    }
    return code;
}
