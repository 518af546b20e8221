#pragma once
// Opening positions the games start from, so that two deterministic engines
// don't replay one game: a built-in list of short, balanced lines, or a file
// of FENs and move lists. Each opening is handed to xboard as a one-game PGN
// (move lists) or a one-position FEN file.

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace matchsupport {

struct Opening {
    std::string fen;                 // set for a position
    std::vector<std::string> moves;  // short algebraic moves otherwise
};

// Common main lines of both kinds of opening, a few moves deep, none of
// which gives either side a clear edge.
inline const std::vector<std::string_view>& builtInOpeningLines() {
    static const std::vector<std::string_view> lines = {
        "e4 e5 Nf3 Nc6 Bb5 a6",         "e4 e5 Nf3 Nc6 Bc4 Bc5",
        "e4 c5 Nf3 d6 d4 cxd4 Nxd4 Nf6", "e4 c5 Nc3 Nc6 g3 g6",
        "e4 e6 d4 d5 Nc3 Nf6",          "e4 c6 d4 d5 e5 Bf5",
        "e4 d6 d4 Nf6 Nc3 g6",          "d4 d5 c4 e6 Nc3 Nf6",
        "d4 d5 c4 c6 Nf3 Nf6",          "d4 Nf6 c4 e6 Nc3 Bb4",
        "d4 Nf6 c4 g6 Nc3 Bg7 e4 d6",   "d4 Nf6 c4 e6 Nf3 b6",
        "c4 e5 Nc3 Nf6 g3 d5",          "c4 c5 Nf3 Nc6 Nc3 g6",
        "Nf3 d5 g3 Nf6 Bg2 e6",         "e4 e5 Nf3 Nf6 Nxe5 d6 Nf3 Nxe4",
        "e4 e5 Nc3 Nf6 f4 d5",          "d4 d5 Bf4 Nf6 e3 c5",
        "e4 c5 Nf3 e6 d4 cxd4 Nxd4 a6", "d4 f5 g3 Nf6 Bg2 g6",
    };
    return lines;
}

// A FEN has eight ranks in its first field.
inline bool looksLikeFen(std::string_view line) {
    std::size_t end = line.find_first_of(" \t");
    std::string_view board = line.substr(0, end);
    int slashes = 0;
    for (char c : board) slashes += c == '/';
    return slashes == 7;
}

// One line of an openings file: a FEN, or moves with or without move
// numbers ("1. e4 e5 2. Nf3", "e4 e5 Nf3"). Blank lines and lines that
// open with '#' hold no opening.
inline bool parseOpeningLine(std::string_view line, Opening& opening) {
    opening = Opening();
    std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string_view::npos || line[first] == '#') return false;
    line.remove_prefix(first);
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    if (looksLikeFen(line)) {
        opening.fen = std::string(line);
        return true;
    }
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i]))) i++;
        std::size_t end = i;
        while (end < line.size() && !std::isspace(static_cast<unsigned char>(line[end]))) end++;
        std::string_view token = line.substr(i, end - i);
        i = end;
        std::size_t digits = 0;
        while (digits < token.size() && std::isdigit(static_cast<unsigned char>(token[digits]))) digits++;
        if (digits > 0 && digits < token.size() && token[digits] == '.') {
            token.remove_prefix(digits);
            while (!token.empty() && token.front() == '.') token.remove_prefix(1);
        }
        if (token.empty() || token == "*" || token == "1-0" || token == "0-1" || token == "1/2-1/2") continue;
        opening.moves.emplace_back(token);
    }
    return !opening.moves.empty();
}

// Every opening of a file's text. Moves aren't checked here: xboard refuses
// a game file with an illegal move, and the game then shows as abnormal.
inline std::vector<Opening> parseOpenings(std::string_view text) {
    std::vector<Opening> openings;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        Opening opening;
        if (parseOpeningLine(text.substr(start, end - start), opening)) openings.push_back(opening);
        start = end + 1;
    }
    return openings;
}

inline std::vector<Opening> builtInOpenings() {
    std::vector<Opening> openings;
    for (std::string_view line : builtInOpeningLines()) {
        Opening opening;
        if (parseOpeningLine(line, opening)) openings.push_back(opening);
    }
    return openings;
}

// The opening as one line for the report.
inline std::string describeOpening(const Opening& opening) {
    if (!opening.fen.empty()) return opening.fen;
    std::string text;
    for (const std::string& move : opening.moves) text += (text.empty() ? "" : " ") + move;
    return text;
}

// A one-game PGN of the moves, numbered as xboard's reader wants them.
inline std::string openingPgn(const Opening& opening) {
    std::string text = "[Event \"Opening\"]\n[Result \"*\"]\n\n";
    for (std::size_t ply = 0; ply < opening.moves.size(); ply++) {
        if (ply % 2 == 0) text += std::to_string(ply / 2 + 1) + ". ";
        text += opening.moves[ply] + " ";
    }
    return text + "*\n";
}

}  // namespace matchsupport
