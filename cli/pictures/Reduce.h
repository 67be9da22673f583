// Scaling plates down for proxies.
#pragma once

#include "host/Image.h"

namespace vantorel::cli {

// The picture at 1/n in both axes, rounded up: each pixel the mean of up to n by n, fewer at the right and the lower
// edge.
host::Image reduced(const host::ConstImageView& picture, int n);

}  // namespace vantorel::cli
