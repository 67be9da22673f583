#include "cli/pictures/ImageWriter.h"

#include <algorithm>
#include <cstdio>

#include "cli/base/CommandError.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/KeptMetadata.h"
#include "cli/pictures/MetadataBlocks.h"
#include "cli/pictures/PictureOutput.h"

namespace vantorel::cli {

namespace {

// Rows written between two checks of the stop token; enough for OpenEXR to compress its blocks side by side.
constexpr int kRowsPerWrite = 256;

}  // namespace

void writePicture(const std::string& output_path, const ImageFormat& format, const OutputPicture& picture,
                  const std::stop_token& stop) {
  const std::string path = outputName(output_path);
  requireSizeHeld(format, path, picture.pixels.size);
  requireEncodingHeld(format, picture.encoding);
  if (picture.metadata) {
    requireMetadataHeld(format, *picture.metadata, picture.origin ? picture.origin->name : path);
  }
  loadWriterOf(format);
  OutputFile file(output_path);
  // The file outlives the output, which may write as it is destroyed.
  const std::unique_ptr<PictureOutput> output = openPictureOutput(path, file, format, picture);
  const host::ConstImageView& pixels = picture.pixels;
  const int height = pixels.size.height;
  for (int y = 0; y < height; y += std::min(kRowsPerWrite, height - y)) {
    if (stop.stop_requested()) {
      throw interrupted();
    }
    const int count = std::min(kRowsPerWrite, height - y);
    output->writeRows(y, {pixels.row(y), pixels.row_bytes, {pixels.size.width, count}, pixels.depth});
  }
  output->close();
  if (picture.metadata) {
    insertBlocks(file, format, *picture.metadata);
  }
  // Writers that bypass the stream do not report whether their last write found room.
  if (format.needs_path && !isWholePicture(file.temporaryPath(), picture.pixels.size)) {
    throw unwritablePicture(path, "it is incomplete");
  }
  file.note(std::fflush(file.stream()) == 0);
  file.note(sealRecord(file.temporaryPath()));
  file.commit();
}

}  // namespace vantorel::cli
