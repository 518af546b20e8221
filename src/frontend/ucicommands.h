#pragma once
// Handlers of the UCI commands. Each reads its arguments from the normalised
// command line it is given.

namespace frontend {

void uciCommand(const char* line);         // "UCI"
void isreadyCommand(const char* line);     // "ISREADY"
void positionCommand(const char* line);    // "position"
void setoptionCommand(const char* line);   // "setoption"
void ucinewgameCommand(const char* line);  // "UCINEWGAME"

}  // namespace frontend
