// Pictures of a shot's frames: which are shared, and which take over memory of others.
#include "cli/shots/PictureSource.h"

#include "PictureFiles.h"

namespace vantorel::cli {
namespace {

constexpr int kSide = 40;

// Frames 1 to 3, each of its own grey.
InputFiles greyFrames(const TestFolder& folder) {
  for (int frame = 1; frame <= 3; ++frame) {
    writeFile(folder / ("grey." + std::to_string(frame) + ".exr"), ImageSpec(kSide, kSide, 3, TypeDesc::FLOAT),
              std::vector<float>(std::size_t{3} * kSide * kSide, static_cast<float>(10 * frame) / 255.0f));
  }
  return InputFiles(FramePattern::parse("LAYER", folder / "grey.%d.exr"));
}

TEST(PictureSource, TheHeldEndOfASequenceIsReadOnce) {
  const TestFolder folder;
  InputFiles files = greyFrames(folder);
  files.endAs(SequenceEnd::Hold);
  PictureSource source(files, host::Depth::Bits8, {});
  const auto last = source.at(3, {});
  EXPECT_EQ(last, source.at(4, {}));
  EXPECT_EQ(last, source.at(100, {}));
  EXPECT_EQ(pixel8(*last, 1, 1), (std::vector{30, 30, 30, 255}));
  EXPECT_NE(source.at(2, {}), source.at(2, {}));
}

TEST(PictureSource, PicturesInMemoryOfOthersShowNothingOfThem) {
  const TestFolder folder;
  const InputFiles files = greyFrames(folder);
  // What its data window leaves of the picture is transparent.
  ImageSpec part(5, 5, 3, TypeDesc::FLOAT);
  part.full_width = part.full_height = kSide;
  writeFile(folder / "grey.2.exr", part, std::vector<float>(75, 1.0f));
  PictureSource source(files, host::Depth::Bits8, {});
  for (const int frame : {1, 3, 2, 1, 2, 3}) {
    const auto picture = source.at(frame, {});
    const int grey = frame == 2 ? 0 : 10 * frame;
    EXPECT_EQ(pixel8(*picture, kSide - 1, kSide - 1), (std::vector{grey, grey, grey, frame == 2 ? 0 : 255})) << frame;
  }
}

}  // namespace
}  // namespace vantorel::cli
