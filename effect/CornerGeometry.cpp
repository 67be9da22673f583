#include "effect/CornerGeometry.h"

#include <cmath>

#include "effect/Int32Arithmetic.h"
#include "effect/Parameters.h"
#include "effect/ProjectiveMap.h"

namespace {

void rectCorners(double left, double top, double right, double bottom, M_Vector2T<double>* corners) {
  corners[0] = {left, top};
  corners[1] = {right, top};
  corners[2] = {right, bottom};
  corners[3] = {left, bottom};
}

}  // namespace

ScaledSize scaledLayerSize(const PF_InData* in_data) {
  return {static_cast<double>(wrapMul(in_data->width, in_data->downsample_x_num)) / in_data->downsample_x_den,
          static_cast<double>(wrapMul(in_data->height, in_data->downsample_y_num)) / in_data->downsample_y_den};
}

std::int32_t GetCornerPoints(PF_InData* in_data, PF_OutData* /*out_data*/, PF_LayerDef* input,
                             M_Vector2T<double>* points) {
  const ScaledSize layer = scaledLayerSize(in_data);
  M_Vector2T<double> quad[4];
  std::int32_t err = GetCornerParams(in_data, quad, in_data->output_origin_x, in_data->output_origin_y);

  const double left = in_data->source_origin_x;
  const double top = in_data->source_origin_y;
  M_Vector2T<double> source[4];
  rectCorners(left, top, left + layer.width, top + layer.height, source);
  M_Matrix3 map(false);
  if (err == ERR_NONE) {
    err = MapQuadToQuadFloat(source, quad, &map);
  }

  const double buffer_width = input != nullptr ? input->width : std::ceil(layer.width);
  const double buffer_height = input != nullptr ? input->height : std::ceil(layer.height);
  rectCorners(0.0, 0.0, buffer_width, buffer_height, points);
  if (err == ERR_NONE) {
    err = HomogeneouslyTransformFloatPoints(&map, 4, points);
  }
  return err;
}

M_FloatRect cornerBounds(const M_Vector2T<double>* points) {
  M_FloatRect bounds(points[0].x, points[0].y, points[0].x, points[0].y);
  for (int i = 1; i < 4; ++i) {
    if (points[i].x < bounds.left) {
      bounds.left = points[i].x;
    }
    if (points[i].x > bounds.right) {
      bounds.right = points[i].x;
    }
    if (points[i].y < bounds.top) {
      bounds.top = points[i].y;
    }
    if (points[i].y > bounds.bottom) {
      bounds.bottom = points[i].y;
    }
  }
  return bounds;
}
