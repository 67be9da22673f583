// Which processors a measurement runs on.
#pragma once

namespace vantorel::bench {

// Remembers the processors that this process may use and has the thread libraries see them all. Call once, from the
// measuring thread, before anything else.
void rememberProcessors();

// How many processors this process may use.
int processorCount();

// Keeps the calling thread, which must be the main one, on the last of those processors, and all other threads of the
// process on the `threads` - 1 before it, or the same one when there is no other. Threads that start later are where
// the one that starts them is.
void pinTo(int threads);

}  // namespace vantorel::bench
