#include "cli/pictures/CodecThreads.h"

#include <OpenImageIO/imageio.h>

namespace vantorel::cli {

void limitCodecThreads(unsigned threads, bool one_picture_at_a_time) {
  constexpr int kCallerOnly = -1;
  const int most = static_cast<int>(threads);
  OIIO::attribute("threads", one_picture_at_a_time ? most : 1);
  OIIO::attribute("exr_threads", one_picture_at_a_time && most > 1 ? most : kCallerOnly);
}

}  // namespace vantorel::cli
