#pragma once
// Reading game texts for the book writer: PGN (tag pairs, movetext with
// move numbers, comments, variations, NAGs and annotation marks) and the
// opening-line files of the ECO classification (a code, a quoted name and a
// movetext ending in "*"). The reader hands out the moves of the main line
// as text; what they mean is the board's business.
//
// Input is read a byte at a time without a line buffer, so no line is too
// long; a single word too long to be a move, an unclosed comment or
// variation, or a stray bracket is reported, with the line it stands on,
// and spoils only the game it is in.

#include <cstdio>
#include <string>
#include <vector>

namespace makebook {

enum class TokenKind { End, Tag, Move, Result, Text, Error };

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;   // the move, result, tag name, quoted text or error message
    std::string value;  // a tag's value
    long line = 0;
};

struct MovetextReader {
    std::FILE* in = nullptr;
    long line = 1;
    bool atLineStart = true;
    int variationDepth = 0;
    long variationLine = 0;  // where the outermost open variation began
    bool hasPending = false;  // a tag read ahead that opens the next game
    Token pending;
    long games = 0;  // games handed out so far
};

struct MoveText {
    std::string text;
    long line;
};

struct GameText {
    long number = 0;           // 1 for the first game of the file
    long line = 0;             // where it starts
    std::string name;          // ECO: the code
    std::string fen;           // a FEN tag: the game starts there
    std::string result;        // "1-0", "0-1", "1/2-1/2" or "*"
    std::vector<MoveText> moves;
    std::string error;         // the first fault; the game is then unusable
    long errorLine = 0;
    bool unterminated = false;  // ended by the file or the next game's tags
};

// The next PGN game, or false at the end of input. A game without its result
// token takes the Result tag, else "*", and is marked unterminated.
bool readPgnGame(MovetextReader& reader, GameText& game);

// The next line of an ECO file, or false at the end of input.
bool readEcoLine(MovetextReader& reader, GameText& game);

}  // namespace makebook
