// What OpenImageIO calls the types of samples, in memory and in files.
#pragma once

#include <OpenImageIO/typedesc.h>

#include "cli/pictures/ImageFormats.h"
#include "host/Image.h"

namespace vantorel::cli {

inline OIIO::TypeDesc typeDesc(host::Depth depth) {
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

inline OIIO::TypeDesc typeDesc(SampleType samples) {
  switch (samples) {
    case SampleType::Bits8:
      return OIIO::TypeDesc::UINT8;
    case SampleType::Bits16:
      return OIIO::TypeDesc::UINT16;
    case SampleType::Half:
      return OIIO::TypeDesc::HALF;
    case SampleType::Float:
      return OIIO::TypeDesc::FLOAT;
  }
  return OIIO::TypeDesc::FLOAT;
}

}  // namespace vantorel::cli
