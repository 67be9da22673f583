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

// The steps from one space to the other; none where they are the same. Throws CommandError naming `input` or the config
// where there is no way.
ColourProcessor makeProcessor(const ColourSpace& from, const ColourSpace& to, const std::string& input);

// The space as primaries and a curve: as it is defined, or, of a linear space of a config, by what becomes of red,
// green, blue and white. Nothing for others.
std::optional<RgbModel> modelOf(const ColourSpace& space);

// Converts premultiplied RGBA of any depth in place: colour is divided by alpha before and multiplied after. Rows are
// shared among threads. Integers are rounded and held within their range.
void convert(const host::ImageView& picture, const ColourProcessor& processor);

// Processors to one space, made once for each that pictures come in. Safe to use from several threads.
class ConversionTo {
 public:
  explicit ConversionTo(ColourSpace to) : to_(std::move(to)) {}

  const ColourSpace& space() const { return to_; }
  // Converts the picture in place, unless it is in the space already. Throws as makeProcessor() does.
  void operator()(const host::ImageView& picture, const ColourSpace& from, const std::string& input);

 private:
  const ColourProcessor& processorFrom(const ColourSpace& from, const std::string& input);

  ColourSpace to_;
  std::mutex mutex_;
  std::vector<std::pair<ColourSpace, std::unique_ptr<const ColourProcessor>>> processors_;
};

}  // namespace vantorel::cli
