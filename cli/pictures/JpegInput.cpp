// JPEG by libjpeg: grey, YCbCr and RGB. OpenImageIO is asked for metadata as cameras write it.
#include <cstdio>

#include <jpeglib.h>
#include <sys/stat.h>

#include <array>
#include <csetjmp>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/PlainExif.h"
#include "cli/pictures/RowSpread.h"

namespace vantorel::cli {

namespace {

using namespace std::string_view_literals;

constexpr int kProfileMarker = JPEG_APP0 + 2;
constexpr int kMaxSegment = 0xFFFF;
constexpr std::string_view kExifMark = "Exif\0\0"sv;
constexpr std::string_view kProfileMark = "ICC_PROFILE\0"sv;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// libjpeg's record of a file that is read. Its warnings about the data, after which it would go on, count as faults.
class JpegReader {
 public:
  explicit JpegReader(const InputFile& file) : name_(file.name), file_(std::fopen(file.path.c_str(), "rbe")) {
    if (!file_) {
      throw unreadablePicture(name_, "Could not open file");
    }
    info_.err = jpeg_std_error(&errors_);
    errors_.error_exit = fail;
    errors_.emit_message = note;
    info_.client_data = this;
    run([&] {
      jpeg_create_decompress(&info_);
      jpeg_stdio_src(&info_, file_.get());
    });
    progress_.progress_monitor = limitScans;
    info_.progress = &progress_;
  }
  ~JpegReader() { jpeg_destroy_decompress(&info_); }
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;

  jpeg_decompress_struct& info() { return info_; }
  const jpeg_decompress_struct& info() const { return info_; }

  // Runs a step of reading, in which libjpeg may jump out: it must hold nothing that is to be destroyed.
  template <typename Step>
  void run(const Step& step) {
    if (setjmp(jump_) != 0) {
      throw unreadablePicture(name_, fault_);
    }
    step();
  }

  // Refuses a picture of several scans, for all of which libjpeg takes memory and clears it, unless the file has room
  // for it: a block takes at least a bit, but by the rare arithmetic coding.
  void requireRoomForBlocks() {
    if (jpeg_has_multiple_scans(&info_) == FALSE || info_.arith_code != FALSE) {
      return;
    }
    std::uint64_t blocks = 0;
    for (int c = 0; c < info_.num_components; ++c) {
      blocks += std::uint64_t{info_.comp_info[c].width_in_blocks} * info_.comp_info[c].height_in_blocks;
    }
    struct stat status {};
    if (fstat(fileno(file_.get()), &status) == 0 && blocks / 8 > static_cast<std::uint64_t>(status.st_size)) {
      throw unreadablePicture(name_, "its data are too short for its size");
    }
  }
  void requireNoFault() const {
    if (fault_[0] != '\0') {
      throw unreadablePicture(name_, fault_);
    }
  }

 private:
  [[noreturn]] static void fail(j_common_ptr info) {
    auto& reader = *static_cast<JpegReader*>(info->client_data);
    info->err->format_message(info, reader.fault_);
    std::longjmp(reader.jump_, 1);
  }
  // Each scan of a progressive picture goes over all of it, and takes no more than a few bytes of the file.
  static void limitScans(j_common_ptr info) {
    constexpr int kMostScans = 500;
    auto& reader = *static_cast<JpegReader*>(info->client_data);
    if (reader.info_.input_scan_number > kMostScans) {
      std::snprintf(reader.fault_, sizeof reader.fault_, "more than %d scans", kMostScans);
      std::longjmp(reader.jump_, 1);
    }
  }
  static void note(j_common_ptr info, int level) {
    auto& reader = *static_cast<JpegReader*>(info->client_data);
    if (level < 0 && reader.fault_[0] == '\0') {
      info->err->format_message(info, reader.fault_);
    }
  }

  std::string name_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  jpeg_decompress_struct info_{};
  jpeg_error_mgr errors_{};
  jpeg_progress_mgr progress_{};
  std::jmp_buf jump_{};
  char fault_[JMSG_LENGTH_MAX] = "";
};

std::string_view bytesOf(const jpeg_marker_struct& marker) {
  return {reinterpret_cast<const char*>(marker.data), marker.data_length};
}

// The profile, of which each segment holds a part: its number, the number of parts, its bytes.
void addProfile(const std::map<int, std::string_view>& parts, Metadata& metadata) {
  std::string profile;
  for (const auto& [number, part] : parts) {
    profile += part;
  }
  if (!profile.empty()) {
    const auto* bytes = reinterpret_cast<const std::byte*>(profile.data());
    metadata.set({"ICCProfile", "uint8[" + std::to_string(profile.size()) + ']', {}, {bytes, bytes + profile.size()}});
  }
}

// Adds what the segments state. Whether that is all that they hold.
bool addSegments(const jpeg_decompress_struct& info, Metadata& metadata) {
  std::map<int, std::string_view> profile;
  for (const jpeg_marker_struct* marker = info.marker_list; marker != nullptr; marker = marker->next) {
    const std::string_view bytes = bytesOf(*marker);
    if (marker->marker == kProfileMarker && bytes.starts_with(kProfileMark) && bytes.size() > kProfileMark.size() + 1) {
      profile.emplace(bytes[kProfileMark.size()], bytes.substr(kProfileMark.size() + 2));
      continue;
    }
    const auto exif = bytes.starts_with(kExifMark) ? readPlainExif(bytes.substr(kExifMark.size())) : std::nullopt;
    if (marker->marker != JPEG_APP0 + 1 || !exif) {
      return false;
    }
    for (const Attribute& attribute : exif->attributes()) {
      metadata.set(attribute);
    }
  }
  addProfile(profile, metadata);
  return true;
}

void addResolution(const jpeg_decompress_struct& info, Metadata& metadata) {
  if (info.saw_JFIF_marker == 0 || info.X_density < 2 || info.Y_density < 2) {
    return;
  }
  constexpr std::array kUnits{"none", "in", "cm"};
  const auto x = static_cast<float>(info.X_density);
  const auto y = static_cast<float>(info.Y_density);
  metadata.set(numberAttribute("XResolution", x));
  metadata.set(numberAttribute("YResolution", y));
  metadata.set(textAttribute("ResolutionUnit", kUnits[info.density_unit < kUnits.size() ? info.density_unit : 0u]));
  if (info.X_density != info.Y_density) {
    metadata.set(numberAttribute("PixelAspectRatio", y / x));
  }
}

class JpegInput : public PictureInput {
 public:
  explicit JpegInput(const InputFile& file) : file_(file) { begin(); }

  // Whether its colours are of a kind that is read here.
  bool hasKnownColours() const {
    const jpeg_decompress_struct& info = reader_->info();
    return isGrey() ||
           (info.num_components == 3 && (info.jpeg_color_space == JCS_YCbCr || info.jpeg_color_space == JCS_RGB));
  }

  // Whether everything the file says about the picture is understood here.
  bool describe() {
    const jpeg_decompress_struct& info = reader_->info();
    header_.format = "jpeg";
    header_.data = {0, 0, static_cast<int>(info.image_width), static_cast<int>(info.image_height)};
    header_.display = header_.data;
    for (const char* name : isGrey() ? std::vector{"Y"} : std::vector{"R", "G", "B"}) {
      header_.channels.push_back({name, SampleType::Bits8});
    }
    header_.metadata.set(textAttribute("oiio:ColorSpace", "sRGB"));
    addResolution(info, header_.metadata);
    return addSegments(info, header_.metadata);
  }

  // Takes over what another reader understands.
  void describeAs(const PictureHeader& header) { header_ = header; }

  const PictureHeader& header() const override { return header_; }

  void readRows(int y_begin, ChannelRange channels, const host::ImageView& rows) override {
    const bool in_place = rows.depth == host::Depth::Bits8 && channels.end - channels.first == 3;
    if (y_begin < next_row_ || (next_row_ > 0 && in_place != in_place_)) {
      begin();
    }
    if (next_row_ == 0) {
      start(in_place);
    }
    while (next_row_ < y_begin) {
      nextRow(row_.data());
    }
    for (int y = 0; y < rows.size.height; ++y) {
      if (in_place_) {
        nextRow(reinterpret_cast<JSAMPLE*>(rows.row(y)));
      } else {
        nextRow(row_.data());
        spreadRow(row_.data(), rows.size.width, static_cast<int>(header_.channels.size()), channels, rows.depth,
                  rows.row(y));
      }
    }
    reader_->requireNoFault();
  }

 private:
  // Opens the file, and reads what comes before the pixels.
  void begin() {
    reader_.emplace(file_);
    jpeg_decompress_struct& info = reader_->info();
    reader_->run([&] {
      for (const int marker : {JPEG_COM, JPEG_APP0 + 1, kProfileMarker, JPEG_APP0 + 13}) {
        jpeg_save_markers(&info, marker, kMaxSegment);
      }
      jpeg_read_header(&info, TRUE);
    });
    next_row_ = 0;
  }

  bool isGrey() const {
    const jpeg_decompress_struct& info = reader_->info();
    return info.num_components == 1 && info.jpeg_color_space == JCS_GRAYSCALE;
  }

  void start(bool in_place) {
    jpeg_decompress_struct& info = reader_->info();
    in_place_ = in_place;
    if (in_place) {
      info.out_color_space = JCS_EXT_RGBA;
    }
    reader_->requireRoomForBlocks();
    reader_->run([&] { jpeg_start_decompress(&info); });
    row_.resize(static_cast<std::size_t>(info.output_components) * info.output_width);
  }

  void nextRow(JSAMPROW row) {
    reader_->run([&] { jpeg_read_scanlines(&reader_->info(), &row, 1); });
    ++next_row_;
  }

  InputFile file_;
  std::optional<JpegReader> reader_;
  PictureHeader header_;
  int next_row_ = 0;
  bool in_place_ = false;  // libjpeg decodes into pixels of RGBA
  std::vector<JSAMPLE> row_;
};

}  // namespace

std::unique_ptr<PictureInput> openJpegInput(const InputFile& file) {
  auto input = std::make_unique<JpegInput>(file);
  if (!input->hasKnownColours()) {
    return formatLibrary().open_input(file, "");
  }
  if (!input->describe()) {
    input->describeAs(formatLibrary().open_input(file, "")->header());
  }
  return input;
}

}  // namespace vantorel::cli
