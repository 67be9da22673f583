// Which processors a measurement runs on.
#pragma once

namespace vantorel::bench {

// Records the processors that this process may use, and lets the thread libraries start with all of them. Call once,
// from the measuring thread, before anything else.
void rememberProcessors();

// How many processors this process may use.
int processorCount();

// Pins the calling thread, which must be the main one, to the last of those processors, and all other threads of the
// process to the `threads` - 1 before it, or to the same one if there is no other. A thread that starts later inherits
// the processors of the thread that starts it.
void pinTo(int threads);

}  // namespace vantorel::bench
