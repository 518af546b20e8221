#pragma once
// Handlers of the xboard commands. Each reads its arguments from the
// normalised command line it is given.

namespace frontend {

void levelCommand(const char* line);     // "LEVEL"
void timeCommand(const char* line);      // "TIME", "OTIM"
void statusCommand(const char* line);    // "."
void protoverCommand(const char* line);  // "PROTOVER 2"
void pingCommand(const char* line);      // "PING"
void memoryCommand(const char* line);    // "MEMORY"
void egtpathCommand(const char* line);   // "EGTPATH"
void optionCommand(const char* line);    // "option"
void setboardCommand(const char* line);  // "SETBOARD"

}  // namespace frontend
