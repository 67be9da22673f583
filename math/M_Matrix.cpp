#include "M_Matrix.h"

#include <cmath>

#include "M_stuff.h"

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

// m = m * rows.
void appendTransform(M_Matrix3* m, const double (&rows)[3][3]) {
  M_Matrix3 transform(false);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      transform.m[i][j] = rows[i][j];
    }
  }
  M_ConcatMatrix(&transform, m);
}

}  // namespace

std::int32_t M_SetIdentityMatrix(M_Matrix3* m) {
  if (m == nullptr) {
    return 0;
  }
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      m->m[i][j] = i == j ? 1.0 : 0.0;
    }
  }
  return 0;
}

std::int32_t M_ConcatMatrix(const M_Matrix3* a, M_Matrix3* b) {
  M_Matrix3 product(false);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      product.m[i][j] = b->m[i][0] * a->m[0][j] + b->m[i][1] * a->m[1][j] + b->m[i][2] * a->m[2][j];
    }
  }
  *b = product;
  return 0;
}

std::int32_t M_TranslateMatrix(M_Matrix3* m, double tx, double ty) {
  if (m == nullptr) {
    return 0;
  }
  appendTransform(m, {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {tx, ty, 1.0}});
  return 0;
}

std::int32_t M_ScaleMatrix(M_Matrix3* m, double sx, double sy, double cx, double cy) {
  if (sx == 1.0 && sy == 1.0) {
    return 0;
  }
  appendTransform(m, {{sx, 0.0, 0.0}, {0.0, sy, 0.0}, {(1.0 - sx) * cx, (1.0 - sy) * cy, 1.0}});
  return 0;
}

std::int32_t M_RotateMatrix(M_Matrix3* m, double degrees, double cx, double cy) {
  if (m == nullptr) {
    return M_ErrNullPointer;
  }
  if (degrees == 0.0) {
    return 0;
  }
  const double radians = degrees * kRadiansPerDegree;
  const double s = std::sin(radians);
  const double c = std::cos(radians);
  appendTransform(m, {{c, s, 0.0}, {-s, c, 0.0}, {cx * (1.0 - c) + cy * s, cy * (1.0 - c) - cx * s, 1.0}});
  return 0;
}

std::int32_t M_TransformVector3(const M_Matrix3* m, int count, M_Vector3T<double>* v) {
  for (int k = 0; k < count; ++k) {
    const M_Vector3T<double> old = v[k];
    v[k].x = old.x * m->m[0][0] + old.y * m->m[1][0] + old.z * m->m[2][0];
    v[k].y = old.x * m->m[0][1] + old.y * m->m[1][1] + old.z * m->m[2][1];
    v[k].z = old.x * m->m[0][2] + old.y * m->m[1][2] + old.z * m->m[2][2];
  }
  return 0;
}

std::int32_t M_TransformFloatPoints(const M_Matrix3* m, int count, M_Vector2T<double>* p) {
  if (m == nullptr || p == nullptr) {
    return M_ErrNullPointer;
  }
  for (int k = 0; k < count; ++k) {
    const M_Vector2T<double> old = p[k];
    p[k].x = old.x * m->m[0][0] + old.y * m->m[1][0] + m->m[2][0];
    p[k].y = old.x * m->m[0][1] + old.y * m->m[1][1] + m->m[2][1];
  }
  return 0;
}

std::int32_t M_TransformFloatRect(const M_Matrix3* m, M_FloatRect* r, M_Vector2T<double>* corners, bool* not_rect) {
  if (m == nullptr || r == nullptr) {
    return M_ErrNullPointer;
  }
  M_Vector2T<double> local[4];
  M_Vector2T<double>* const points = corners != nullptr ? corners : local;
  points[0] = {r->left, r->top};
  points[1] = {r->right, r->top};
  points[2] = {r->right, r->bottom};
  points[3] = {r->left, r->bottom};
  M_TransformFloatPoints(m, 4, points);

  *r = M_FloatRect(points[0].x, points[0].y, points[0].x, points[0].y);
  for (int k = 1; k < 4; ++k) {
    if (points[k].x < r->left) {
      r->left = points[k].x;
    }
    if (points[k].y < r->top) {
      r->top = points[k].y;
    }
    if (points[k].x > r->right) {
      r->right = points[k].x;
    }
    if (points[k].y > r->bottom) {
      r->bottom = points[k].y;
    }
  }

  if (not_rect == nullptr) {
    return 0;
  }
  int type = M_MatrixIdentity;
  const std::int32_t err = M_GetMatrixType(m, &type);
  *not_rect = type == M_MatrixAffine || type == M_MatrixPerspective;
  return err;
}

std::int32_t M_GetMatrixType(const M_Matrix3* m, int* type) {
  if (m == nullptr || type == nullptr) {
    return M_ErrNullPointer;
  }
  const bool perspective = m->m[0][2] != 0.0 || m->m[1][2] != 0.0 || m->m[2][2] != 1.0;
  const bool translate = m->m[2][0] != 0.0 || m->m[2][1] != 0.0;
  const bool scale = m->m[0][0] != 1.0 || m->m[1][1] != 1.0;
  const bool rotate = m->m[0][1] != 0.0 || m->m[1][0] != 0.0;
  return Mp_WhatType(perspective, translate, scale, rotate, type);
}

std::int32_t Mp_WhatType(bool perspective, bool translate, bool scale, bool rotate, int* type) {
  if (perspective) {
    *type = M_MatrixPerspective;
  } else if (rotate) {
    *type = M_MatrixAffine;
  } else if (scale) {
    *type = translate ? M_MatrixScaleTranslate : M_MatrixScale;
  } else {
    *type = translate ? M_MatrixTranslate : M_MatrixIdentity;
  }
  return 0;
}

double M_fmod(double x, double y) {
  if (x == 0.0 || y == 0.0) {
    return 0.0;
  }
  const double quotient = x / y;
  const bool quotient_negative = (x < 0.0) != (y < 0.0);
  return x - y * (quotient_negative ? std::ceil(quotient) : std::floor(quotient));
}
