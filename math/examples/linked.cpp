// A program that links the math library: how long do 1001 frames of 30000/1001 a second take, and where does a
// point of a picture lie after a quarter turn?
#include <cstdio>

#include "math/M_stuff.h"

int main() {
  const M_Ratio frames = {1001, 1};
  const M_Ratio seconds_per_frame = {1001, 30000};
  M_Ratio seconds = {0, 1};
  if (M_MulRatio(&frames, &seconds_per_frame, &seconds, nullptr) != 0) {
    std::fprintf(stderr, "The duration does not fit.\n");
    return 1;
  }
  std::printf("1001 frames last %d/%u seconds\n", static_cast<int>(seconds.num), static_cast<unsigned>(seconds.den));

  M_Matrix3 turn(true);
  M_RotateMatrix(&turn, 90.0, 50.0, 50.0);
  M_Vector2T<double> point = {10.0, 20.0};
  M_TransformFloatPoints(&turn, 1, &point);
  std::printf("(10, 20) moves to (%.1f, %.1f)\n", point.x, point.y);
  return 0;
}
