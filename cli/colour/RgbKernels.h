// The arithmetic of colour conversions on rows of RGBA floats, once for each instruction set. All give the same bits.
#pragma once

#include "platform/Cpu.h"

namespace vantorel::cli {

class CurveTable;

// A curve in the form that the kernels look up; null `values` for no curve.
struct CurveSteps {
  const float* values = nullptr;  // CurveTable::values()
  float at_zero = 0.0f;
  const CurveTable* table = nullptr;  // for values that are not tabulated
};

// `table` may be null, and must outlive the steps.
CurveSteps curveSteps(const CurveTable* table);

// A curve, a matrix, and another curve.
struct RgbSteps {
  CurveSteps decode;
  bool has_matrix = false;
  float columns[3][4] = {};  // the results for red, green and blue; the fourth number is 0
  CurveSteps encode;
};

// Each function works on `width` pixels in place; rows need not be aligned.
struct RgbKernels {
  bool (*is_opaque)(const float* row, int width);
  // If alpha is zero, the colour is left unchanged.
  void (*unpremultiply)(float* row, int width);
  void (*repremultiply)(float* row, int width);
  // Leaves alpha unchanged.
  void (*convert)(const RgbSteps& steps, float* row, int width);
};

// The kernels of an instruction set that is available.
const RgbKernels& rgbKernels(InstructionSet set);

}  // namespace vantorel::cli
