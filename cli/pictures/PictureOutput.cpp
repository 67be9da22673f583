#include "cli/pictures/PictureOutput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/base/Text.h"
#include "cli/pictures/FormatLibrary.h"

namespace vantorel::cli {

namespace {

// A format that is written without OpenImageIO, by that library's name for it.
struct OwnOutput {
  std::string_view writer;
  decltype(&openPngOutput) open;
};

constexpr std::array kOwnOutputs{OwnOutput{"png", openPngOutput}, OwnOutput{"jpeg", openJpegOutput},
                                 OwnOutput{"openexr", openExrOutput}};

}  // namespace

void loadWriterOf(const ImageFormat& format) {
  if (std::ranges::find(kOwnOutputs, std::string_view(format.writer), &OwnOutput::writer) == kOwnOutputs.end()) {
    formatLibrary();
  }
}

std::unique_ptr<PictureOutput> openPictureOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                                 const OutputPicture& picture) {
  const auto found = std::ranges::find(kOwnOutputs, std::string_view(format.writer), &OwnOutput::writer);
  return found != kOwnOutputs.end() ? found->open(path, file, format, picture)
                                    : formatLibrary().open_output(path, file, format, picture);
}

CommandError unwritablePicture(const std::string& path, const std::string& reason) {
  return fileFailure(path, fmt::format("cannot be written ({}); make room on its disk, or try another format or size",
                                       oneLine(reason)));
}

}  // namespace vantorel::cli
