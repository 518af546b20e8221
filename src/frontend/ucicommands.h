#pragma once
// Handlers of the UCI commands. Each reads its arguments from the normalised
// command line it is given.

namespace frontend {

void uciCommand(const char* line);         // "UCI"
void isreadyCommand(const char* line);     // "ISREADY"
void positionCommand(const char* line);    // "position"
void setoptionCommand(const char* line);   // "setoption"
void ucinewgameCommand(const char* line);  // "UCINEWGAME"

// Reads the clock words of an upper-cased "GO" line into the time control,
// for the side to move of the global game.
void readGoClock(const char* line);

// Strips the quotes an interface may put round a path, in place: a first
// character that is neither a letter nor '/' goes, and so does a last one
// that is neither a letter nor a digit.
void stripPathQuotes(char* path);

// A tablebase directory from "EGTPATH" or the NalimovPath option: quotes
// stripped, joined to the list if it fits, and the tables looked for again
// along the whole list. An empty path adds nothing, rather than the working
// directory.
void useTablebasePath(char* path);

}  // namespace frontend
