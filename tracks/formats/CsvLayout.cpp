#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "tracks/CornerNames.h"
#include "tracks/formats/Common.h"
#include "tracks/formats/CsvTable.h"

namespace vantorel::tracks {

namespace {

constexpr std::ptrdiff_t kColumnCount = 9;
constexpr const char* kColumnList = "frame,ulx,uly,urx,ury,llx,lly,lrx,lry";
constexpr std::size_t kNoField = static_cast<std::size_t>(-1);

bool isCoordinateOrFrame(std::string_view name) {
  return isFrameColumn(name) || coordinateOfColumn(name).has_value();
}

// Whether the cell holds a number, possibly with a decimal comma or a percent sign.
bool isNumericCell(std::string_view cell) {
  return !cell.empty() && cell.find_first_not_of("+-.,0123456789eE% ") == std::string_view::npos;
}

bool hasInnerBlank(std::string_view cell) {
  return cell.find_first_of(" \t") != std::string_view::npos;
}

// The first candidate that splits the line into a complete row, else the one that gives the most cells.
char separatorOf(std::string_view line) {
  std::vector<std::string_view> cells;
  char best = ',';
  std::size_t most = 0;
  for (const char candidate : {'\t', ';', ',', ' '}) {
    splitCells(line, candidate, cells);
    const bool whole = std::ssize(cells) >= kColumnCount && std::none_of(cells.begin(), cells.end(), hasInnerBlank);
    if (whole) {
      return candidate;
    }
    if (cells.size() > most) {
      most = cells.size();
      best = candidate;
    }
  }
  return best;
}

// A header may be commented out.
std::string_view headerText(std::string_view line) {
  return trimmed(!line.empty() && line.front() == '#' ? line.substr(1) : line);
}

struct FirstRows {
  std::string_view header;  // the first line that names columns, without the comment sign; empty if there is none
  std::uint32_t header_line = 0;
  std::string_view row;  // the first line with a number in it
};

bool namesColumns(std::string_view line, std::ptrdiff_t least) {
  std::vector<std::string_view> cells;
  for (const char separator : {'\t', ';', ',', ' '}) {
    splitCells(line, separator, cells);
    if (std::count_if(cells.begin(), cells.end(), isCoordinateOrFrame) >= least) {
      return true;
    }
  }
  return false;
}

FirstRows firstRows(const TrackText& text) {
  FirstRows rows;
  Lines lines(text.text, text.file);
  while (rows.row.empty() && lines.nextContent("")) {
    const bool is_comment = lines.text().front() == '#';
    // A comment counts as a header only if it names all columns.
    if (rows.header.empty() && namesColumns(headerText(lines.text()), is_comment ? kColumnCount : 1)) {
      rows.header = headerText(lines.text());
      rows.header_line = lines.number();
    } else if (!is_comment) {
      rows.row = lines.text();
    }
  }
  return rows;
}

class HeaderReader {
 public:
  HeaderReader(const TrackText& text, const FirstRows& rows) : text_(text), line_(rows.header_line) {}

  void read(const std::vector<std::string_view>& cells, CsvLayout& layout) {
    layout.fields = cells.size();
    layout.frame_field = kNoField;
    for (auto& fields : layout.position_fields) {
      fields.fill(kNoField);
    }
    const std::size_t first_number = firstNumber(cells);
    for (std::size_t f = 0; f < cells.size(); ++f) {
      const std::string_view cell = cells[f];
      if (isFrameColumn(cell)) {
        take(layout.frame_field, f, cell);
      } else if (const auto column = coordinateOfColumn(cell)) {
        const std::size_t point = column->numbered ? column->point - first_number : column->point;
        layout.numbered = layout.numbered || column->numbered;
        if (point < kCornerCount) {
          take(layout.position_fields[point][column->is_y ? 1 : 0], f, cell);
        }
      }
    }
    requireAll(layout);
    layout.has_own_names = std::all_of(cells.begin(), cells.end(), [](std::string_view cell) {
      return !isCoordinateOrFrame(cell) || std::string_view(kColumnList).find(cell) != std::string_view::npos;
    });
  }

 private:
  // Points may be numbered from 0 or from 1.
  static std::size_t firstNumber(const std::vector<std::string_view>& cells) {
    for (const std::string_view cell : cells) {
      const auto column = coordinateOfColumn(cell);
      if (column && column->numbered && column->point == 0) {
        return 0;
      }
    }
    return 1;
  }

  void take(std::size_t& field, std::size_t found, std::string_view name) const {
    if (field != kNoField) {
      fail(text_.file, line_, "", fmt::format("the column {} appears twice; keep one", quoted(name)));
    }
    field = found;
  }

  void require(std::size_t field, const std::string& name) const {
    if (field == kNoField) {
      fail(text_.file, line_, "", fmt::format("the column '{}' is missing; the columns are {}", name, kColumnList));
    }
  }

  void requireAll(const CsvLayout& layout) const {
    require(layout.frame_field, "frame");
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      for (std::size_t axis = 0; axis < 2; ++axis) {
        const char letter = axis == 0 ? 'x' : 'y';
        require(layout.position_fields[c][axis],
                layout.numbered ? fmt::format("{}{}", letter, c + 1) : fmt::format("{}{}", kCornerNames[c], letter));
      }
    }
  }

  const TrackText& text_;
  std::uint32_t line_;
};

}  // namespace

void splitCells(std::string_view line, char separator, std::vector<std::string_view>& cells) {
  cells.clear();
  if (separator == ' ') {
    splitWords(line.substr(0, line.find('#')), cells);
    return;
  }
  const auto end_of_cell = [&](std::size_t from) {
    while (from < line.size() && line[from] != separator && line[from] != '#') {
      ++from;
    }
    return from;
  };
  while (true) {
    line.remove_prefix(std::min(line.find_first_not_of(separator == '\t' ? " " : " \t"), line.size()));
    std::size_t end = 0;
    if (!line.empty() && line.front() == '"') {
      const std::size_t closing = std::min(line.find('"', 1), line.size());
      cells.push_back(line.substr(1, closing - 1));
      end = end_of_cell(closing);
    } else {
      end = end_of_cell(0);
      cells.push_back(trimmed(line.substr(0, end)));
    }
    if (end == line.size() || line[end] == '#') {
      return;
    }
    line.remove_prefix(end + 1);
  }
}

CsvLayout csvLayout(const TrackText& text) {
  const FirstRows rows = firstRows(text);
  CsvLayout layout;
  layout.separator = separatorOf(rows.row.empty() ? rows.header : rows.row);
  if (rows.header.empty()) {
    return layout;
  }
  std::vector<std::string_view> cells;
  splitCells(rows.header, layout.separator, cells);
  layout.header_line = rows.header_line;
  HeaderReader(text, rows).read(cells, layout);
  return layout;
}

bool isCsvTable(std::string_view text) {
  const FirstRows rows = firstRows({text, "", {}});
  std::vector<std::string_view> cells;
  if (!rows.header.empty()) {
    return namesColumns(rows.header, kColumnCount - 1);
  }
  splitCells(rows.row, separatorOf(rows.row), cells);
  // A few bad cells still make a table: the reader then reports them.
  return std::ssize(cells) == kColumnCount &&
         std::count_if(cells.begin(), cells.end(), isNumericCell) > kColumnCount / 2;
}

}  // namespace vantorel::tracks
