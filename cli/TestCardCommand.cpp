#include <fmt/format.h>

#include "cli/CommandError.h"
#include "cli/Commands.h"
#include "cli/ImageWriter.h"
#include "cli/Memory.h"
#include "cli/OutputFile.h"
#include "cli/SizeArgument.h"
#include "cli/TestCard.h"

namespace vantorel::cli {

ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop) {
  const ImageFormat& format = formatForOutput("--output", options.output);
  requireWritablePlace(options.output);
  OutputPicture picture;
  picture.samples = outputSamples(format, DepthChoice::Auto, SampleType::Bits8);
  const host::Depth depth = renderDepth(DepthChoice::Auto, picture.samples);
  const std::uint64_t bytes = pictureBytes(options.size, depth);
  if (const auto available = availableMemory(); available && bytes > *available / 10 * 9) {
    throw badArgument("--size", fmt::format("{} needs {} of memory and {} are free; give a smaller size",
                                            toText(options.size), memoryText(bytes), memoryText(*available)));
  }
  host::Image card = valueOrThrow(host::Image::create(options.size, depth));
  drawTestCard(card.view());
  picture.pixels = std::as_const(card).view();
  picture.window = {0, 0, options.size.width, options.size.height};
  picture.frame = options.size;
  writePicture(options.output, format, picture, stop);
  return ExitCode::Done;
}

}  // namespace vantorel::cli
