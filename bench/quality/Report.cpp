#include <fmt/format.h>

#include "bench/quality/Measurements.h"

namespace vantorel::quality {

namespace {

// The column by whose times the others are divided.
constexpr const char* kTimesColumn = "high";

// A table of the columns that have a figure in any row; empty without rows.
template <typename Figure, typename Text>
std::string table(const std::string& title, const std::vector<std::string>& columns,
                  const std::vector<Row<Figure>>& rows, const Text& text) {
  std::vector<std::string> filled;
  for (const std::string& column : columns) {
    for (const Row<Figure>& row : rows) {
      if (row.figures.contains(column)) {
        filled.push_back(column);
        break;
      }
    }
  }
  if (filled.empty()) {
    return "";
  }
  std::string out = fmt::format("| {} | {} |\n|", title, fmt::join(filled, " | "));
  for (std::size_t i = 0; i <= filled.size(); ++i) {
    out += " --- |";
  }
  out += '\n';
  for (const Row<Figure>& row : rows) {
    out += fmt::format("| {} |", row.name);
    for (const std::string& column : filled) {
      const auto found = row.figures.find(column);
      out += found == row.figures.end() ? "  |" : fmt::format(" {} |", text(row, found->second));
    }
    out += '\n';
  }
  return out + '\n';
}

std::string timeText(const Row<PictureFigure>& row, const PictureFigure& figure) {
  const auto unit = row.figures.find(kTimesColumn);
  const std::string milliseconds = fmt::format("{:.1f} ms", figure.seconds * 1000);
  return unit == row.figures.end() ? milliseconds
                                   : fmt::format("{:.2f} ({})", figure.seconds / unit->second.seconds, milliseconds);
}

template <typename Figure, typename Object>
nlohmann::json rowsOf(const std::vector<Row<Figure>>& rows, const Object& object) {
  nlohmann::json array = nlohmann::json::array();
  for (const Row<Figure>& row : rows) {
    nlohmann::json figures = nlohmann::json::object();
    for (const auto& [column, figure] : row.figures) {
      figures[column] = object(figure);
    }
    array.push_back({{"row", row.name}, {"columns", figures}});
  }
  return array;
}

bool isTimed(const Measurements& measurements) {
  return !measurements.pictures.empty() && measurements.pictures[0].figures.begin()->second.seconds > 0;
}

}  // namespace

std::string markdownOf(const Measurements& measurements) {
  const auto& columns = measurements.columns;
  std::string text = table("dB inside / on edges (largest value outside)", columns, measurements.pictures,
                           [](const auto&, const PictureFigure& figure) {
                             return fmt::format("{:.1f} / {:.1f} ({})", figure.error.inside.psnr(),
                                                figure.error.edges.psnr(), figure.error.largest_outside);
                           });
  if (isTimed(measurements)) {
    text += table(fmt::format("frame's time as a multiple of {}, one thread", kTimesColumn), columns,
                  measurements.pictures, timeText);
  }
  text += table("edges' largest displacement in pixels, white / checks", columns, measurements.placements,
                [](const auto&, const PlacementFigure& figure) {
                  return fmt::format("{:.3f} / {:.3f}", figure.white.largest, figure.checks.largest);
                });
  text += table("largest difference from true coverage in 1/255", columns, measurements.coverage,
                [](const auto&, double figure) { return fmt::format("{:.2f}", figure); });
  return text;
}

nlohmann::json jsonOf(const Measurements& measurements) {
  const auto picture = [](const PictureFigure& figure) -> nlohmann::json {
    return {{"inside_db", figure.error.inside.psnr()},
            {"edges_db", figure.error.edges.psnr()},
            {"largest_outside", figure.error.largest_outside},
            {"seconds", figure.seconds}};
  };
  const auto placement = [](const PlacementFigure& figure) -> nlohmann::json {
    return {{"white_pixels", figure.white.largest},
            {"white_edges", figure.white.edges},
            {"checks_pixels", figure.checks.largest},
            {"checks_edges", figure.checks.edges}};
  };
  return {{"columns", measurements.columns},
          {"pictures", rowsOf(measurements.pictures, picture)},
          {"placements", rowsOf(measurements.placements, placement)},
          {"coverage_255ths", rowsOf(measurements.coverage, [](double figure) { return nlohmann::json(figure); })}};
}

}  // namespace vantorel::quality
