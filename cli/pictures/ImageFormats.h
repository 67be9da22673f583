// What each kind of output file can hold, and which kind of sample a picture is written with.
#pragma once

#include <cstddef>
#include <string>

#include "host/Image.h"

namespace vantorel::cli {

// Samples of a file, from coarse to fine.
enum class SampleType { Bits8, Bits16, Half, Float };

enum class DepthChoice { Auto, Bits8, Bits16, Half, Float };

struct ImageFormat {
  const char* name = "";
  const char* writer = "";          // OpenImageIO's name for it
  const char* extensions = "";      // each with its dot, a blank between two
  const char* compressions = "";    // those to choose among, a blank between two; empty where there is no choice
  bool holds_alpha = false;         // without, the premultiplied colour is kept: the picture over black
  bool unassociated_alpha = false;  // colour in the file is not multiplied by alpha
  bool holds_data_window = false;   // keeps pixels at a place of their own inside (or outside) the picture's frame
  bool linear_light = false;        // holds linear light by convention
  bool needs_path = false;          // OpenImageIO must write to a named file, since it reads back what it wrote
  bool passes_parts = false;        // written by OpenEXR's own library, which passes on what a plate holds besides
  int longest_side = 0;             // in pixels; 0 where other limits come first
  std::size_t most_metadata = 0;    // bytes of all attributes together; 0 where other limits come first
  bool holds8 = false;
  bool holds16 = false;
  bool holds_half = false;
  bool holds_float = false;
};

// ".png, .jpg, .tif, .exr or .dpx"
std::string outputExtensions();

// The format that the file name's extension stands for. Throws CommandError (bad argument), naming the option and
// listing the known formats, when there is none.
const ImageFormat& formatForOutput(const std::string& option, const std::string& path);

// The format of an output as the options have it: by `name` ("png", "exr"), or where that is empty by the path. Throws
// CommandError (bad argument).
const ImageFormat& chosenFormat(const std::string& path, const std::string& name);

// Throws CommandError (bad argument) when the format cannot hold a picture of that size.
void requireSizeHeld(const ImageFormat& format, const std::string& path, host::Size size);

// The depth to render at for files of that type: half and float samples become float.
host::Depth renderDepth(DepthChoice choice, SampleType source);

// The type to write: the choice, or the source's own, or the next finer one that the format holds, or else its finest.
SampleType outputSamples(const ImageFormat& format, DepthChoice choice, SampleType source);

}  // namespace vantorel::cli
