// Conversion of pictures between colour spaces.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/colour/ColourSpace.h"
#include "cli/colour/RowConversion.h"
#include "host/Image.h"

namespace vantorel::cli {

using ColourProcessor = std::vector<std::unique_ptr<const RowConversion>>;

// The steps from one space to the other; none if they are the same. Throws CommandError, naming `input` or the config,
// if there is no conversion.
ColourProcessor makeProcessor(const ColourSpace& from, const ColourSpace& to, const std::string& input);

// The space as primaries and a curve: its own or, for a linear space of a config, derived by converting red, green,
// blue and white. Empty for other spaces.
std::optional<RgbModel> modelOf(const ColourSpace& space);

// Converts premultiplied RGBA of any depth in place: colour is divided by alpha before the conversion and multiplied
// afterwards. Rows are shared among threads. Integers are rounded and clamped.
void convert(const host::ImageView& picture, const ColourProcessor& processor);

// Conversions to one space; a processor is created once for each source space. Safe to use from several threads.
class ConversionTo {
 public:
  explicit ConversionTo(ColourSpace to) : to_(std::move(to)) {}

  const ColourSpace& space() const { return to_; }
  // Converts the picture in place, unless it is in the space already. Throws like makeProcessor().
  void operator()(const host::ImageView& picture, const ColourSpace& from, const std::string& input);

 private:
  const ColourProcessor& processorFrom(const ColourSpace& from, const std::string& input);

  ColourSpace to_;
  std::mutex mutex_;
  std::vector<std::pair<ColourSpace, std::unique_ptr<const ColourProcessor>>> processors_;
};

}  // namespace vantorel::cli
