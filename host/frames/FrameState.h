// An instance's state while it renders a frame. It is kept between frames to avoid allocations.
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
  const AnimatedCorners* source = nullptr;  // the part of the layer that is drawn onto the corners; null for all of it
  int downsample = 1;
  // If set, the corners that the module receives instead, at any time, in pixels of the frame's resolution.
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

  // The parameter records that are passed with every command: the layer, then the points.
  std::array<PF_ParamDef, kCornerCount + 1> params{};
  std::array<PF_ParamDef*, kCornerCount + 1> param_pointers{};

  double render_seconds = 0.0;  // inside the module's commands

  // What is kept from frame to frame.
  Image scaled_layer;  // a copy of the layer, if the module cannot use the caller's
  Image retry_canvas;  // the larger canvas for DegenerateMapRetry
};

}  // namespace vantorel::host
