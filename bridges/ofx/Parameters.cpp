#include "bridges/ofx/Parameters.h"

#include <algorithm>
#include <string>

#include "bridges/ofx/Geometry.h"
#include "bridges/ofx/Names.h"

namespace vantorel::ofx {
namespace {

// Normalised, y up.
constexpr std::array<PointD, host::kCornerCount> kDefaults{{{0.0, 1.0}, {1.0, 1.0}, {0.0, 0.0}, {1.0, 0.0}}};
constexpr std::array kLabels{"Upper left", "Upper right", "Lower left", "Lower right"};
constexpr std::array kFromLabels{"From upper left", "From upper right", "From lower left", "From lower right"};
constexpr int kBest = 2;
constexpr std::array kSampleCounts{0, 1, 2, 4, 8};

struct Definition {
  const char* type;
  const char* name;
  const char* label;
  const char* hint;
  const char* parent;
};

Properties define(ParamSet set, const Definition& definition) {
  PropertySet properties = nullptr;
  check(suites().parameter->define(set, definition.type, definition.name, &properties), definition.name);
  const Properties made(properties);
  made.offer(kPropLabel, definition.label);
  made.offer("OfxParamPropHint", definition.hint);
  if (definition.parent != nullptr) {
    made.offer("OfxParamPropParent", definition.parent);
  }
  return made;
}

void definePosition(ParamSet set, const Definition& definition, const PointD& normalised) {
  const Properties made = define(set, definition);
  made.set("OfxParamPropDoubleType", "OfxParamDoubleTypeXYAbsolute");
  made.set("OfxParamPropDefaultCoordinateSystem", "OfxParamCoordinatesNormalised");
  made.set("OfxParamPropDefault", {normalised.x, normalised.y});
  made.offer("OfxParamPropDigits", 2);
}

void defineChoice(ParamSet set, const Definition& definition, std::initializer_list<const char*> options, int initial) {
  const Properties made = define(set, definition);
  made.set("OfxParamPropChoiceOption", options);
  made.set("OfxParamPropDefault", initial);
}

void defineFrom(ParamSet set) {
  const Properties group = define(set, {"OfxParamTypeGroup", kFromGroup, "From corners",
                                        "Draw a part of the source onto the corners instead of all of it", nullptr});
  group.offer("OfxParamPropGroupOpen", 0);
  define(set, {"OfxParamTypeBoolean", kUseFromParam, "Use from corners",
               "Draw only the quadrilateral below, a part of the source", kFromGroup})
      .set("OfxParamPropDefault", 0);
  for (std::size_t i = 0; i < host::kCornerCount; ++i) {
    definePosition(set,
                   {"OfxParamTypeDouble2D", kFromParams[i], kFromLabels[i],
                    "A corner of the part, as a position in the source", kFromGroup},
                   kDefaults[i]);
  }
  define(set, {"OfxParamTypePushButton", kResetFromParam, "Reset from corners",
               "Move the from corners to the corners of the source", kFromGroup});
}

void definePage(ParamSet set) {
  const Properties page = define(set, {"OfxParamTypePage", kPage, "Corners", "", nullptr});
  int index = 0;
  const auto add = [&](const char* name) { page.offerAt("OfxParamPropPageChild", index++, name); };
  std::for_each(kCornerParams.begin(), kCornerParams.end(), add);
  for (const char* name : {kResetParam, kQualityParam, kEdgesParam, kSamplesParam, kOpacityParam, kUseFromParam}) {
    add(name);
  }
  std::for_each(kFromParams.begin(), kFromParams.end(), add);
  add(kResetFromParam);
}

ParamHandle handleOf(ParamSet set, const char* name) {
  ParamHandle handle = nullptr;
  check(suites().parameter->handle(set, name, &handle, nullptr), name);
  checkNotNull(handle, name);
  return handle;
}

}  // namespace

const char* cornerLabel(bool from, std::size_t index) {
  return from ? kFromLabels[index] : kLabels[index];
}

void defineParameters(ParamSet set) {
  for (std::size_t i = 0; i < host::kCornerCount; ++i) {
    definePosition(
        set, {"OfxParamTypeDouble2D", kCornerParams[i], kLabels[i], "Where this corner of the picture goes", nullptr},
        kDefaults[i]);
  }
  define(set, {"OfxParamTypePushButton", kResetParam, "Reset corners", "Move the corners to the corners of the source",
               nullptr});
  defineFrom(set);
  defineChoice(set,
               {"OfxParamTypeChoice", kQualityParam, "Quality",
                "Best takes as many samples per pixel as each part of the picture needs", nullptr},
               {"Standard", "High", "Best"}, kBest);
  defineChoice(set,
               {"OfxParamTypeChoice", kEdgesParam, "Edges",
                "Soft fades out over a pixel of the source; crisp gives each pixel its exact coverage. Automatic: "
                "crisp at best quality, otherwise soft",
                nullptr},
               {"Automatic", "Soft", "Crisp"}, 0);
  defineChoice(
      set,
      {"OfxParamTypeChoice", kSamplesParam, "Samples",
       "Samples per pixel along each axis. Automatic: as many as needed at best quality, otherwise 1", nullptr},
      {"Automatic", "1", "2", "4", "8"}, 0);
  const Properties opacity =
      define(set, {"OfxParamTypeDouble", kOpacityParam, "Opacity", "0 is invisible, 1 is unchanged", nullptr});
  opacity.set("OfxParamPropDefault", 1.0);
  opacity.offer("OfxParamPropMin", 0.0);
  opacity.offer("OfxParamPropMax", 1.0);
  opacity.offer("OfxParamPropDisplayMin", 0.0);
  opacity.offer("OfxParamPropDisplayMax", 1.0);
  definePage(set);
}

Parameters::Parameters(ParamSet set)
    : set_(set),
      use_from_(handleOf(set, kUseFromParam)),
      quality_(handleOf(set, kQualityParam)),
      edges_(handleOf(set, kEdgesParam)),
      samples_(handleOf(set, kSamplesParam)),
      opacity_(handleOf(set, kOpacityParam)) {
  for (std::size_t i = 0; i < host::kCornerCount; ++i) {
    corners_[i] = handleOf(set, kCornerParams[i]);
    from_[i] = handleOf(set, kFromParams[i]);
  }
}

PointD Parameters::corner(bool from, std::size_t index, Time time, const Project& project) const {
  PointD value;
  const ParamHandle handle = from ? from_[index] : corners_[index];
  if (suites().parameter->value_at_time(handle, time, &value.x, &value.y) == Status::Ok) {
    if (!isFinite(value)) {
      throw Fault{Status::BadValue, std::string(cornerLabel(from, index)) +
                                        ": its position is not a number; enter one, or press " +
                                        (from ? "Reset from corners" : "Reset corners")};
    }
    return value;
  }
  const PointD& normalised = kDefaults[index];
  return {project.offset.x + normalised.x * project.size.x, project.offset.y + normalised.y * project.size.y};
}

int Parameters::choice(ParamHandle handle, Time time, int fallback, int count) const {
  int value = fallback;
  const bool is_told = suites().parameter->value_at_time(handle, time, &value) == Status::Ok;
  return is_told && value >= 0 && value < count ? value : fallback;
}

bool Parameters::usesFrom(Time time) const {
  int value = 0;
  return suites().parameter->value_at_time(use_from_, time, &value) == Status::Ok && value != 0;
}

ParameterValues Parameters::at(Time time, const Project& project) const {
  const auto corners = [&](bool from) {
    const auto point = [&](std::size_t i) {
      const PointD value = corner(from, i, time, project);
      return host::Point{value.x, value.y};
    };
    return host::Corners{point(0), point(1), point(2), point(3)};
  };
  ParameterValues values;
  values.corners = corners(false);
  if (usesFrom(time)) {
    values.from = corners(true);
  }
  values.quality = static_cast<host::Quality>(choice(quality_, time, kBest, kBest + 1));
  if (const int edges = choice(edges_, time, 0, 3); edges != 0) {
    values.edges = edges == 1 ? host::Edges::Soft : host::Edges::Crisp;
  }
  values.samples = kSampleCounts[static_cast<std::size_t>(choice(samples_, time, 0, kSampleCounts.size()))];
  double opacity = 1.0;
  if (suites().parameter->value_at_time(opacity_, time, &opacity) == Status::Ok) {
    values.opacity = opacity > 0.0 ? std::min(opacity, 1.0) : 0.0;
  }
  return values;
}

void Parameters::setCorner(bool from, std::size_t index, const PointD& value) const {
  check(suites().parameter->set_value(from ? from_[index] : corners_[index], value.x, value.y),
        from ? kFromParams[index] : kCornerParams[index]);
}

void Parameters::beginEdit(const char* label) const {
  suites().parameter->begin_edit(set_, label);
}

void Parameters::endEdit() const {
  suites().parameter->end_edit(set_);
}

}  // namespace vantorel::ofx
