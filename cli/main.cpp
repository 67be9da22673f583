#include <malloc.h>

#include <cstdio>
#include <exception>
#include <new>

#include "cli/base/CommandError.h"
#include "cli/commands/CommandLine.h"
#include "cli/commands/Interrupt.h"

namespace {

using vantorel::cli::ExitCode;

// Pictures go back to the system as they are freed. Left to itself, the allocator would keep them in its heap, which a
// long sequence fragments further with every frame.
void returnPicturesWhenFreed() {
  constexpr int kSmallestPicture = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, kSmallestPicture);
}

ExitCode run(int argc, char** argv) {
  try {
    returnPicturesWhenFreed();
    const vantorel::cli::Interrupt interrupt;
    return vantorel::cli::runCommandLine(argc, argv, interrupt.token());
  } catch (const vantorel::cli::CommandError& error) {
    std::fprintf(stderr, "vantorel: %s\n", error.text().c_str());
    return error.code();
  } catch (const std::bad_alloc&) {
    std::fputs("vantorel: out of memory; give a smaller picture or --size\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vantorel: %s; please report this\n", error.what());
  }
  return ExitCode::EffectFailed;
}

}  // namespace

int main(int argc, char** argv) {
  return static_cast<int>(run(argc, argv));
}
