// Fuzzes the command's reader of pictures with files of every format; the first byte chooses the name's ending and the
// depth. A file is read whole, or refused by an error in one line that names it.
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "cli/base/CommandError.h"
#include "cli/pictures/ImageReader.h"
#include "fuzz/Input.h"

namespace {

using namespace vantorel;
using vantorel::fuzz::Input;
using vantorel::fuzz::require;

constexpr const char* kEndings[] = {".png", ".jpg", ".tif", ".exr", ".dpx"};

// A folder of this process's own, for as long as it runs.
class OwnFolder {
 public:
  OwnFolder() : path_(std::filesystem::temp_directory_path() / ("vantorel-fuzz-" + std::to_string(::getpid()))) {
    // Limits what a file may claim, so that no input takes long because it is large.
    ::setenv("VANTOREL_MAX_MEGAPIXELS", "0.5", 1);
    std::filesystem::create_directories(path_);
  }
  ~OwnFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

const std::filesystem::path& ownFolder() {
  static const OwnFolder kFolder;
  return kFolder.path();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const int choice = input.inRange(0, 14);
  const std::string path = (ownFolder() / (std::string("a") + kEndings[choice % 5])).string();
  std::ofstream(path, std::ios::binary) << input.rest();
  try {
    const cli::Picture picture = cli::readPicture(path, static_cast<host::Depth>(8 << choice / 5), {});
    require(picture.pixels.size() == picture.info.size, "a picture has the size that its file states");
    // Every byte can be read.
    const host::ConstImageView view = picture.pixels.view();
    std::uint8_t all = 0;
    for (int y = 0; y < view.size.height; ++y) {
      for (int x = 0; x < view.size.width; ++x) {
        all |= static_cast<std::uint8_t>(*view.pixel(x, y));
      }
    }
    volatile std::uint8_t used = all;
    (void)used;
  } catch (const cli::CommandError& error) {
    require(error.text().find(path) == 0 && error.text().find('\n') == std::string::npos,
            "an error names the file, in one line");
  }
  return 0;
}
