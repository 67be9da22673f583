#include "cli/pictures/FormatLibrary.h"

namespace vantorel::cli {

extern "C" [[gnu::visibility("default")]] const ModuleTable* vantorelFormatLibrary() {
  static constexpr FormatLibrary kLibrary{{VANTOREL_VERSION},
                                          openImageIoInput,
                                          openImageIoOutput,
                                          jpegSegmentsByImageIo,
                                          enlargedByImageIo,
                                          addExif,
                                          addXmp,
                                          exifOf,
                                          limitImageIoThreads};
  return &kLibrary;
}

}  // namespace vantorel::cli
