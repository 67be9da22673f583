// The colour space options.
#pragma once

#include <string>

namespace vantorel::cli {

struct ColourOptions {
  std::string layer;         // the name of the layer's space; empty: from its file
  std::string plate;         // the same for the plate
  std::string output;        // the space to write; empty: the plate's, or the usual one for the format
  std::string config;        // an OpenColorIO config; empty: that of $OCIO, if set
  bool raw = false;          // values are used without conversion
  std::string first_option;  // the first of these options that was given, except --raw; empty if none
};

}  // namespace vantorel::cli
