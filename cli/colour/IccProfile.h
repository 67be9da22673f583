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

// An RGB profile that curves and primaries do not describe: one with tables, say.
class IccProfile {
 public:
  IccProfile(std::span<const std::byte> bytes, std::string name);

  const std::vector<std::byte>& bytes() const { return bytes_; }
  std::uint64_t hash() const;

  // To and from linear Rec.709, relative colorimetric. Throw CommandError naming `input` where the profile does not
  // tell how.
  std::unique_ptr<const RowConversion> toLinear(const std::string& input) const;
  std::unique_ptr<const RowConversion> fromLinear(const std::string& input) const;

 private:
  std::vector<std::byte> bytes_;
  std::string name_;
};

// The space that a file's profile states: by its primaries and curve where they say it all. Grey profiles have the
// primaries of Rec.709. Nothing for profiles of other kinds of colour, such as CMYK, whose pictures have been made RGB
// by their reader. Throws CommandError (file failure) naming the path for bytes that are no profile.
std::optional<ColourSpace> spaceOfIccProfile(std::span<const std::byte> bytes, const std::string& path);

// A profile to write beside a picture in that space; empty for those that have none. The same bytes every time.
std::vector<std::byte> iccProfileOf(const ColourSpace& space);

}  // namespace vantorel::cli
