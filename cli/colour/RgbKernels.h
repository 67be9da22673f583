// The arithmetic of colour conversions on rows of RGBA floats, once for each instruction set. All give the same bits.
#pragma once

#include "platform/Cpu.h"

namespace vantorel::cli {

class CurveTable;

// A curve as the kernels look it up; no values where there is none.
struct CurveSteps {
  const float* values = nullptr;  // as CurveTable::values() has them
  float at_zero = 0.0f;
  const CurveTable* table = nullptr;  // for what is not tabulated
};

// `table` may be null, and must outlive the steps.
CurveSteps curveSteps(const CurveTable* table);

// A curve, a matrix, and another curve.
struct RgbSteps {
  CurveSteps decode;
  bool has_matrix = false;
  float columns[3][4] = {};  // what red, green and blue become; the fourth number is 0
  CurveSteps encode;
};

// Each works on `width` pixels in place; rows need no alignment.
struct RgbKernels {
  bool (*isOpaque)(const float* row, int width);
  // Where alpha is zero the colour stays as it is.
  void (*unpremultiply)(float* row, int width);
  void (*repremultiply)(float* row, int width);
  // Alpha stays.
  void (*convert)(const RgbSteps& steps, float* row, int width);
};

// Those of a set that is available.
const RgbKernels& rgbKernels(InstructionSet set);

}  // namespace vantorel::cli
