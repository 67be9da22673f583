#include "bridges/ofx/Interact.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

#include "bridges/ofx/Effect.h"
#include "bridges/ofx/Geometry.h"
#include "bridges/ofx/Handles.h"
#include "bridges/ofx/Names.h"
#include "bridges/ofx/OverlayPainter.h"
#include "bridges/ofx/Registry.h"

namespace vantorel::ofx {
namespace {

constexpr Colour kPlain{0.95F, 0.85F, 0.25F, 1.0F};
constexpr Colour kFrom{0.35F, 0.75F, 0.95F, 1.0F};
constexpr Colour kHeld{1.0F, 1.0F, 1.0F, 1.0F};
constexpr Colour kDegenerate{0.95F, 0.3F, 0.25F, 1.0F};

// Keys as the interface numbers them: X11's keysyms.
constexpr int kLeft = 0xFF51;
constexpr int kUp = 0xFF52;
constexpr int kRight = 0xFF53;
constexpr int kDown = 0xFF54;
constexpr int kShiftLeft = 0xFFE1;
constexpr int kShiftRight = 0xFFE2;
constexpr double kShiftedStep = 10.0;

// The state of one overlay, which several viewers may show. Only the main thread calls it.
struct Overlay {
  std::optional<Grip> held;  // while the pen is down, in an edit of this effect's parameters
  EffectHandle effect = nullptr;
  Grip chosen;           // what the arrow keys move: whatever was held last
  bool is_from = false;  // whether that is part of the from-corners
  PointD grabbed_at;
  Quad at_grab;
  bool is_shift_down = false;
};

Registry<const void*, Overlay> overlays;

// Created on first use, for hosts that leave out the create action.
std::shared_ptr<Overlay> overlayOf(const void* handle) {
  std::shared_ptr<Overlay> overlay = overlays.find(handle);
  if (overlay == nullptr) {
    overlay = std::make_shared<Overlay>();
    overlays.put(handle, overlay);
  }
  return overlay;
}

// The arguments of an action.
struct Event {
  const Effect& effect;
  Properties in;
  Time time;

  Quad quad(bool from) const {
    const Project project = effect.project(time);
    Quad quad;
    for (std::size_t i = 0; i < quad.size(); ++i) {
      quad[i] = effect.parameters().corner(from, i, time, project);
    }
    return quad;
  }
  PointD screenPixel() const {
    const PointD scale = in.point("OfxInteractPropPixelScale").value_or(PointD{1.0, 1.0});
    return isScale(scale.x) && isScale(scale.y) ? scale : PointD{1.0, 1.0};
  }
  PointD pen() const {
    const PointD position = required(in.point("OfxInteractPropPenPosition"), "OfxInteractPropPenPosition");
    check(isFinite(position) ? Status::Ok : Status::BadValue, "OfxInteractPropPenPosition");
    return position;
  }
};

void drawQuad(const Event& event, const Overlay& overlay, bool from, OverlayPainter* painter) {
  const Quad quad = event.quad(from);
  const PointD pixel = event.screenPixel();
  const char* const degeneracy = degeneracyOf(quad);
  const Colour& colour = degeneracy != nullptr ? kDegenerate : from ? kFrom : kPlain;
  painter->setColour(colour);
  const Quad ring{quad[kRing[0]], quad[kRing[1]], quad[kRing[2]], quad[kRing[3]]};
  painter->loop(ring);
  for (std::size_t i = 0; i < quad.size(); ++i) {
    painter->setColour(overlay.held && overlay.is_from == from && overlay.held->moves[i] ? kHeld : colour);
    painter->filledBox(quad[i], kHandleRadius / 2.0 * pixel.x, kHandleRadius / 2.0 * pixel.y);
  }
  if (degeneracy != nullptr) {
    painter->setColour(kDegenerate);
    painter->text(degeneracy, {quad[0].x + kHandleRadius * pixel.x, quad[0].y + kHandleRadius * pixel.y}, pixel);
  }
}

Status draw(const Event& event, const Overlay& overlay) {
  OverlayPainter painter(static_cast<DrawContext>(event.in.pointer("OfxInteractPropDrawContext")));
  for (const bool from : {false, true}) {
    try {
      if (!from || event.effect.parameters().usesFrom(event.time)) {
        drawQuad(event, overlay, from, &painter);
      }
    } catch (const Fault&) {
      continue;  // corners that are not numbers cannot be shown, and hosts may drop an overlay that fails
    }
  }
  return Status::Ok;
}

Status penDown(const Event& event, Overlay* overlay) {
  const PointD pen = event.pen();
  const bool shows_from = event.effect.parameters().usesFrom(event.time);
  // The from-corners are drawn last and therefore on top.
  for (const bool from : {true, false}) {
    if (from && !shows_from) {
      continue;
    }
    const Quad quad = event.quad(from);
    if (const std::optional<Grip> grip = gripAt(quad, pen, event.screenPixel())) {
      overlay->held = grip;
      overlay->effect = event.effect.handle();
      overlay->chosen = *grip;
      overlay->is_from = from;
      overlay->grabbed_at = pen;
      overlay->at_grab = quad;
      event.effect.parameters().beginEdit("Move corners");
      return Status::Ok;
    }
  }
  return Status::ReplyDefault;
}

void moveBy(const Event& event, const Grip& grip, bool from, const Quad& start, const PointD& by) {
  for (std::size_t i = 0; i < start.size(); ++i) {
    if (grip.moves[i]) {
      event.effect.parameters().setCorner(from, i, {start[i].x + by.x, start[i].y + by.y});
    }
  }
}

Status penMotion(const Event& event, const Overlay& overlay) {
  if (!overlay.held) {
    return Status::ReplyDefault;
  }
  const PointD pen = event.pen();
  moveBy(event, *overlay.held, overlay.is_from, overlay.at_grab,
         {pen.x - overlay.grabbed_at.x, pen.y - overlay.grabbed_at.y});
  return Status::Ok;
}

Status release(const Event& event, Overlay* overlay) {
  if (!overlay->held) {
    return Status::ReplyDefault;
  }
  overlay->held.reset();
  event.effect.parameters().endEdit();
  return Status::Ok;
}

Status penUp(const Event& event, Overlay* overlay) {
  if (overlay->held) {
    try {
      penMotion(event, *overlay);
    } catch (const Fault&) {
      release(event, overlay);
      throw;
    }
  }
  return release(event, overlay);
}

Status key(const Event& event, Overlay* overlay, bool is_down) {
  const int symbol = event.in.integer("kOfxPropKeySym").value_or(0);
  if (symbol == kShiftLeft || symbol == kShiftRight) {
    overlay->is_shift_down = is_down;
    return Status::ReplyDefault;
  }
  const double step = overlay->is_shift_down ? kShiftedStep : 1.0;
  const PointD by{symbol == kLeft    ? -step
                  : symbol == kRight ? step
                                     : 0.0,
                  symbol == kDown ? -step
                  : symbol == kUp ? step
                                  : 0.0};
  if (!is_down || overlay->chosen == Grip{} || (by.x == 0.0 && by.y == 0.0)) {
    return Status::ReplyDefault;
  }
  event.effect.parameters().beginEdit("Nudge corners");
  try {
    moveBy(event, overlay->chosen, overlay->is_from, event.quad(overlay->is_from), by);
  } catch (const Fault&) {
    event.effect.parameters().endEdit();
    throw;
  }
  event.effect.parameters().endEdit();
  return Status::Ok;
}

void create(const void* handle) {
  overlayOf(handle);
  PropertySet set = nullptr;
  auto* const interact = static_cast<InteractHandle>(const_cast<void*>(handle));
  if (suites().interact == nullptr || suites().interact->properties(interact, &set) != Status::Ok) {
    return;
  }
  // The parameters whose change redraws the overlay.
  const Properties properties(set);
  int index = 0;
  for (const auto& names : {kCornerParams, kFromParams}) {
    for (const char* name : names) {
      properties.offerAt("OfxInteractPropSlaveToParam", index++, name);
    }
  }
  properties.offerAt("OfxInteractPropSlaveToParam", index, kUseFromParam);
}

void destroy(const void* handle) {
  const std::shared_ptr<Overlay> overlay = overlays.take(handle);
  const auto effect = overlay != nullptr && overlay->held ? Effect::find(overlay->effect) : nullptr;
  if (effect != nullptr) {
    effect->parameters().endEdit();
  }
}

Status perform(std::string_view action, const Event& event, Overlay* overlay) {
  if (action == "OfxInteractActionDraw") {
    return draw(event, *overlay);
  }
  Status status = Status::ReplyDefault;
  if (action == "OfxInteractActionPenDown") {
    status = penDown(event, overlay);
  } else if (action == "OfxInteractActionPenMotion") {
    status = penMotion(event, *overlay);
  } else if (action == "OfxInteractActionPenUp") {
    status = penUp(event, overlay);
  } else if (action == "OfxInteractActionKeyDown" || action == "OfxInteractActionKeyRepeat") {
    status = key(event, overlay, true);
  } else if (action == "OfxInteractActionKeyUp") {
    status = key(event, overlay, false);
  } else if (action == "OfxInteractActionLoseFocus") {
    overlay->is_shift_down = false;
    status = release(event, overlay);
  }
  return status;
}

}  // namespace

void dropOverlays() {
  overlays.clear();
}

Status interactEntry(const char* action, const void* handle, PropertySet in, PropertySet /*out*/) {
  try {
    const std::string_view name = action != nullptr ? action : "";
    if (!isLoaded()) {
      return Status::Failed;
    }
    if (name == "OfxActionDescribe") {
      return Status::Ok;
    }
    if (name == "OfxActionCreateInstance") {
      create(handle);
      return Status::Ok;
    }
    if (name == "OfxActionDestroyInstance") {
      destroy(handle);
      return Status::Ok;
    }
    const Properties arguments(in);
    const auto effect = Effect::of(static_cast<EffectHandle>(arguments.pointer("OfxPropEffectInstance")));
    const Event event{*effect, arguments, required(arguments.number(kPropTime), kPropTime)};
    const std::shared_ptr<Overlay> overlay = overlayOf(handle);
    const Status status = perform(name, event, overlay.get());
    if (status == Status::Ok && name != "OfxInteractActionDraw" && suites().interact != nullptr) {
      suites().interact->redraw(static_cast<InteractHandle>(const_cast<void*>(handle)));
    }
    return status;
  } catch (const Fault& fault) {
    return fault.status;
  } catch (const std::bad_alloc&) {
    return Status::Memory;
  } catch (...) {
    return Status::Failed;
  }
}

}  // namespace vantorel::ofx
