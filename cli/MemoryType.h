// How OpenImageIO calls the channels of a picture in memory.
#pragma once

#include <OpenImageIO/typedesc.h>

#include "host/Image.h"

namespace vantorel::cli {

inline OIIO::TypeDesc memoryType(host::Depth depth) {
  switch (depth) {
    case host::Depth::Bits8:
      return OIIO::TypeDesc::UINT8;
    case host::Depth::Bits16:
      return OIIO::TypeDesc::UINT16;
    case host::Depth::Float:
      return OIIO::TypeDesc::FLOAT;
  }
  return OIIO::TypeDesc::FLOAT;
}

}  // namespace vantorel::cli
