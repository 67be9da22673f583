// What was said of colour spaces.
#pragma once

#include <string>

namespace vantorel::cli {

struct ColourOptions {
  std::string layer;         // the name of the layer's space; empty: as its file says
  std::string plate;         // the same for the plate
  std::string output;        // the space to write; empty: the plate's, or what the format holds
  std::string config;        // an OpenColorIO config; empty: $OCIO's, if it is set
  bool raw = false;          // numbers are taken as they are
  std::string first_option;  // the first given option of the above but --raw; empty without one
};

}  // namespace vantorel::cli
