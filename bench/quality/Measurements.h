// Everything that is measured, and how it is reported.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bench/quality/EdgePlacement.h"
#include "bench/quality/Psnr.h"
#include "bench/quality/Renderer.h"
#include "bench/quality/TruthCache.h"

namespace vantorel::quality {

// Figures by column; a column without one was not measured in that row.
template <typename Figure>
struct Row {
  std::string name;
  std::map<std::string, Figure> figures;
};

struct PictureFigure {
  PictureError error;
  double seconds = 0;  // a frame's, on one thread; 0 when not timed
};

struct PlacementFigure {
  EdgePlacement white;
  EdgePlacement checks;
};

struct Measurements {
  std::vector<std::string> columns;
  std::vector<Row<PictureFigure>> pictures;
  std::vector<Row<PlacementFigure>> placements;
  std::vector<Row<double>> coverage;  // the largest difference from the true coverage, in 1/255
};

struct Selection {
  std::string row;  // rows whose name contains this
  bool times = true;
};

Measurements measure(const std::vector<Renderer>& renderers, const TruthCache& truths, const Selection& selection);

std::string markdownOf(const Measurements& measurements);
nlohmann::json jsonOf(const Measurements& measurements);

}  // namespace vantorel::quality
