#include "cli/pictures/PictureInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

#include "cli/base/Text.h"
#include "cli/pictures/FormatLibrary.h"

namespace vantorel::cli {

namespace {

using namespace std::string_view_literals;

// A format of one picture a file that is read without OpenImageIO, known by its first bytes.
struct OwnInput {
  std::string_view signature;
  std::unique_ptr<PictureInput> (*open)(const InputFile& file);
};

constexpr std::array kOwnInputs{OwnInput{"\x89PNG\r\n\x1A\n"sv, openPngInput},
                                OwnInput{"\xFF\xD8\xFF"sv, openJpegInput}};

// Of the formats that are read here, the one with parts.
constexpr std::string_view kOpenExrSignature = "\x76\x2F\x31\x01"sv;

// Empty where the file cannot be read; OpenImageIO says why.
std::string signatureOf(const std::string& path) {
  constexpr std::size_t kLongest = 8;
  std::string signature(kLongest, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(signature.data(), static_cast<std::streamsize>(kLongest));
  signature.resize(static_cast<std::size_t>(file.gcount()));
  return signature;
}

}  // namespace

CommandError unreadablePicture(const std::string& path, const std::string& reason) {
  return fileFailure(path, fmt::format("cannot be read as a picture ({}); give a whole PNG, JPEG, TIFF, OpenEXR or DPX "
                                       "file",
                                       oneLine(reason)));
}

std::unique_ptr<PictureInput> openPictureInput(const InputFile& file, const std::string& part) {
  const std::string signature = signatureOf(file.path);
  if (signature.starts_with(kOpenExrSignature)) {
    return openExrInput(file, part);
  }
  const auto found =
      std::ranges::find_if(kOwnInputs, [&](const OwnInput& own) { return signature.starts_with(own.signature); });
  return found != kOwnInputs.end() && part.empty() ? found->open(file) : formatLibrary().open_input(file, part);
}

}  // namespace vantorel::cli
