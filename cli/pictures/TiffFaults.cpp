#include "cli/pictures/TiffFaults.h"

#include <tiffio.h>

#include <cerrno>
#include <cstdarg>
#include <string_view>
#include <utility>

namespace vantorel::cli {

namespace {

thread_local int first_fault = 0;

// libtiff says "error" of calls to the system. Its other messages are no faults of the file: OpenImageIO offers every
// tag to every directory, and writes an EXIF directory without entries, which is refused.
void noteFault(thandle_t /*file*/, const char* /*module*/, const char* format, std::va_list /*arguments*/) {
  if (first_fault == 0 && std::string_view(format).find("rror") != std::string_view::npos) {
    first_fault = errno != 0 ? errno : EIO;
  }
}

}  // namespace

int takeTiffFault() {
  // Called beside the handler that OpenImageIO sets, which keeps the message alone.
  [[maybe_unused]] static const TIFFErrorHandlerExt before = TIFFSetErrorHandlerExt(noteFault);
  return std::exchange(first_fault, 0);
}

}  // namespace vantorel::cli
