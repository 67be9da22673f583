#include "effect/PathChoice.h"

#include <cmath>

#include "effect/CornerGeometry.h"

namespace {

constexpr double kShortestEdge = 1e-12;
constexpr double kStraightCorner = 0.01;  // how close to 1 the cosine of a turn is at a nearly straight corner

bool isStrictlyConvex(M_Vector2T<double>* p) {
  const std::int32_t turn = CCW(&p[0], &p[1], &p[2]);
  return turn != 0 && CCW(&p[1], &p[2], &p[3]) == turn && CCW(&p[2], &p[3], &p[0]) == turn &&
         CCW(&p[3], &p[0], &p[1]) == turn;
}

// The edge from p to q, of unit length unless it is too short to have a direction.
M_Vector3T<double> unitEdge(const PF_InData* in_data, const M_Vector2T<double>& p, const M_Vector2T<double>& q) {
  M_Vector3T<double> edge{q.x - p.x, q.y - p.y, 0.0};
  const double length = in_data->utility_callbacks->sqrt(edge.x * edge.x + edge.y * edge.y + edge.z * edge.z);
  if (length > kShortestEdge) {
    const double scale = 1.0 / length;
    edge.x *= scale;
    edge.y *= scale;
    edge.z *= scale;
  }
  return edge;
}

}  // namespace

bool UseBilinear(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* input) {
  M_Vector2T<double> points[4]{};
  if (GetCornerPoints(in_data, out_data, input, points) != ERR_NONE || !isStrictlyConvex(points)) {
    return true;
  }
  M_Vector3T<double> edges[4];
  for (int i = 0; i < 4; ++i) {
    edges[i] = unitEdge(in_data, points[i], points[(i + 1) % 4]);
  }
  bool straight = false;
  for (int i = 0; i < 4; ++i) {
    const M_Vector3T<double>& e = edges[i];
    const M_Vector3T<double>& next = edges[(i + 1) % 4];
    const double cosine = e.x * next.x + e.y * next.y + e.z * next.z;
    if (std::abs(cosine - 1.0) < kStraightCorner) {
      straight = true;
    }
  }
  return straight;
}

std::int32_t CCW(M_Vector2T<double>* p0, M_Vector2T<double>* p1, M_Vector2T<double>* p2) {
  const double dx1 = p1->x - p0->x;
  const double dy1 = p1->y - p0->y;
  const double dx2 = p2->x - p0->x;
  const double dy2 = p2->y - p0->y;
  if (dx1 * dy2 > dy1 * dx2) {
    return 1;
  }
  if (dx1 * dy2 < dy1 * dx2) {
    return -1;
  }
  if (dx1 * dx2 < 0.0 || dy1 * dy2 < 0.0) {
    return -1;
  }
  if (dx1 * dx1 + dy1 * dy1 < dx2 * dx2 + dy2 * dy2) {
    return 1;
  }
  return 0;
}
