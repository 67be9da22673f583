// Checks of the rational functions against arbitrary-precision arithmetic, shared by the tests and the fuzzer.
#pragma once

#include <ostream>
#include <string>

#include "math/M_stuff.h"

enum class RatioOperation : unsigned char { kAdd, kSub, kMul, kReduce, kConvert, kFromDouble, kApproximate, kIntegers };
constexpr int kRatioOperations = 8;

// One call; every operation reads what it needs of it. Any bits are a valid case.
struct RatioCase {
  RatioOperation operation;
  M_Ratio a;
  M_Ratio b;
  double value;
};

bool operator==(const M_Ratio& left, const M_Ratio& right);
std::ostream& operator<<(std::ostream& stream, const M_Ratio& ratio);

// Makes the call in all its forms. Empty if the results are right, else what is wrong, with the inputs.
std::string checkRatioCase(const RatioCase& c);
