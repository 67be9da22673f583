// ICC profiles, read and written by LittleCMS.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "cli/colour/ColourSpace.h"
#include "cli/colour/RowConversion.h"

namespace vantorel::cli {

// An RGB profile that curves and primaries cannot describe, such as one with lookup tables.
class IccProfile {
 public:
  IccProfile(std::span<const std::byte> bytes, std::string name);

  const std::vector<std::byte>& bytes() const { return bytes_; }
  std::uint64_t hash() const;

  // Conversions to and from linear Rec.709, relative colorimetric. Throw CommandError naming `input` if the profile has
  // no such conversion.
  std::unique_ptr<const RowConversion> toLinear(const std::string& input) const;
  std::unique_ptr<const RowConversion> fromLinear(const std::string& input) const;

 private:
  std::vector<std::byte> bytes_;
  std::string name_;
};

// The space of a file's profile, as primaries and a curve if they describe it completely. Grey profiles get the
// primaries of Rec.709. Empty for profiles of other colour models, such as CMYK, whose pictures the reader has
// converted to RGB. Throws CommandError (file failure), naming the path, if the bytes are not a profile.
std::optional<ColourSpace> spaceOfIccProfile(std::span<const std::byte> bytes, const std::string& path);

// A profile to embed in a picture in that space; empty if the space has none. The bytes are the same every time.
std::vector<std::byte> iccProfileOf(const ColourSpace& space);

}  // namespace vantorel::cli
