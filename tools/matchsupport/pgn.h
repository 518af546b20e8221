#pragma once
// Reading the games xboard saves: the players, the result and the text of
// the comment that closes the movetext, which is where xboard says why a
// game ended ("White wins on time", "Xboard adjudication: ...").

#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace matchsupport {

struct PgnGame {
    std::string white;
    std::string black;
    std::string result;       // "1-0", "0-1", "1/2-1/2" or "*"
    std::string termination;  // the last comment before the result, without braces
    std::vector<std::string> moves;  // as the movetext writes them, side lines left out
};

// A result token of the movetext, which also closes the game.
inline bool isResultToken(std::string_view token) {
    return token == "1-0" || token == "0-1" || token == "1/2-1/2" || token == "*";
}

// The value of a tag line `[Name "Value"]`, or false if the line isn't one.
inline bool parseTagLine(std::string_view line, std::string& name, std::string& value) {
    std::size_t open = line.find_first_not_of(" \t");
    if (open == std::string_view::npos || line[open] != '[') return false;
    std::size_t nameEnd = line.find_first_of(" \t\"]", open + 1);
    std::size_t quote = line.find('"', open);
    if (nameEnd == std::string_view::npos || quote == std::string_view::npos) return false;
    std::size_t closing = line.rfind('"');
    if (closing <= quote) return false;
    name = std::string(line.substr(open + 1, nameEnd - open - 1));
    value.clear();
    for (std::size_t i = quote + 1; i < closing; i++) {
        if (line[i] == '\\' && i + 1 < closing) i++;
        value += line[i];
    }
    return true;
}

// Splits a PGN text into its games. A game is closed by its result token; a
// game cut off at the end of the text (a killed interface leaves that) keeps
// the result of its tag, or "*" when it has none.
inline std::vector<PgnGame> parsePgnGames(std::string_view text) {
    std::vector<PgnGame> games;
    PgnGame current;
    bool open = false;        // tags or moves seen since the last result
    std::string tagResult;
    std::string lastComment;  // cleared by every move, so only a closing comment stays
    std::size_t i = 0;
    auto finish = [&](const std::string& result) {
        current.result = result;
        current.termination = lastComment;
        games.push_back(current);
        current = PgnGame();
        tagResult.clear();
        lastComment.clear();
        open = false;
    };
    while (i < text.size()) {
        char c = text[i];
        if (c == '[' && (i == 0 || text[i - 1] == '\n')) {
            std::size_t end = text.find('\n', i);
            if (end == std::string_view::npos) end = text.size();
            std::string name, value;
            if (parseTagLine(text.substr(i, end - i), name, value)) {
                // Tags after moves start the next game: the previous one lost its result.
                if (open && !current.moves.empty()) {
                    lastComment.clear();
                    finish(tagResult.empty() ? "*" : tagResult);
                }
                if (name == "White") current.white = value;
                else if (name == "Black") current.black = value;
                else if (name == "Result") tagResult = value;
                open = true;
            }
            i = end;
        } else if (c == '{') {
            std::size_t end = text.find('}', i + 1);
            if (end == std::string_view::npos) end = text.size();
            lastComment = std::string(text.substr(i + 1, end - i - 1));
            for (char& ch : lastComment)
                if (ch == '\n' || ch == '\r') ch = ' ';
            i = end + 1;
        } else if (c == ';') {
            std::size_t end = text.find('\n', i);
            i = end == std::string_view::npos ? text.size() : end;
        } else if (c == '(') {
            // Variations don't count as moves of the game; they may nest.
            int depth = 0;
            for (; i < text.size(); i++) {
                if (text[i] == '(') depth++;
                else if (text[i] == ')' && --depth == 0) break;
            }
            i++;
        } else if (std::isspace(static_cast<unsigned char>(c))) {
            i++;
        } else {
            std::size_t end = i;
            while (end < text.size() && !std::isspace(static_cast<unsigned char>(text[end])) && text[end] != '{' &&
                   text[end] != '(' && text[end] != ';')
                end++;
            std::string_view token = text.substr(i, end - i);
            i = end;
            if (isResultToken(token)) {
                finish(std::string(token));
                continue;
            }
            // Move numbers ("12." or "12...") and annotation glyphs aren't moves.
            std::size_t digits = 0;
            while (digits < token.size() && std::isdigit(static_cast<unsigned char>(token[digits]))) digits++;
            if (digits > 0 && (digits == token.size() || token[digits] == '.')) {
                std::string_view rest = token.substr(digits);
                while (!rest.empty() && rest.front() == '.') rest.remove_prefix(1);
                if (rest.empty()) continue;
                token = rest;
            }
            if (token.front() == '$') continue;
            current.moves.emplace_back(token);
            lastComment.clear();
            open = true;
        }
    }
    // Without its result token the game has no closing comment either.
    if (open) {
        lastComment.clear();
        finish(tagResult.empty() ? "*" : tagResult);
    }
    return games;
}

// The first `plies` moves of a game, divided by blanks: what tells one
// opening from another.
inline std::string openingOf(const PgnGame& game, std::size_t plies) {
    std::string text;
    for (std::size_t i = 0; i < plies && i < game.moves.size(); i++) text += (i ? " " : "") + game.moves[i];
    return text;
}

}  // namespace matchsupport
