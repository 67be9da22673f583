#include "tracks/formats/CsvTable.h"

#include <fmt/format.h>

#include <iterator>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::array<std::array<std::string_view, 2>, kCornerCount> kFieldNames{
    {{"ulx", "uly"}, {"urx", "ury"}, {"llx", "lly"}, {"lrx", "lry"}}};

class CsvReader {
 public:
  CsvReader(const TrackText& text, const CsvLayout& layout, TrackDocument& document)
      : lines_(text.text, text.file), layout_(layout), document_(document) {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      document.points.push_back({layout.numbered ? std::to_string(c + 1) : std::string(kCornerNames[c]), {}, false});
    }
  }

  void read() {
    std::vector<std::string_view> cells;
    while (lines_.nextContent()) {
      if (lines_.number() > layout_.header_line) {
        splitCells(lines_.text(), layout_.separator, cells);
        takeRow(cells);
      }
    }
  }

 private:
  void takeRow(const std::vector<std::string_view>& cells) {
    if (cells.size() != layout_.fields) {
      lines_.fail(
          "", fmt::format("has {} instead of {}; the columns are {}", counted(cells.size(), "field"), layout_.fields,
                          layout_.header_line != 0 ? "those of the header" : "frame,ulx,uly,urx,ury,llx,lly,lrx,lry"));
    }
    const double frame = lines_.decimal(cells[layout_.frame_field], "frame", layout_.decimalComma());
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const auto& fields = layout_.position_fields[c];
      if (cells[fields[0]].empty() && cells[fields[1]].empty()) {
        continue;  // the corner was not tracked here
      }
      PointKey key{frame, {}, lines_.number(), 0};
      key.value.x = coordinate(cells[fields[0]], c, 0, key.percent);
      key.value.y = coordinate(cells[fields[1]], c, 1, key.percent);
      document_.points[c].keys.push_back(key);
    }
  }

  double coordinate(std::string_view cell, std::size_t corner, unsigned axis, std::uint8_t& percent) const {
    if (!cell.empty() && cell.back() == '%') {
      percent = static_cast<std::uint8_t>(percent | 1u << axis);
      cell = trimmed(cell.substr(0, cell.size() - 1));
    }
    return lines_.decimal(cell, kFieldNames[corner][axis], layout_.decimalComma());
  }

  Lines lines_;
  const CsvLayout& layout_;
  TrackDocument& document_;
};

// The documented table is in pixels of the picture from its upper left; other tables do not define their conventions.
constexpr Conventions kOwn{Origin::UpperLeft, Units::Pixels, Basis::Layer, {}, 0.5, {}, {}};

void readCsv(const TrackText& text, TrackDocument& document) {
  const CsvLayout layout = csvLayout(text);
  document.conventions = layout.has_own_names ? kOwn : Conventions{};
  readCsvTable(text, layout, document);
}

void writeRows(const CornerTrack& track, const CornerList& corners, std::string& text) {
  const CoordinateText coordinate(track);
  text += "frame";
  for (const Corner corner : corners) {
    fmt::format_to(std::back_inserter(text), ",{},{}", kFieldNames[corner][0], kFieldNames[corner][1]);
  }
  text += '\n';
  for (const CornerKey& key : track.keys) {
    text += frameText(key.frame);
    for (const Corner corner : corners) {
      text += ',' + coordinate(key.points[corner].x) + ',' + coordinate(key.points[corner].y);
    }
    text += '\n';
  }
}

constexpr std::string_view kBlenderMark = "# Blender plane track";

bool sniffBlender(std::string_view text) {
  return text.substr(0, kBlenderMark.size()) == kBlenderMark;
}

void readBlender(const TrackText& text, TrackDocument& document) {
  readCsvTable(text, csvLayout(text), document);
}

void writeBlender(const CornerTrack& track, const CornerList&, std::string& text) {
  fmt::format_to(std::back_inserter(text), "{}: fractions of the frame, from the lower left\n", kBlenderMark);
  writeRows(track, {kLowerLeft, kLowerRight, kUpperRight, kUpperLeft}, text);
}

}  // namespace

void readCsvTable(const TrackText& text, const CsvLayout& layout, TrackDocument& document) {
  CsvReader(text, layout, document).read();
}

constexpr Format kCsvFormat{"csv",      "comma-separated values, the command's own or a spreadsheet's",
                            ".csv",     kOwn,
                            true,       false,
                            isCsvTable, readCsv,
                            writeRows};

constexpr Format kBlenderFormat{"blender",    "Blender plane track, as the script in the guide prints it",
                                ".csv",       {Origin::LowerLeft, Units::Fraction, Basis::Output, {}, 0.5, {}, {}},
                                false,        false,
                                sniffBlender, readBlender,
                                writeBlender};

}  // namespace vantorel::tracks
