#pragma once
// The runner's command line.

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace matchsupport {

struct TimeControl {
    int baseSeconds = 0;
    double increment = 0;
    std::string incrementText = "0";  // as typed, so xboard gets exactly that
};

struct Options {
    std::string opponent;
    bool opponentUci = false;
    bool engineUci = false;
    int games = 0;
    TimeControl timeControl;
    bool timeControlGiven = false;
    std::string pgnFile;
    std::string enginePath;
    std::string openingsFile;
    bool engineBook = false;  // games start from the initial position; the engine's book opens them
    std::string debugLog;
    std::string display;  // an X display to use instead of a private Xvfb
    bool keepWorkDirectory = false;
};

constexpr const char* Usage =
    "usage: match --opponent 'CMD' [--opponent-uci] [--as-uci] --games N --tc SECONDS+INC --pgn OUT\n"
    "             [--engine PATH] [--openings FILE | --book] [--debug-log FILE] [--display :N] [--keep-workdir]\n"
    "Plays N games between the engine (default: morvane beside this program) and the opponent\n"
    "through xboard on a private virtual display, alternating colours over a list of openings.\n"
    "--opponent CMD      opponent command line, run by /bin/sh (e.g. 'fairymax')\n"
    "--opponent-uci      the opponent speaks UCI (xboard runs it through polyglot)\n"
    "--as-uci            the engine is run as a UCI engine through polyglot\n"
    "--tc SECONDS+INC    base time in whole seconds and increment, e.g. 10+0.1\n"
    "--openings FILE     one opening a line: a FEN or moves (\"1. e4 e5 2. Nf3\"); # comments\n"
    "--book              no imposed openings: every game starts from the initial position and the\n"
    "                    engine's own book opens it; the report counts the distinct openings\n"
    "--debug-log FILE    xboard's debug log of every game, with all engine traffic\n"
    "--display :N        use this X display instead of starting Xvfb\n"
    "--keep-workdir      keep the per-game files (printed at the end) for inspection\n";

// "SECONDS" or "SECONDS+INC": whole seconds (xboard's clock takes minutes
// and seconds), an increment of zero or more seconds.
inline bool parseTimeControl(const char* text, TimeControl& tc) {
    char* end = nullptr;
    errno = 0;
    long base = std::strtol(text, &end, 10);
    if (end == text || errno != 0 || base < 1 || base > 24 * 3600) return false;
    tc.baseSeconds = static_cast<int>(base);
    tc.increment = 0;
    tc.incrementText = "0";
    if (*end == '\0') return true;
    if (*end != '+') return false;
    const char* incText = end + 1;
    double increment = std::strtod(incText, &end);
    if (end == incText || *end != '\0' || !std::isfinite(increment) || increment < 0 || increment > 3600)
        return false;
    tc.increment = increment;
    tc.incrementText = incText;
    return true;
}

// Fills `options` from the command line; on a mistake `error` says what.
inline bool parseOptions(int argc, char** argv, Options& options, std::string& error) {
    for (int i = 1; i < argc; i++) {
        std::string arg = argv[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= argc) {
                error = arg + " needs a value";
                return false;
            }
            into = argv[++i];
            return true;
        };
        std::string text;
        if (arg == "--opponent") {
            if (!value(options.opponent)) return false;
        } else if (arg == "--opponent-uci") {
            options.opponentUci = true;
        } else if (arg == "--as-uci") {
            options.engineUci = true;
        } else if (arg == "--games") {
            if (!value(text)) return false;
            char* end = nullptr;
            long games = std::strtol(text.c_str(), &end, 10);
            if (end == text.c_str() || *end != '\0' || games < 1 || games > 100000) {
                error = "--games wants a number from 1 up, not '" + text + "'";
                return false;
            }
            options.games = static_cast<int>(games);
        } else if (arg == "--tc") {
            if (!value(text)) return false;
            if (!parseTimeControl(text.c_str(), options.timeControl)) {
                error = "--tc wants SECONDS+INC with whole seconds, e.g. 10+0.1, not '" + text + "'";
                return false;
            }
            options.timeControlGiven = true;
        } else if (arg == "--pgn") {
            if (!value(options.pgnFile)) return false;
        } else if (arg == "--engine") {
            if (!value(options.enginePath)) return false;
        } else if (arg == "--openings") {
            if (!value(options.openingsFile)) return false;
        } else if (arg == "--book") {
            options.engineBook = true;
        } else if (arg == "--debug-log") {
            if (!value(options.debugLog)) return false;
        } else if (arg == "--display") {
            if (!value(options.display)) return false;
        } else if (arg == "--keep-workdir") {
            options.keepWorkDirectory = true;
        } else {
            error = "unknown argument '" + arg + "'";
            return false;
        }
    }
    if (options.opponent.empty()) error = "--opponent is required";
    else if (options.games == 0) error = "--games is required";
    else if (!options.timeControlGiven) error = "--tc is required";
    else if (options.pgnFile.empty()) error = "--pgn is required";
    else if (options.engineBook && !options.openingsFile.empty()) error = "--book and --openings exclude each other";
    return error.empty();
}

}  // namespace matchsupport
