// What an instance holds while it renders a frame. It is kept between frames, so that a frame need not allocate it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "host/Animation.h"
#include "host/Image.h"
#include "host/RowScheduler.h"
#include "host/WorldStore.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

class RowGuard;

constexpr int kPointParameters = 4;

struct FrameState {
  // The parameters.
  const AnimatedCorners* corners = nullptr;
  int downsample = 1;

  // The worlds.
  Depth depth = Depth::Bits8;
  PF_LayerDef input{};
  PF_LayerDef output{};
  WorldStore worlds;
  std::optional<std::int32_t> layer_checkout;  // the id under which pre-render checked the layer out

  // The rows.
  RowScheduler rows;
  RowGuard* guard = nullptr;  // watches the output in checking mode
  bool iterated = false;      // the module had rows of the output iterated

  // The parameters as they go with every command: the layer, then the points.
  std::array<PF_ParamDef, kPointParameters + 1> params{};
  std::array<PF_ParamDef*, kPointParameters + 1> param_pointers{};

  double render_seconds = 0.0;  // inside the module's commands
};

}  // namespace vantorel::host
