#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <new>
#include <system_error>

#include "cli/base/CommandError.h"
#include "cli/base/Console.h"
#include "cli/commands/CommandLine.h"
#include "cli/commands/Interrupt.h"

namespace {

using vantorel::cli::console;
using vantorel::cli::ExitCode;

int failWithMessage(const char* text, ExitCode code) {
  std::fprintf(console(), "vantorel: %s\n", text);
  return static_cast<int>(code);
}

int failForLackOfThreads(const std::system_error& error) {
  std::fprintf(console(),
               "vantorel: cannot start a thread (%s); raise the limits on processes and memory (ulimit -u, -v)\n",
               error.code().message().c_str());
  return static_cast<int>(ExitCode::EffectFailed);
}

// For exceptions that cannot be caught: those thrown on a library's own thread or while a library is being loaded
// (picture format libraries start threads and allocate memory then).
[[noreturn]] void endWithMessage() {
  int code = static_cast<int>(ExitCode::EffectFailed);
  try {
    if (const std::exception_ptr thrown = std::current_exception()) {
      std::rethrow_exception(thrown);
    }
    // Nothing is known of what a library's function throws that must not.
    code = failWithMessage("a library gave up, as it does for lack of memory; raise the limit on it (ulimit -v)",
                           ExitCode::EffectFailed);
  } catch (const std::system_error& error) {
    code = failForLackOfThreads(error);
  } catch (const std::bad_alloc&) {
    code =
        failWithMessage("out of memory; raise its limit (ulimit -v) or close other programs", ExitCode::EffectFailed);
  } catch (const std::exception& error) {
    code = failWithMessage(error.what(), ExitCode::EffectFailed);
  } catch (...) {
    code = failWithMessage("a library failed; please report this", ExitCode::EffectFailed);
  }
  _exit(code);
}

// Makes the allocator return a picture's memory to the system when it is freed. By default it would keep it in its
// heap, which a long sequence fragments more with every frame.
void returnPicturesWhenFreed() {
  constexpr int kSmallestPicture = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, kSmallestPicture);
}

int run(int argc, char** argv) {
  try {
    console();
    returnPicturesWhenFreed();
    vantorel::cli::ignoreSignalsOfWriting();
    return static_cast<int>(vantorel::cli::runCommandLine(argc, argv));
  } catch (const vantorel::cli::CommandError& error) {
    return failWithMessage(error.text().c_str(), error.code());
  } catch (const std::bad_alloc&) {
    return failWithMessage("out of memory; give a smaller picture or --size", ExitCode::EffectFailed);
  } catch (const std::system_error& error) {
    return failForLackOfThreads(error);
  } catch (const std::exception& error) {
    std::fprintf(console(), "vantorel: %s; raise the limits on processes and memory, or report this\n", error.what());
    return static_cast<int>(ExitCode::EffectFailed);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(endWithMessage);
  const int code = run(argc, argv);
  if (code == static_cast<int>(ExitCode::EffectFailed)) {
    // A library that has thrown for lack of memory may still hold its locks, and abort at its own end.
    std::fflush(nullptr);
    _exit(code);
  }
  return code;
}
