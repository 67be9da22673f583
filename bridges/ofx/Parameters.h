// The effect's parameters: how they are defined, and their values at a time.
#pragma once

#include <array>
#include <optional>

#include "bridges/ofx/Properties.h"
#include "host/Animation.h"
#include "host/Frame.h"

namespace vantorel::ofx {

// Defines them on a descriptor's set.
void defineParameters(ParamSet set);

// The name of a corner or from-corner in the user interface. Corners are in the order of host::kCornerNames.
const char* cornerLabel(bool from, std::size_t index);

// The project's frame in canonical coordinates; normalised positions are relative to it.
struct Project {
  PointD offset;
  PointD size;

  RectD frame() const { return {offset.x, offset.y, offset.x + size.x, offset.y + size.y}; }
};

struct ParameterValues {
  host::Corners corners;              // canonical, y up
  std::optional<host::Corners> from;  // canonical; set if only this part of the source is drawn
  host::Quality quality = host::Quality::Best;
  std::optional<host::Edges> edges;
  int samples = 0;
  double opacity = 1.0;  // 0 to 1
};

// The parameters of an instance: handles to the values, which the host keeps.
class Parameters {
 public:
  // Throws a Fault if the host does not know one of them.
  explicit Parameters(ParamSet set);

  // From any thread. A value that the host does not provide is the default. A Fault for a corner that is not a number.
  ParameterValues at(Time time, const Project& project) const;

  // A corner or from-corner in canonical coordinates.
  PointD corner(bool from, std::size_t index, Time time, const Project& project) const;
  bool usesFrom(Time time) const;

  // Only from the main thread, in actions that may set values. An edit is one step in the host's undo history.
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
