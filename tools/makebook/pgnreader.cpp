// The game-text reader: a tokenizer that drops everything but the main
// line's moves, results and tags, and the two ways of cutting its tokens
// into games.

#include "pgnreader.h"

#include <cctype>
#include <cstring>
#include <utility>

namespace makebook {

namespace {

// No move is this long; a longer word is garbage, not worth holding.
constexpr std::size_t WordLimit = 255;
// A tag pair is one line; this leaves room for the longest FEN many times.
constexpr std::size_t TagLimit = 4096;
constexpr char WordDelimiters[] = "{}()[];\"$";

bool isBlank(int c) { return c <= ' ' || c == 0x7f; }
bool isDelimiter(int c) { return c == EOF || isBlank(c) || std::strchr(WordDelimiters, c) != nullptr; }

Token makeToken(TokenKind kind, std::string text, long line) {
    Token t;
    t.kind = kind;
    t.text = std::move(text);
    t.line = line;
    return t;
}

// Reads up to and including the line feed, which is counted.
void skipLine(MovetextReader& r) {
    for (int c; (c = std::getc(r.in)) != EOF;) {
        if (c == '\n') {
            ++r.line;
            r.atLineStart = true;
            return;
        }
    }
}

// False if the file ends inside the comment.
bool skipComment(MovetextReader& r) {
    for (int c; (c = std::getc(r.in)) != EOF;) {
        if (c == '\n') ++r.line;
        if (c == '}') return true;
    }
    return false;
}

// The next character that isn't a blank or tab on this line.
int nextOnLine(MovetextReader& r) {
    int c;
    do c = std::getc(r.in);
    while (c == ' ' || c == '\t' || c == '\r');
    return c;
}

// A quoted text, the opening quote already read, with backslash escapes; it
// must close on its line. False otherwise, the line feed left unread.
bool readQuoted(MovetextReader& r, std::size_t limit, std::string& text) {
    text.clear();
    for (int c; (c = std::getc(r.in)) != EOF;) {
        if (c == '\\') c = std::getc(r.in);
        if (c == '\n' || c == EOF) {
            if (c == '\n') std::ungetc(c, r.in);
            return false;
        }
        if (c == '"') return true;
        if (text.size() >= limit) return false;
        text.push_back(char(c));
    }
    return false;
}

// `[Name "value"]`, the bracket already read. A broken tag spoils its line.
Token readTag(MovetextReader& r) {
    Token t = makeToken(TokenKind::Tag, {}, r.line);
    int c = nextOnLine(r);
    while (c != EOF && (std::isalnum(c) || c == '_') && t.text.size() < TagLimit) {
        t.text.push_back(char(c));
        c = std::getc(r.in);
    }
    if (c == ' ' || c == '\t') c = nextOnLine(r);
    const bool ok = !t.text.empty() && c == '"' && readQuoted(r, TagLimit, t.value) && nextOnLine(r) == ']';
    if (ok) return t;
    skipLine(r);
    return makeToken(TokenKind::Error, "malformed tag", t.line);
}

bool isResult(const std::string& w) { return w == "1-0" || w == "0-1" || w == "1/2-1/2" || w == "*"; }

// Evaluation marks written as words ("!?", "+-", "=") carry no move.
bool isMarkOnly(const std::string& w) { return w.find_first_not_of("!?+-=/") == std::string::npos; }

// A word of movetext: a result, a move (its number cut off: "12.e4",
// "12...Nf6"), or nothing worth a token (a bare move number or mark).
bool classifyWord(std::string word, long line, Token& t) {
    if (isResult(word)) {
        t = makeToken(TokenKind::Result, std::move(word), line);
        return true;
    }
    if (word.compare(0, 3, "0-0") != 0) {
        std::size_t digits = 0;
        while (digits < word.size() && std::isdigit(static_cast<unsigned char>(word[digits]))) ++digits;
        std::size_t dots = digits;
        while (dots < word.size() && word[dots] == '.') ++dots;
        if (digits == word.size() || (digits > 0 && dots > digits) || digits == 0) word.erase(0, dots);
    }
    if (word.empty() || isMarkOnly(word)) return false;
    t = makeToken(TokenKind::Move, std::move(word), line);
    return true;
}

// The word that starts with `first`; an overlong one is read to its end.
Token readWord(MovetextReader& r, int first) {
    const long line = r.line;
    std::string word(1, char(first));
    bool tooLong = false;
    int c;
    while (!isDelimiter(c = std::getc(r.in))) {
        if (word.size() < WordLimit) word.push_back(char(c));
        else tooLong = true;
    }
    if (c != EOF) std::ungetc(c, r.in);  // the delimiter is the caller's
    if (tooLong) return makeToken(TokenKind::Error, "a word of over 255 characters", line);
    Token t;
    if (!classifyWord(std::move(word), line, t)) t.kind = TokenKind::End;  // nothing: read on
    return t;
}

Token variationNotClosed(MovetextReader& r) {
    r.variationDepth = 0;
    return makeToken(TokenKind::Error, "variation not closed", r.variationLine);
}

Token nextToken(MovetextReader& r) {
    if (r.hasPending) {
        r.hasPending = false;
        return std::move(r.pending);
    }
    for (;;) {
        const int c = std::getc(r.in);
        if (c == EOF) return r.variationDepth > 0 ? variationNotClosed(r) : makeToken(TokenKind::End, {}, r.line);
        const bool lineStart = r.atLineStart;
        r.atLineStart = c == '\n';
        if (c == '\n') ++r.line;
        if (isBlank(c)) continue;
        if (lineStart && (c == '%' || c == '#')) {
            skipLine(r);
            continue;
        }
        const long line = r.line;
        switch (c) {
            case '{':
                if (!skipComment(r)) return makeToken(TokenKind::Error, "comment not closed", line);
                continue;
            case ';': skipLine(r); continue;
            case '(':
                if (r.variationDepth++ == 0) r.variationLine = line;
                continue;
            case ')':
                if (r.variationDepth == 0) return makeToken(TokenKind::Error, "')' without '('", line);
                --r.variationDepth;
                continue;
            case '[':
                // Tags never stand inside a variation: the last game left one open.
                if (r.variationDepth > 0) {
                    r.pending = readTag(r);
                    r.hasPending = true;
                    return variationNotClosed(r);
                }
                return readTag(r);
            case '$': {
                int d;
                while (std::isdigit(d = std::getc(r.in))) {
                }
                if (d != EOF) std::ungetc(d, r.in);
                continue;
            }
            case '"': {
                Token t = makeToken(TokenKind::Text, {}, line);
                if (!readQuoted(r, WordLimit, t.text)) t = makeToken(TokenKind::Error, "quoted text not closed", line);
                if (r.variationDepth > 0) continue;
                return t;
            }
            default: {
                Token t = readWord(r, c);
                if (r.variationDepth > 0 || t.kind == TokenKind::End) continue;
                return t;
            }
        }
    }
}

void fault(GameText& g, const std::string& message, long line) {
    if (!g.error.empty()) return;
    g.error = message;
    g.errorLine = line;
}

}  // namespace

// A game runs from its first tag or move to its result. Tags after movetext
// open the next game, so a game that lost its result still ends there.
bool readPgnGame(MovetextReader& r, GameText& g) {
    g = GameText{};
    bool seen = false, inMovetext = false;
    std::string resultTag;
    for (;;) {
        Token t = nextToken(r);
        if (!seen) g.line = t.line;
        if (t.kind == TokenKind::End || (t.kind == TokenKind::Tag && inMovetext)) {
            if (!seen) return false;
            if (t.kind == TokenKind::Tag) {
                r.pending = std::move(t);
                r.hasPending = true;
            }
            g.unterminated = true;
            g.result = isResult(resultTag) ? resultTag : "*";
            g.number = ++r.games;
            return true;
        }
        seen = true;
        switch (t.kind) {
            case TokenKind::Tag:
                if (t.text == "FEN") g.fen = t.value;
                if (t.text == "Result") resultTag = t.value;
                break;
            case TokenKind::Move: g.moves.push_back({t.text, t.line}); break;
            case TokenKind::Result:
                g.result = t.text;
                g.number = ++r.games;
                return true;
            case TokenKind::Text: fault(g, "quoted text in the movetext", t.line); break;
            default: fault(g, t.text, t.line); break;
        }
        inMovetext = t.kind != TokenKind::Tag;
    }
}

// CODE "Name" movetext *, the movetext free to run over several lines.
bool readEcoLine(MovetextReader& r, GameText& g) {
    g = GameText{};
    Token t = nextToken(r);
    if (t.kind == TokenKind::End) return false;
    g.number = ++r.games;
    g.line = t.line;
    if (t.kind == TokenKind::Move) g.name = t.text;
    else fault(g, "an opening code expected", t.line);
    if (t.kind != TokenKind::Result) {
        t = nextToken(r);
        if (t.kind != TokenKind::Text) fault(g, "a quoted opening name expected", t.line);
    }
    while (t.kind != TokenKind::Result && t.kind != TokenKind::End) {
        t = nextToken(r);
        if (t.kind == TokenKind::Move) g.moves.push_back({t.text, t.line});
        else if (t.kind != TokenKind::Result && t.kind != TokenKind::End)
            fault(g, t.kind == TokenKind::Error ? t.text : "not a move", t.line);
    }
    g.result = t.kind == TokenKind::Result ? t.text : "*";
    g.unterminated = t.kind == TokenKind::End;
    return true;
}

}  // namespace makebook
