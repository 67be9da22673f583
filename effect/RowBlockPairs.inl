// Pairs of an instruction set's vectors, which are computed on side by side: the chains of operations for a pixel are
// long and depend on each other, and two of them keep a processor busy where one would not.
namespace {

constexpr int kLanes = 2 * kVectorLanes;

struct Doubles {
  DoubleVector low;
  DoubleVector high;
};

struct Ints {
  IntVector low;
  IntVector high;
};

inline Doubles operator+(const Doubles& a, const Doubles& b) {
  return {a.low + b.low, a.high + b.high};
}
inline Doubles operator-(const Doubles& a, const Doubles& b) {
  return {a.low - b.low, a.high - b.high};
}
inline Doubles operator*(const Doubles& a, const Doubles& b) {
  return {a.low * b.low, a.high * b.high};
}
inline Doubles operator/(const Doubles& a, const Doubles& b) {
  return {a.low / b.low, a.high / b.high};
}

inline Doubles Broadcast(double value) {
  const DoubleVector vector = BroadcastVector(value);
  return {vector, vector};
}
inline Doubles Load(const double* from) {
  return {LoadVector(from), LoadVector(from + kVectorLanes)};
}
// 1, 2, 3 and so on.
inline Doubles Ramp() {
  return {RampVector(), RampVector() + BroadcastVector(kVectorLanes)};
}
inline double Lowest(const Doubles& a) {
  return Lowest(a.low);
}
inline Doubles MultiplyAdd(const Doubles& a, const Doubles& b, const Doubles& c) {
  return {MultiplyAdd(a.low, b.low, c.low), MultiplyAdd(a.high, b.high, c.high)};
}
inline Doubles SubtractProduct(const Doubles& a, const Doubles& b, const Doubles& c) {
  return {SubtractProduct(a.low, b.low, c.low), SubtractProduct(a.high, b.high, c.high)};
}
inline Doubles Magnitude(const Doubles& a) {
  return {Magnitude(a.low), Magnitude(a.high)};
}
inline Doubles Larger(const Doubles& a, const Doubles& b) {
  return {Larger(a.low, b.low), Larger(a.high, b.high)};
}
inline Doubles SmallerMagnitude(const Doubles& a, const Doubles& b) {
  return {SmallerMagnitude(a.low, b.low), SmallerMagnitude(a.high, b.high)};
}
inline Doubles LargerMagnitude(const Doubles& a, const Doubles& b) {
  return {LargerMagnitude(a.low, b.low), LargerMagnitude(a.high, b.high)};
}
inline Doubles WithSignOf(const Doubles& magnitude, const Doubles& signs) {
  return {WithSignOf(magnitude.low, signs.low), WithSignOf(magnitude.high, signs.high)};
}
inline Doubles ToWhole(const Doubles& a) {
  return {ToWhole(a.low), ToWhole(a.high)};
}
inline bool AllGreater(const Doubles& a, const Doubles& b) {
  return AllGreater(a.low, b.low) && AllGreater(a.high, b.high);
}

inline Ints Truncated(const Doubles& a) {
  return {Truncated(a.low), Truncated(a.high)};
}
inline Doubles FromInts(const Ints& a) {
  return {FromInts(a.low), FromInts(a.high)};
}
inline Ints HalfClamped(const Ints& a, int least, int most) {
  return {HalfClamped(a.low, least, most), HalfClamped(a.high, least, most)};
}
inline Ints TimesFour(const Ints& a) {
  return {TimesFour(a.low), TimesFour(a.high)};
}
inline void Store(const Ints& a, std::int32_t* out) {
  Store(a.low, out);
  Store(a.high, out + kVectorLanes);
}
inline void StoreBoxes(const Ints& x_radius, const Ints& y_radius, const Ints& area, SampleBoxSize* out) {
  StoreBoxes(x_radius.low, y_radius.low, area.low, out);
  StoreBoxes(x_radius.high, y_radius.high, area.high, out + kVectorLanes);
}

}  // namespace
