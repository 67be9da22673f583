// Fuzzes the math library: an input is one call of the rational interface, whose results are checked against exact
// arithmetic, or a chain of calls over a matrix of any entries.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/Input.h"
#include "tests/math/RatioChecks.h"

namespace {

using vantorel::fuzz::Input;
using vantorel::fuzz::require;

constexpr int kMaxCalls = 8;

void fuzzRatio(Input& input, int operation) {
  RatioCase c{};
  c.operation = RatioOperation{static_cast<unsigned char>(operation)};
  c.a = input.take<M_Ratio>();
  c.b = input.take<M_Ratio>();
  c.value = input.take<double>();
  const std::string wrong = checkRatioCase(c);
  if (!wrong.empty()) {
    std::fprintf(stderr, "%s\n", wrong.c_str());
    std::abort();
  }
}

// The box of a rectangle's corners holds each of them, and touches one on every side.
void checkRect(Input& input, const M_Matrix3& m) {
  M_FloatRect box(input.real(), input.real(), input.real(), input.real());
  M_Vector2T<double> corners[4];
  bool not_rect = false;
  M_TransformFloatRect(&m, &box, corners, &not_rect);
  int sides = 0;
  for (const M_Vector2T<double>& corner : corners) {
    if (!std::isfinite(corner.x) || !std::isfinite(corner.y)) {
      return;
    }
    require(corner.x >= box.left && corner.x <= box.right && corner.y >= box.top && corner.y <= box.bottom,
            "a box holds the corners that it is of");
    sides |= (corner.x == box.left ? 1 : 0) | (corner.x == box.right ? 2 : 0) | (corner.y == box.top ? 4 : 0) |
             (corner.y == box.bottom ? 8 : 0);
  }
  require(sides == 15, "a box is the smallest");
}

void fuzzMatrix(Input& input) {
  M_Matrix3 m(true);
  for (int calls = input.inRange(0, kMaxCalls); calls > 0; --calls) {
    switch (input.inRange(0, 4)) {
      case 0:
        M_TranslateMatrix(&m, input.real(), input.real());
        break;
      case 1:
        M_ScaleMatrix(&m, input.real(), input.real(), input.real(), input.real());
        break;
      case 2:
        M_RotateMatrix(&m, input.real(), input.real(), input.real());
        break;
      case 3:
        M_ConcatMatrix(&m, &m);
        break;
      default:
        m.m[input.inRange(0, 2)][input.inRange(0, 2)] = input.real();
        break;
    }
  }
  int type = -1;
  M_GetMatrixType(&m, &type);
  require(type >= 0, "every matrix has a type");
  M_Vector3T<double> v{input.real(), input.real(), input.real()};
  M_TransformVector3(&m, 1, &v);
  checkRect(input, m);
  M_fmod(input.real(), input.real());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const int operation = input.take<std::uint8_t>() % (kRatioOperations + 1);
  if (operation < kRatioOperations) {
    fuzzRatio(input, operation);
  } else {
    fuzzMatrix(input);
  }
  return 0;
}
