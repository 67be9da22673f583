#include "host/frames/FrameProtocols.h"

#include <algorithm>
#include <cstring>

#include "host/callbacks/CallbackTables.h"
#include "host/frames/WorldRow.h"
#include "host/module/ModuleCall.h"

namespace vantorel::host {

namespace {

// How far the rectangle that a module is asked about extends beyond the canvas, and how far the rows that it has to
// draw extend beyond its answer. The two protocols round their answers differently, and the border pixels of a
// magnified layer extend beyond the corners; with this margin both protocols draw the same pixels.
constexpr std::int64_t kAnswerMargin = 8;

// The wanted rows that the answer reaches, at the canvas's full width, in canvas pixels.
Rect rowsToDraw(const Rect& answer, const Rect& canvas, const RowRange& wanted) {
  const auto reach = [](std::int64_t begin, std::int64_t end, std::int64_t low, std::int64_t high) {
    return std::pair(std::max(begin - kAnswerMargin, low), std::min(end + kAnswerMargin, high));
  };
  if (answer.empty()) {
    return {};
  }
  const auto [left, right] = reach(answer.left, answer.right, canvas.left, canvas.right);
  const auto [top, bottom] =
      reach(answer.top, answer.bottom, std::int64_t{canvas.top} + wanted.begin, std::int64_t{canvas.top} + wanted.end);
  if (left >= right || top >= bottom) {
    return {};
  }
  return {0, static_cast<int>(top - canvas.top), canvas.width(), static_cast<int>(bottom - canvas.top)};
}

Rect widened(const Rect& rect) {
  constexpr int kMargin = static_cast<int>(kAnswerMargin);
  return {rect.left - kMargin, rect.top - kMargin, rect.right + kMargin, rect.bottom + kMargin};
}

void clearRows(const PF_LayerDef& world, Depth depth, int top, int bottom) {
  const std::size_t row_bytes = rowPixelBytes(world, depth);
  for (int y = top; y < bottom; ++y) {
    std::memset(worldRow<std::byte>(world, y), 0, row_bytes);
  }
}

// Clears the wanted rows that the module need not draw, and sets the extent hint to the others.
void prepareOutput(FrameState& frame, const Rect& rows, const RowRange& wanted) {
  const int top = rows.empty() ? wanted.end : rows.top;
  clearRows(frame.output, frame.depth, wanted.begin, top);
  clearRows(frame.output, frame.depth, std::max(top, rows.bottom), wanted.end);
  frame.output.extent_hint = M_LRect(rows.left, rows.top, rows.right, rows.bottom);
  if (frame.guard) {
    clearRows(frame.output, frame.depth, rows.top, rows.bottom);
    frame.guard->remember();
  }
}

Result<Rect> askPreRender(const FrameJob& job, const Rect& asked) {
  job.frame.layer_checkout.reset();
  PF_RenderRequest request{};
  request.rect = M_LRect(asked.left, asked.top, asked.right, asked.bottom);
  PF_PreRenderResult answer{};
  PF_PreRenderExtra extra{&request, &answer, preRenderCallbacks()};
  ModuleCall call(job.module, &job.frame);
  call.setFrame(job.layer_size, job.options);
  return call.run(CMD_PRE_RENDER, job.frame.param_pointers.data(), nullptr, &extra).map([&] {
    const M_LRect& rect = answer.result_rect;
    return Rect{rect.left, rect.top, rect.right, rect.bottom};
  });
}

Result<void> render(const FrameJob& job, const Rect& canvas) {
  ModuleCall call(job.module, &job.frame);
  call.setFrame(job.layer_size, job.options);
  call.in.output_origin_x = -canvas.left;
  call.in.output_origin_y = -canvas.top;
  PF_SmartRenderExtra extra{smartRenderCallbacks()};
  const bool smart = job.options.protocol == Protocol::Smart;
  Result<void> done = smart ? call.run(CMD_SMART_RENDER, job.frame.param_pointers.data(), nullptr, &extra)
                            : call.run(CMD_RENDER, job.frame.param_pointers.data(), &job.frame.output, nullptr);
  if (done && job.frame.guard) {
    CallLedger ledger;
    job.frame.guard->finish(job.frame.iterated, ledger);
    if (!ledger.misuse().empty()) {
      return failure(ErrorKind::Misuse, smart ? "smart render" : "render", ledger.misuse());
    }
  }
  return done;
}

}  // namespace

Result<Rect> askFrameSetup(const FrameJob& job, const Rect& hint) {
  PF_LayerDef output{};
  output.extent_hint = M_LRect(hint.left, hint.top, hint.right, hint.bottom);
  ModuleCall call(job.module, &job.frame);
  call.setFrame(job.layer_size, job.options);
  return call.run(CMD_FRAME_SETUP, job.frame.param_pointers.data(), &output, nullptr).map([&] {
    const auto bounded = [](std::int64_t value) {
      return static_cast<int>(std::clamp<std::int64_t>(value, -(1 << 30), 1 << 30));
    };
    const std::int64_t left = -std::int64_t{call.out.origin_x};
    const std::int64_t top = -std::int64_t{call.out.origin_y};
    return Rect{bounded(left), bounded(top), bounded(left + call.out.width), bounded(top + call.out.height)};
  });
}

Result<Rect> drawFrame(const FrameJob& job, const Rect& canvas) {
  return drawRows(job, canvas, {0, canvas.height()});
}

Result<Rect> drawRows(const FrameJob& job, const Rect& canvas, const RowRange& wanted) {
  const Rect asked = widened(canvas);
  Result<Rect> answer = job.options.protocol == Protocol::Smart ? askPreRender(job, asked) : askFrameSetup(job, asked);
  if (!answer) {
    return answer;
  }
  const Rect rows = rowsToDraw(*answer, canvas, wanted);
  prepareOutput(job.frame, rows, wanted);
  if (rows.empty()) {
    return rows;
  }
  return render(job, canvas).map([&] { return rows; });
}

}  // namespace vantorel::host
