// Pictures enlarged by a filter of their own, where the effect's would show its pixels.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

enum class EnlargeFilter { Bilinear, Bicubic, Lanczos };

// The picture in that size, which must not be smaller than its own in either axis. Outline lies on outline, and the
// edge pixels' colours reach beyond it. In float colours may overshoot; alpha is held to 0 to 1. Throws CommandError
// when memory is short.
host::Image enlarged(const host::ConstImageView& picture, host::Size size, EnlargeFilter filter);

}  // namespace vantorel::cli
