// Pictures enlarged by OpenImageIO, and its threads.

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <fmt/format.h>

#include <algorithm>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/SampleTypes.h"

namespace vantorel::cli {

namespace {

// Interpolating kernels: the first two reproduce the layer's own pixels where an enlarged pixel lies on one.
const char* filterName(EnlargeFilter filter) {
  switch (filter) {
    case EnlargeFilter::Bilinear:
      return "triangle";
    case EnlargeFilter::Bicubic:
      return "catmull-rom";
    case EnlargeFilter::Lanczos:
      break;
  }
  return "lanczos3";
}

OIIO::ImageBuf wrapped(const host::ConstImageView& view) {
  const OIIO::ImageSpec spec(view.size.width, view.size.height, 4, typeDesc(view.depth));
  // The library takes pixels to read and to write by one kind of pointer; sources are only read.
  return OIIO::ImageBuf(spec, const_cast<std::byte*>(view.data),
                        static_cast<OIIO::stride_t>(host::bytesPerPixel(view.depth)), view.row_bytes);
}

void holdAlpha(const host::ImageView& picture) {
  for (int y = 0; y < picture.size.height; ++y) {
    auto* pixel = reinterpret_cast<float*>(picture.row(y));
    for (int x = 0; x < picture.size.width; ++x, pixel += 4) {
      pixel[3] = std::clamp(pixel[3], 0.0f, 1.0f);
    }
  }
}

}  // namespace

host::Image enlargedByImageIo(const host::ConstImageView& picture, host::Size size, EnlargeFilter filter) {
  host::Image result = valueOrThrow(host::Image::create(size, picture.depth));
  OIIO::ImageBuf target = wrapped(host::asConst(result.view()));
  if (!OIIO::ImageBufAlgo::resize(target, wrapped(picture), filterName(filter))) {
    throw CommandError(
        ExitCode::EffectFailed, "--enlarge",
        fmt::format("the layer cannot be enlarged to {} ({}); omit it", toText(size), oneLine(target.geterror())));
  }
  if (picture.depth == host::Depth::Float) {
    holdAlpha(result.view());
  }
  return result;
}

void limitImageIoThreads(unsigned threads) {
  constexpr int kCallerOnly = -1;
  const int most = static_cast<int>(threads);
  OIIO::attribute("threads", most);
  OIIO::attribute("exr_threads", most > 1 ? most : kCallerOnly);
}

}  // namespace vantorel::cli
