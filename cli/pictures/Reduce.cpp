#include "cli/pictures/Reduce.h"

#include "cli/base/CommandError.h"
#include "cli/base/Rows.h"
#include "host/Downsample.h"
#include "host/Frame.h"

namespace vantorel::cli {

host::Image reduced(const host::ConstImageView& picture, int n) {
  host::Image result = valueOrThrow(host::Image::create(host::downsampled(picture.size, n), picture.depth));
  forRows(result.size().height,
          [&](int y) { host::downsampleRows(picture, n, host::BlockEdges::LeftOut, result.view(), y, y + 1); });
  return result;
}

}  // namespace vantorel::cli
