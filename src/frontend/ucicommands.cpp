#include "frontend/ucicommands.h"

namespace frontend {

// The UCI dialect isn't spoken yet: its commands are claimed by the chain,
// so they never reach the move test, and answer nothing.
void uciCommand(const char* line) {}
void isreadyCommand(const char* line) {}
void positionCommand(const char* line) {}
void setoptionCommand(const char* line) {}
void ucinewgameCommand(const char* line) {}

}  // namespace frontend
