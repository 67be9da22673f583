// What a file says beside its pixels.
#pragma once

#include <OpenImageIO/paramlist.h>

namespace vantorel::cli {

// What a picture made from another keeps of it.
struct Metadata {
  OIIO::ParamValueList values;
};

}  // namespace vantorel::cli
