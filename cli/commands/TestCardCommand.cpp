#include <fmt/format.h>

#include "cli/base/CommandError.h"
#include "cli/base/Memory.h"
#include "cli/base/Text.h"
#include "cli/colour/ColourProcessor.h"
#include "cli/commands/Commands.h"
#include "cli/pictures/ImageWriter.h"
#include "cli/pictures/OutputFile.h"
#include "cli/pictures/TestCard.h"

namespace vantorel::cli {

ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop) {
  const ImageFormat& format = chosenFormat(options.output, options.format);
  requireWritablePlace(options.output);
  OutputPicture picture;
  picture.samples = outputSamples(format, DepthChoice::Auto, SampleType::Bits8);
  const host::Depth depth = renderDepth(DepthChoice::Auto, picture.samples);
  if (const auto shortage = memoryShortage(pictureBytes(options.size, depth))) {
    throw outOfMemory("--size", fmt::format("{} {}; give a smaller size", toText(options.size), *shortage));
  }
  host::Image card = valueOrThrow(host::Image::create(options.size, depth));
  drawTestCard(card.view());
  if (format.linear_light) {
    convert(card.view(), makeProcessor(srgb(), linearRec709(), options.output));
  }
  picture.pixels = std::as_const(card).view();
  picture.window = {0, 0, options.size.width, options.size.height};
  picture.frame = options.size;
  writePicture(options.output, format, picture, stop);
  return ExitCode::Done;
}

}  // namespace vantorel::cli
