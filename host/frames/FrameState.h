// What an instance holds while it renders a frame. It is kept between frames, so that a frame need not allocate it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "host/Animation.h"
#include "host/Image.h"
#include "host/checking/RowGuard.h"
#include "host/frames/RowScheduler.h"
#include "host/frames/WorldStore.h"
#include "host/sampling/SampleSpace.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

struct FrameState {
  // The parameters.
  const AnimatedCorners* corners = nullptr;
  const AnimatedCorners* source = nullptr;  // what of the layer goes onto the corners; null for all of it
  int downsample = 1;
  // What the module receives instead, at whatever time, in pixels of the frame's resolution.
  std::optional<Corners> placed;
  SampleSpace space = SampleSpace::Centres;

  // The worlds.
  Depth depth = Depth::Bits8;
  PF_LayerDef input{};
  PF_LayerDef output{};
  WorldStore worlds;
  std::optional<std::int32_t> layer_checkout;  // the id under which pre-render checked the layer out

  // The rows.
  RowScheduler rows;
  std::optional<RowGuard> guard;  // holds and watches the output in checking mode
  bool iterated = false;          // the module had rows of the output iterated

  // The parameters as they go with every command: the layer, then the points.
  std::array<PF_ParamDef, kCornerCount + 1> params{};
  std::array<PF_ParamDef*, kCornerCount + 1> param_pointers{};

  double render_seconds = 0.0;  // inside the module's commands

  // What is kept from frame to frame.
  Image scaled_layer;  // the layer, where a module cannot be given the caller's
  Image retry_canvas;  // a larger canvas, for the rare frame whose own canvas allows no map
};

}  // namespace vantorel::host
