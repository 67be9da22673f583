#include "tracks/Conventions.h"

namespace vantorel::tracks {

namespace {

template <typename T>
void take(std::optional<T>& value, const std::optional<T>& given) {
  if (given) {
    value = given;
  }
}

bool isKnown(const Size& size) {
  return size.width > 0 && size.height > 0;
}

bool isOfLayer(const Conventions& conventions) {
  const Units units = conventions.units.value_or(Units::Pixels);
  return conventions.of == Basis::Layer && (units == Units::Percent || units == Units::Fraction);
}

Size basisOf(const Conventions& conventions, const PictureSizes& sizes) {
  if (isOfLayer(conventions)) {
    return sizes.layer;
  }
  return conventions.size.value_or(sizes.output);
}

// One axis with its origin at the upper left. `half_range` is the value of HalfHeights at the far edge.
AxisMap axisMap(Units units, double extent, double pixel_centres, double half_range) {
  switch (units) {
    case Units::Pixels:
      return {1.0, 1.0, 0.5 - pixel_centres};
    case Units::Percent:
      return {extent, 100.0, 0.0};
    case Units::Fraction:
      return {extent, 1.0, 0.0};
    case Units::CentreSpan:
      return {extent - 1.0, 2.0, extent / 2.0};
    case Units::HalfHeights:
      return {extent, 2.0 * half_range, extent / 2.0};
  }
  return {};
}

void mirror(AxisMap& axis, double extent) {
  axis.numerator = -axis.numerator;
  axis.offset = extent - axis.offset;
}

void scale(AxisMap& axis, double from, double to) {
  if (from != to) {
    axis.numerator *= to;
    axis.denominator *= from;
    axis.offset = axis.offset * to / from;
  }
}

}  // namespace

Conventions overridden(const Conventions& base, const Conventions& given) {
  Conventions result = base;
  take(result.origin, given.origin);
  take(result.units, given.units);
  take(result.of, given.of);
  take(result.size, given.size);
  take(result.pixel_centres, given.pixel_centres);
  take(result.aspect, given.aspect);
  take(result.counts_from, given.counts_from);
  return result;
}

const char* missingSize(const Conventions& conventions, const PictureSizes& sizes) {
  if (isOfLayer(conventions)) {
    return isKnown(sizes.layer) ? "" : "layer";
  }
  const bool is_relative =
      conventions.units.value_or(Units::Pixels) != Units::Pixels || conventions.origin == Origin::LowerLeft;
  return is_relative && !conventions.size && !isKnown(sizes.output) ? "tracked picture" : "";
}

FrameMap frameMap(const Conventions& conventions, const PictureSizes& sizes) {
  const Units units = conventions.units.value_or(Units::Pixels);
  const double centres = conventions.pixel_centres.value_or(0.5);
  const Size basis = basisOf(conventions, sizes);
  const double width = basis.width;
  const double height = basis.height;
  FrameMap map{axisMap(units, width, centres, conventions.aspect.value_or(width / height)),
               axisMap(units, height, centres, 1.0)};
  if (conventions.origin == Origin::LowerLeft) {
    mirror(map.y, height);
  }
  if (!isOfLayer(conventions) && isKnown(basis) && isKnown(sizes.output)) {
    scale(map.x, width, sizes.output.width);
    scale(map.y, height, sizes.output.height);
  }
  return map;
}

int usefulDecimals(Units units) {
  switch (units) {
    case Units::Pixels:
      return 9;
    case Units::Percent:
      return 11;
    default:
      return 13;
  }
}

}  // namespace vantorel::tracks
