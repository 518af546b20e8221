#pragma once
// How the program comes to life: the configuration file and the switches,
// the sizing of the hash tables, the log, the banner and the tablebases,
// before the command loop takes over.

namespace frontend {

// What start-up returns when the command loop is to follow; any other value
// is the program's exit code.
constexpr int StartupContinue = -1;

// The banner's version line and its notice.
constexpr const char* MakerNotice = "Copyright (C) Aurelien Moraud";

// The configuration file, then the switches in order, then the sizing of the
// hash tables (unless a -f did it); a batch run (-f, -p) runs here and ends
// the program. Returns StartupContinue or an exit code.
int processCommandLine(int argc, char** argv);

// The whole start-up, processCommandLine included. Returns StartupContinue
// or an exit code.
int startUp(int argc, char** argv);

}  // namespace frontend
