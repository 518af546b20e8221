#pragma once
// Small text tests for command lines, settings and FEN fields. ASCII only,
// whatever the locale: text from an interface or a file may hold any byte,
// and no locale may turn one of them into a letter or a blank.

namespace platform {

constexpr bool isAsciiDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isAsciiUpper(char c) { return c >= 'A' && c <= 'Z'; }
constexpr bool isAsciiLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool isAsciiLetter(char c) { return isAsciiUpper(c) || isAsciiLower(c); }
// The blanks that part words of a command or fields of a FEN.
constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr char asciiUpper(char c) { return isAsciiLower(c) ? char(c - 'a' + 'A') : c; }

// Folds `text` to upper case in place.
inline void upperCaseInPlace(char* text) {
    for (; *text; ++text) *text = asciiUpper(*text);
}

// Whether `text` opens with `word`, case aside.
inline bool opensWithNoCase(const char* text, const char* word) {
    for (; *word; ++text, ++word)
        if (asciiUpper(*text) != asciiUpper(*word)) return false;
    return true;
}

inline const char* skipBlanks(const char* text) {
    while (isBlank(*text)) ++text;
    return text;
}

}  // namespace platform
