// What a file states besides its pixels.
#pragma once

#include <OpenImageIO/paramlist.h>

namespace vantorel::cli {

// What carries over to a picture that is made from this one.
struct Metadata {
  OIIO::ParamValueList values;
};

}  // namespace vantorel::cli
