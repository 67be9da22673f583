// Integer and floating-point points and rectangles shared by the effect, its helpers, the math library and the host
// records. This header includes nothing, so that every one of them can use it.
#pragma once

// The smaller and the larger of two values; equal values give that value.
template <typename T>
constexpr T M_Min(T a, T b) {
  return b < a ? b : a;
}

template <typename T>
constexpr T M_Max(T a, T b) {
  return a < b ? b : a;
}

// An integer point, x then y.
struct M_LPoint {
  int x;
  int y;
};

// A point of two 16.16 fixed-point numbers (1.0 is 65536), x then y.
struct M_FixedPoint {
  int x;
  int y;
};

// The fields of a rectangle in left-top-right-bottom form. Right and bottom are exclusive: the first column and row
// outside it.
template <typename T>
struct Mp_LTRBRectBase {
  T left;
  T top;
  T right;
  T bottom;
};

// A rectangle's operations on the fields of `Base`. The default constructor leaves the fields unset, which keeps the
// type trivial: it can stand in unions and be copied as bytes, with the layout of the host's own rectangles.
template <typename Base>
struct Mp_RectObject : Base {
  using Coordinate = decltype(Base::left);

  Mp_RectObject() = default;
  constexpr Mp_RectObject(Coordinate l, Coordinate t, Coordinate r, Coordinate b) : Base() {
    this->left = l;
    this->top = t;
    this->right = r;
    this->bottom = b;
  }

  constexpr Coordinate Left() const { return this->left; }
  constexpr Coordinate Top() const { return this->top; }
  constexpr Coordinate Right() const { return this->right; }
  constexpr Coordinate Bottom() const { return this->bottom; }

  // True when the width or the height is zero or negative.
  constexpr bool IsEmpty() const { return this->right <= this->left || this->bottom <= this->top; }

  // Grows to the bounding box of both rectangles, even if one of them is empty.
  constexpr void UnionEmptyOrNot(const Mp_RectObject& other) {
    this->left = M_Min(this->left, other.left);
    this->right = M_Max(this->right, other.right);
    this->top = M_Min(this->top, other.top);
    this->bottom = M_Max(this->bottom, other.bottom);
  }

  // Grows to the bounding box of both. An empty `other` is ignored; an empty rectangle becomes `other`.
  constexpr void Union(const Mp_RectObject& other) {
    if (other.IsEmpty()) {
      return;
    }
    if (IsEmpty()) {
      *this = other;
      return;
    }
    UnionEmptyOrNot(other);
  }
};

using M_LRect = Mp_RectObject<Mp_LTRBRectBase<int>>;
using M_FloatRect = Mp_RectObject<Mp_LTRBRectBase<double>>;

// The type under which host records declare a rectangle field. M_LRect is trivial and can therefore be such a field
// itself.
using M_UnionableLRect = M_LRect;

// The same rectangle, as an M_LRect: no copy, no change.
constexpr M_LRect& M_RemoveUnionableness(M_UnionableLRect& rect) {
  return rect;
}

// Clips `b` to `a` in place. Disjoint rectangles give an inverted rectangle, which IsEmpty reports as empty.
constexpr void IntersectLRect(const M_LRect* a, M_LRect* b) {
  b->left = M_Max(a->left, b->left);
  b->top = M_Max(a->top, b->top);
  b->right = M_Min(a->right, b->right);
  b->bottom = M_Min(a->bottom, b->bottom);
}
