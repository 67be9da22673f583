// Tables of corners as spreadsheets and scripts write them.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "tracks/CornerTrack.h"
#include "tracks/Format.h"

namespace vantorel::tracks {

// How a table's lines are laid out.
struct CsvLayout {
  char separator = ',';           // a space stands for any run of blanks and tabs
  std::uint32_t header_line = 0;  // from 1; 0 where there is no header
  bool has_own_names = true;      // the header's names are the documented ones, or there is none
  bool numbered = false;          // the points have numbers rather than corners' names
  std::size_t fields = 9;
  std::size_t frame_field = 0;
  std::array<std::array<std::size_t, 2>, kCornerCount> position_fields{{{1, 2}, {3, 4}, {5, 6}, {7, 8}}};

  bool decimalComma() const { return separator != ','; }
};

// Splits a line at the separator, takes quotes off and ends it at a '#' outside quotes.
void splitCells(std::string_view line, char separator, std::vector<std::string_view>& cells);

// The layout of the text, by its first lines. Throws ReadFault for a header that lacks a column or has one twice.
CsvLayout csvLayout(const TrackText& text);

// Whether the text's first lines make such a table.
bool isCsvTable(std::string_view text);

// Adds four points with the table's rows.
void readCsvTable(const TrackText& text, const CsvLayout& layout, TrackDocument& document);

}  // namespace vantorel::tracks
