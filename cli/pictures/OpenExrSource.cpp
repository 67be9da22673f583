#include "cli/pictures/OpenExrSource.h"

#include <OpenEXR/ImfDeepScanLineInputPart.h>
#include <OpenEXR/ImfDeepScanLineOutputPart.h>
#include <OpenEXR/ImfDeepTiledInputPart.h>
#include <OpenEXR/ImfDeepTiledOutputPart.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <OpenEXR/ImfTiledInputPart.h>
#include <OpenEXR/ImfTiledOutputPart.h>

#include <array>

#include "cli/pictures/FileRecord.h"
#include "cli/pictures/OpenExrAttributes.h"

namespace vantorel::cli {

namespace {

template <typename Input, typename Output>
void copyPixels(Imf::MultiPartInputFile& from, Imf::MultiPartOutputFile& to, int part) {
  Input input(from, part);
  Output output(to, part);
  output.copyPixels(input);
}

}  // namespace

OpenExrSource::OpenExrSource(const PictureOrigin& origin) : origin_(origin), file_(origin.path.c_str()) {}

Imf::Header OpenExrSource::passedHeader(int part) const {
  const Imf::Header& passed = header(part);
  // The record of how the plate was made does not describe this file.
  const auto* software = passed.findTypedAttribute<Imf::StringAttribute>("Software");
  static constexpr std::array kRecord{"Software"};
  return software != nullptr && holdsRecord(software->value()) ? without(passed, kRecord) : passed;
}

void OpenExrSource::copyPart(int part, Imf::MultiPartOutputFile& output) {
  const std::string& type = header(part).type();
  if (type == Imf::TILEDIMAGE) {
    copyPixels<Imf::TiledInputPart, Imf::TiledOutputPart>(file_, output, part);
  } else if (type == Imf::DEEPSCANLINE) {
    copyPixels<Imf::DeepScanLineInputPart, Imf::DeepScanLineOutputPart>(file_, output, part);
  } else if (type == Imf::DEEPTILE) {
    copyPixels<Imf::DeepTiledInputPart, Imf::DeepTiledOutputPart>(file_, output, part);
  } else {
    copyPixels<Imf::InputPart, Imf::OutputPart>(file_, output, part);
  }
}

}  // namespace vantorel::cli
