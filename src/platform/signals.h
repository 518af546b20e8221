#pragma once
// Signal behaviour the interfaces expect of a console engine.

namespace platform {

// xboard interrupts an engine with SIGINT before each of its opponent's moves
// unless the engine's features decline it; the console program of old never
// saw such a signal, so it is ignored rather than ending the run.
void ignoreInterrupts();

}  // namespace platform
