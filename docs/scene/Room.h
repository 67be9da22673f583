// The room of the plate: a desk with a monitor, whose screen is switched off, lit by a window and a globe lamp.
#pragma once

#include <vector>

#include "Vec.h"

namespace vantorel::scene {

enum class Texture { Plain, Wood, Keys, Plaster, Ribs };

struct Material {
  Vec albedo{0.5F, 0.5F, 0.5F};
  float coat = 0.0F;       // strength of a clear reflecting coat, 0 to 1
  float roughness = 0.0F;  // of the coat
  Texture texture = Texture::Plain;
  Vec emission{};
};

enum class Shape { Box, Sphere, Cylinder };

// A box, a sphere or a vertical cylinder that fills [-half, half] about its centre, turned about the vertical axis.
struct Object {
  Shape shape = Shape::Box;
  Vec centre;
  Vec half;
  Turn turn{};
  Material material{};
};

// A point of a surface.
struct Hit {
  float distance = 0.0F;  // in lengths of the ray's direction
  Vec normal;             // unit length, towards the side that the ray comes from
  Vec local;              // the point in the object's own space, -1 to 1
  const Object* object = nullptr;
};

struct Ray {
  Vec origin;
  Vec direction;
};

// The nearest hit beyond a small distance; its object is null if the ray leaves the room.
Hit intersect(const std::vector<Object>& objects, const Ray& ray, float farthest);

// The colour of a surface, texture included.
Vec albedoAt(const Hit& hit);

struct Room {
  std::vector<Object> objects;
  Object window;  // a thin upright box that emits
  Object lamp;    // a sphere that emits
  Vec screen[4];  // the corners of the monitor's screen: upper left, upper right, lower left, lower right
};

Room makeRoom();

}  // namespace vantorel::scene
