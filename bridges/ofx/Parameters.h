// The effect's parameters: their definition, and their values at a time.
#pragma once

#include <array>
#include <optional>

#include "bridges/ofx/Properties.h"
#include "host/Animation.h"
#include "host/Frame.h"

namespace vantorel::ofx {

// Defines them on a descriptor's set.
void defineParameters(ParamSet set);

// How the user sees a corner named, or a from-corner: in the order of host::kCornerNames.
const char* cornerLabel(bool from, std::size_t index);

// Where normalised positions lie: the project's frame, in canonical coordinates.
struct Project {
  PointD offset;
  PointD size;

  RectD frame() const { return {offset.x, offset.y, offset.x + size.x, offset.y + size.y}; }
};

struct ParameterValues {
  host::Corners corners;              // canonical, y up
  std::optional<host::Corners> from;  // canonical, where a part of the source goes onto the corners
  host::Quality quality = host::Quality::Best;
  std::optional<host::Edges> edges;
  int samples = 0;
  double opacity = 1.0;  // 0 to 1
};

// The parameters of an instance. They are the host's; this holds their handles.
class Parameters {
 public:
  // Throws a Fault where the host does not know one.
  explicit Parameters(ParamSet set);

  // From any thread that the host renders on. What the host does not tell has its default.
  ParameterValues at(Time time, const Project& project) const;

  // Corner `index` of the corners or of the from-corners, in the order of host::kCornerNames, canonical.
  PointD corner(bool from, std::size_t index, Time time, const Project& project) const;
  bool usesFrom(Time time) const;

  // From the main thread, where the host lets values be set. The edit is one step of the host's undo.
  void setCorner(bool from, std::size_t index, const PointD& value) const;
  void beginEdit(const char* label) const;
  void endEdit() const;

 private:
  int choice(ParamHandle handle, Time time, int fallback, int count) const;

  ParamSet set_;
  std::array<ParamHandle, host::kCornerCount> corners_{};
  std::array<ParamHandle, host::kCornerCount> from_{};
  ParamHandle use_from_ = nullptr;
  ParamHandle quality_ = nullptr;
  ParamHandle edges_ = nullptr;
  ParamHandle samples_ = nullptr;
  ParamHandle opacity_ = nullptr;
};

}  // namespace vantorel::ofx
