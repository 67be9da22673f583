#include "cli/pictures/FormatLibrary.h"

#include "cli/base/CommandError.h"
#include "cli/pictures/CodecThreads.h"

namespace vantorel::cli {

const FormatLibrary& formatLibrary() {
  static const auto& library = static_cast<const FormatLibrary&>(loadOwnModule(kFormatModuleName, kFormatLibraryName));
  if (const auto threads = codecThreads()) {
    library.limit_threads(*threads);
  }
  return library;
}

host::Image enlarged(const host::ConstImageView& picture, host::Size size, EnlargeFilter filter) {
  return formatLibrary().enlarged(picture, size, filter);
}

}  // namespace vantorel::cli
