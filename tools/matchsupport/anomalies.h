#pragma once
// Finding games that ended for a reason other than play: a flag, an illegal
// move, an engine that died or went away, a game without a result. The
// evidence is the closing comment of the saved game, xboard's debug log and
// console text, and the exit records of the engine wrapper.

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace matchsupport {

enum class Anomaly { TimeForfeit, IllegalMove, Crash, NoResult };

inline const char* anomalyName(Anomaly kind) {
    switch (kind) {
        case Anomaly::TimeForfeit: return "time forfeit";
        case Anomaly::IllegalMove: return "illegal move";
        case Anomaly::Crash: return "crash/disconnect";
        case Anomaly::NoResult: return "no result";
    }
    return "?";
}

struct Finding {
    Anomaly kind;
    std::string detail;
};

inline std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

inline bool containsAny(const std::string& lower, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(), [&](const char* w) { return lower.find(w) != std::string::npos; });
}

// What the closing comment and result of a saved game say, if anything
// abnormal. Resignations, mates and xboard's draw adjudications are normal.
inline bool classifyTermination(const std::string& termination, const std::string& result, Finding& finding) {
    std::string lower = lowerCase(termination);
    if (containsAny(lower, {"on time", "flag", "time forfeit"})) {
        finding = {Anomaly::TimeForfeit, termination};
        return true;
    }
    if (containsAny(lower, {"illegal move", "invalid move", "forfeit due to"})) {
        finding = {Anomaly::IllegalMove, termination};
        return true;
    }
    if (containsAny(lower, {"exited unexpectedly", "crash", "disconnect", "connection", "xboard exit", "error"})) {
        finding = {Anomaly::Crash, termination};
        return true;
    }
    if (result != "1-0" && result != "0-1" && result != "1/2-1/2") {
        finding = {Anomaly::NoResult, termination.empty() ? "result *" : "result * {" + termination + "}"};
        return true;
    }
    return false;
}

// One line of xboard's debug log or console output. Engine traffic lines
// ("123 <first : ...") are judged on the engine's own complaints about
// moves only: engines also answer "Error (unknown command)" to commands
// they merely don't know, which is no abnormal ending. `engineOf` gives the
// player name for "first" or "second".
template <typename EngineName>
inline bool classifyLogLine(std::string_view line, EngineName engineOf, Finding& finding) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n' || text.back() == ' ')) text.pop_back();
    std::size_t from = text.find_first_not_of("0123456789 ");
    bool engineLine = from != std::string::npos && from > 0 && (text[from] == '<' || text[from] == '>');
    if (engineLine) {
        if (text[from] != '<') return false;
        std::string who = text.compare(from + 1, 5, "first") == 0 ? engineOf("first") : engineOf("second");
        std::size_t colon = text.find(':', from);
        std::string said = colon == std::string::npos ? "" : text.substr(colon + 1);
        said.erase(0, said.find_first_not_of(' '));
        if (lowerCase(said).rfind("illegal move", 0) == 0) {
            finding = {Anomaly::IllegalMove, who + " rejected a move: " + said};
            return true;
        }
        return false;
    }
    // xboard repeats the game's ending in these; the saved game already has it.
    if (text.rfind("GameEnds(", 0) == 0 || text.rfind("GE(", 0) == 0) return false;
    std::string lower = lowerCase(text);
    auto named = [&](std::string s) {
        for (const char* which : {"first", "second"}) {
            std::string key = std::string(which) + " ";
            if (s.find(key) != std::string::npos) return s + " [" + engineOf(which) + "]";
        }
        return s;
    };
    if (lower.find("illegal move") != std::string::npos || lower.find("forfeit due to") != std::string::npos) {
        finding = {Anomaly::IllegalMove, named(text)};
        return true;
    }
    if (containsAny(lower, {"exited unexpectedly", "crashed", "connection lost", "failed to start"})) {
        finding = {Anomaly::Crash, named(text)};
        return true;
    }
    if (lower.find("error") != std::string::npos && lower.find("aplay") == std::string::npos) {
        finding = {Anomaly::Crash, named(text)};
        return true;
    }
    return false;
}

// All findings of a debug log or console text, one per distinct line.
template <typename EngineName>
inline std::vector<Finding> scanLog(std::string_view log, EngineName engineOf) {
    std::vector<Finding> findings;
    std::size_t start = 0;
    while (start < log.size()) {
        std::size_t end = log.find('\n', start);
        if (end == std::string_view::npos) end = log.size();
        Finding finding;
        if (classifyLogLine(log.substr(start, end - start), engineOf, finding)) {
            bool seen = std::any_of(findings.begin(), findings.end(),
                                    [&](const Finding& f) { return f.detail == finding.detail; });
            if (!seen) findings.push_back(finding);
        }
        start = end + 1;
    }
    return findings;
}

// Distinct error replies of the engines ("Error (unknown command): ...",
// "tellusererror ..."): no abnormal ending, but a sign of a protocol gap.
template <typename EngineName>
inline std::vector<std::string> engineComplaints(std::string_view log, EngineName engineOf) {
    std::vector<std::string> complaints;
    std::size_t start = 0;
    while (start < log.size()) {
        std::size_t end = log.find('\n', start);
        if (end == std::string_view::npos) end = log.size();
        std::string line(log.substr(start, end - start));
        start = end + 1;
        std::size_t from = line.find_first_not_of("0123456789 ");
        if (from == std::string::npos || from == 0 || line[from] != '<') continue;
        std::size_t colon = line.find(':', from);
        if (colon == std::string::npos) continue;
        std::string said = line.substr(colon + 1);
        said.erase(0, said.find_first_not_of(' '));
        while (!said.empty() && (said.back() == '\r' || said.back() == ' ')) said.pop_back();
        if (said.rfind("Error", 0) != 0 && said.rfind("tellusererror", 0) != 0) continue;
        std::string who = line.compare(from + 1, 5, "first") == 0 ? engineOf("first") : engineOf("second");
        std::string entry = who + ": " + said;
        if (std::find(complaints.begin(), complaints.end(), entry) == complaints.end()) complaints.push_back(entry);
    }
    return complaints;
}

// The record the engine wrapper leaves when its engine ends: whether the
// interface had said "quit" by then, and how the engine ended.
struct ExitRecord {
    bool sawQuit = false;
    int exitCode = 0;
    int signal = 0;  // 0 when the engine exited by itself
};

// Parses "quit=1 code=0 signal=0"; false if the text isn't such a record.
inline bool parseExitRecord(std::string_view text, ExitRecord& record) {
    int quit = 0, code = 0, sig = 0;
    std::string copy(text);
    if (std::sscanf(copy.c_str(), "quit=%d code=%d signal=%d", &quit, &code, &sig) != 3) return false;
    record = {quit != 0, code, sig};
    return true;
}

// An engine that ended before the interface told it to quit went away in
// mid-game; one killed by a fault signal crashed whenever that was. The
// interface's own SIGTERM/SIGKILL after "quit" is how it ends stragglers.
inline bool classifyExit(const ExitRecord& record, const std::string& who, Finding& finding) {
    char text[160];
    if (record.signal != 0 && record.signal != 15 && record.signal != 9 && record.signal != 1) {
        std::snprintf(text, sizeof text, "%s killed by signal %d%s", who.c_str(), record.signal,
                      record.signal == 2 ? " (SIGINT: the engine doesn't ignore xboard's interrupt)" : "");
        finding = {Anomaly::Crash, text};
        return true;
    }
    if (!record.sawQuit && record.signal == 0) {
        std::snprintf(text, sizeof text, "%s exited with code %d before xboard said quit", who.c_str(),
                      record.exitCode);
        finding = {Anomaly::Crash, text};
        return true;
    }
    return false;
}

}  // namespace matchsupport
