// Tables of corners written by spreadsheets and scripts.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "tracks/CornerTrack.h"
#include "tracks/Format.h"

namespace vantorel::tracks {

// The layout of a table's lines.
struct CsvLayout {
  char separator = ',';           // a space stands for any run of blanks and tabs
  std::uint32_t header_line = 0;  // from 1; 0 if there is no header
  bool has_own_names = true;      // the header has the documented names, or there is no header
  bool numbered = false;          // the columns have point numbers rather than corner names
  std::size_t fields = 9;
  std::size_t frame_field = 0;
  std::array<std::array<std::size_t, 2>, kCornerCount> position_fields{{{1, 2}, {3, 4}, {5, 6}, {7, 8}}};

  bool decimalComma() const { return separator != ','; }
};

// Splits a line at the separator, removes quotes, and stops at a '#' outside quotes.
void splitCells(std::string_view line, char separator, std::vector<std::string_view>& cells);

// Detects the layout from the text's first lines. Throws ReadFault for a header that lacks a column or has one twice.
CsvLayout csvLayout(const TrackText& text);

// Whether the text's first lines look like such a table.
bool isCsvTable(std::string_view text);

// Adds four points with the positions in the table's rows.
void readCsvTable(const TrackText& text, const CsvLayout& layout, TrackDocument& document);

}  // namespace vantorel::tracks
