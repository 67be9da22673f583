#include "Room.h"

#include <algorithm>
#include <limits>

namespace vantorel::scene {

namespace {

constexpr float kNever = std::numeric_limits<float>::infinity();
constexpr float kNearest = 1e-4F;

// Where a ray enters and leaves a convex shape; enter > leave if it misses.
struct Span {
  float enter = -kNever;
  float leave = kNever;
  Vec enter_normal;
  Vec leave_normal;
};

// Clips the span to -1 <= origin + t * direction <= 1 along an axis.
void cutToSlab(float origin, float direction, Vec axis, Span* span) {
  float enter = (-1.0F - origin) / direction;
  float leave = (1.0F - origin) / direction;
  const float sign = enter < leave ? 1.0F : -1.0F;
  if (enter > leave) {
    std::swap(enter, leave);
  }
  if (enter > span->enter) {
    span->enter = enter;
    span->enter_normal = axis * -sign;
  }
  if (leave < span->leave) {
    span->leave = leave;
    span->leave_normal = axis * sign;
  }
}

// Clips the span to the unit sphere, or to the unit circle of x and z.
void cutToRound(const Ray& ray, Vec axes, Span* span) {
  const Vec origin = ray.origin * axes;
  const Vec direction = ray.direction * axes;
  const float a = dot(direction, direction);
  const float b = dot(origin, direction);
  const float discriminant = b * b - a * (dot(origin, origin) - 1.0F);
  if (discriminant <= 0.0F) {
    span->enter = kNever;
    return;
  }
  const float root = std::sqrt(discriminant);
  const float enter = (-b - root) / a;
  const float leave = (-b + root) / a;
  if (enter > span->enter) {
    span->enter = enter;
    span->enter_normal = origin + direction * enter;
  }
  if (leave < span->leave) {
    span->leave = leave;
    span->leave_normal = origin + direction * leave;
  }
}

Span spanOf(Shape shape, const Ray& local) {
  Span span;
  switch (shape) {
    case Shape::Box:
      cutToSlab(local.origin.x, local.direction.x, {1, 0, 0}, &span);
      cutToSlab(local.origin.y, local.direction.y, {0, 1, 0}, &span);
      cutToSlab(local.origin.z, local.direction.z, {0, 0, 1}, &span);
      break;
    case Shape::Sphere:
      cutToRound(local, {1, 1, 1}, &span);
      break;
    case Shape::Cylinder:
      cutToRound(local, {1, 0, 1}, &span);
      cutToSlab(local.origin.y, local.direction.y, {0, 1, 0}, &span);
      break;
  }
  return span;
}

float fraction(float value) {
  return value - std::floor(value);
}

// A number from 0 to 1 that looks random, the same for the same cell.
float cellNoise(int x, int y) {
  std::uint32_t bits = static_cast<std::uint32_t>(x) * 374761393U + static_cast<std::uint32_t>(y) * 668265263U;
  bits = (bits ^ (bits >> 13U)) * 1274126177U;
  return static_cast<float>((bits ^ (bits >> 16U)) & 0xFFFFU) / 65535.0F;
}

float smoothNoise(float x, float y) {
  const int column = static_cast<int>(std::floor(x));
  const int row = static_cast<int>(std::floor(y));
  const auto eased = [](float t) { return t * t * (3.0F - 2.0F * t); };
  const float u = eased(fraction(x));
  const float v = eased(fraction(y));
  const float above = std::lerp(cellNoise(column, row), cellNoise(column + 1, row), u);
  const float below = std::lerp(cellNoise(column, row + 1), cellNoise(column + 1, row + 1), u);
  return std::lerp(above, below, v);
}

float woodShade(Vec metres) {
  const float grain =
      smoothNoise(metres.x * 3.0F, metres.z * 60.0F) + 0.5F * smoothNoise(metres.x * 9.0F, metres.z * 260.0F);
  const float plank = cellNoise(static_cast<int>(std::floor(metres.z / 0.14F)), 7);
  const bool gap = fraction(metres.z / 0.14F) < 0.015F;
  return gap ? 0.35F : 0.62F + 0.25F * grain + 0.2F * plank;
}

// Keys of 18 mm with gaps between them, dark in the middle where their letters are.
float keyShade(Vec local) {
  const float across = fraction((local.x * 0.5F + 0.5F) * 15.0F);
  const float down = fraction((local.z * 0.5F + 0.5F) * 5.0F);
  const bool gap = across < 0.1F || across > 0.9F || down < 0.12F || down > 0.88F;
  const bool letter = across > 0.3F && across < 0.5F && down > 0.3F && down < 0.6F;
  return gap ? 0.12F : letter ? 0.3F : 1.0F;
}

constexpr Material kPlastic{{0.025F, 0.025F, 0.028F}, 0.6F, 0.25F};
constexpr Material kGlass{{0.03F, 0.032F, 0.036F}, 1.0F, 0.03F};
constexpr Material kMetal{{0.45F, 0.45F, 0.47F}, 0.8F, 0.3F};
constexpr Material kWood{{0.36F, 0.2F, 0.1F}, 0.7F, 0.18F, Texture::Wood};
constexpr Material kWall{{0.5F, 0.52F, 0.5F}, 0.0F, 0.0F, Texture::Plaster};
constexpr Material kWhite{{0.75F, 0.73F, 0.69F}, 0.5F, 0.1F};

void addShell(std::vector<Object>* objects) {
  const Material floor{{0.2F, 0.18F, 0.16F}};
  const Material white{{0.7F, 0.69F, 0.66F}};
  objects->insert(objects->end(), {
                                      {Shape::Box, {0, 0.5F, -0.85F}, {3, 2, 0.05F}, {}, kWall},
                                      {Shape::Box, {0, 0.5F, 2.6F}, {3, 2, 0.05F}, {}, white},
                                      {Shape::Box, {-1.75F, 0.5F, 1}, {0.05F, 2, 3}, {}, white},
                                      {Shape::Box, {1.9F, 0.5F, 1}, {0.05F, 2, 3}, {}, {{0.6F, 0.42F, 0.3F}}},
                                      {Shape::Box, {0, 1.8F, 1}, {3, 0.05F, 3}, {}, white},
                                      {Shape::Box, {0, -0.8F, 1}, {3, 0.05F, 3}, {}, floor},
                                      {Shape::Box, {0, -0.02F, -0.1F}, {1.1F, 0.02F, 0.42F}, {}, kWood},
                                  });
}

void addShelf(std::vector<Object>* objects) {
  objects->push_back({Shape::Box, {0.55F, 0.5F, -0.68F}, {0.5F, 0.012F, 0.12F}, {}, kWood});
  const Vec colours[] = {{0.5F, 0.1F, 0.08F}, {0.08F, 0.16F, 0.3F}, {0.6F, 0.5F, 0.3F},    {0.1F, 0.25F, 0.18F},
                         {0.7F, 0.66F, 0.6F}, {0.4F, 0.2F, 0.06F},  {0.12F, 0.12F, 0.14F}, {0.55F, 0.3F, 0.12F},
                         {0.2F, 0.3F, 0.42F}, {0.62F, 0.14F, 0.2F}};
  float left = 0.12F;
  for (int i = 0; i < 10; ++i) {
    const float half_width = 0.012F + 0.012F * cellNoise(i, 1);
    const float half_height = 0.085F + 0.04F * cellNoise(i, 2);
    objects->push_back({Shape::Box,
                        {left + half_width, 0.512F + half_height, -0.66F},
                        {half_width, half_height, 0.075F},
                        {},
                        {colours[i], 0.3F, 0.3F}});
    left += 2.0F * half_width + 0.002F;
  }
  objects->push_back({Shape::Cylinder, {0.8F, 0.57F, -0.66F}, {0.05F, 0.058F, 0.05F}, {}, kWhite});
  objects->push_back({Shape::Sphere,
                      {0.8F, 0.67F, -0.66F},
                      {0.062F, 0.075F, 0.062F},
                      {},
                      {{0.1F, 0.26F, 0.09F}, 0, 0, Texture::Ribs}});
}

void addDeskTop(std::vector<Object>* objects) {
  const Material keys{{0.3F, 0.3F, 0.31F}, 0.2F, 0.4F, Texture::Keys};
  objects->insert(
      objects->end(),
      {
          {Shape::Box, {-0.06F, 0.006F, 0.13F}, {0.16F, 0.006F, 0.055F}, Turn::by(0.12F), keys},
          {Shape::Sphere, {0.2F, 0.008F, 0.16F}, {0.03F, 0.016F, 0.05F}, Turn::by(0.1F), kPlastic},
          {Shape::Cylinder, {0.36F, 0.045F, -0.04F}, {0.04F, 0.045F, 0.04F}, {}, {{0.55F, 0.12F, 0.07F}, 0.8F, 0.08F}},
          {Shape::Cylinder,
           {0.36F, 0.0903F, -0.04F},
           {0.036F, 0.0004F, 0.036F},
           {},
           {{0.03F, 0.015F, 0.008F}, 1.0F, 0.02F}},
          {Shape::Box,
           {-0.5F, 0.012F, 0.02F},
           {0.11F, 0.012F, 0.08F},
           Turn::by(0.5F),
           {{0.1F, 0.2F, 0.3F}, 0.2F, 0.3F}},
          {Shape::Box,
           {-0.49F, 0.032F, 0.02F},
           {0.1F, 0.008F, 0.075F},
           Turn::by(0.3F),
           {{0.72F, 0.6F, 0.36F}, 0.2F, 0.3F}},
          {Shape::Cylinder, {0.56F, 0.008F, -0.26F}, {0.075F, 0.008F, 0.075F}, {}, kMetal},
          {Shape::Cylinder, {0.56F, 0.12F, -0.26F}, {0.008F, 0.12F, 0.008F}, {}, kMetal},
      });
}

// The monitor, 16 to 9, turned towards the window.
void addMonitor(Room* room) {
  const Turn turn = Turn::by(-0.22F);
  constexpr Vec kCentre{-0.1F, 0.3F, -0.14F};
  constexpr float kHalfWidth = 0.298F;
  constexpr float kHalfHeight = 0.1676F;
  constexpr float kBezel = 0.008F;
  const auto placed = [&](Vec offset) { return kCentre + turn.apply(offset); };
  room->objects.insert(room->objects.end(),
                       {
                           {Shape::Box, kCentre, {kHalfWidth + kBezel, kHalfHeight + kBezel, 0.012F}, turn, kPlastic},
                           {Shape::Box, placed({0, 0, 0.0121F}), {kHalfWidth, kHalfHeight, 0.0006F}, turn, kGlass},
                           {Shape::Box, placed({0, -0.17F, -0.035F}), {0.03F, 0.13F, 0.01F}, turn, kPlastic},
                           {Shape::Box, placed({0, -0.285F, 0}), {0.12F, 0.005F, 0.085F}, turn, kPlastic},
                       });
  const auto corner = [&](float x, float y) { return placed({x * kHalfWidth, y * kHalfHeight, 0.0127F}); };
  room->screen[0] = corner(-1, 1);
  room->screen[1] = corner(1, 1);
  room->screen[2] = corner(-1, -1);
  room->screen[3] = corner(1, -1);
}

// Whether a ray of unit direction misses the object's bounding sphere.
bool passesBy(const Object& object, const Ray& ray) {
  const Vec to_centre = object.centre - ray.origin;
  const float along = dot(to_centre, ray.direction);
  const float squared = dot(to_centre, to_centre);
  const float reach = dot(object.half, object.half);
  return squared - along * along > reach || (along < 0.0F && squared > reach);
}

}  // namespace

Hit intersect(const std::vector<Object>& objects, const Ray& ray, float farthest) {
  Hit nearest;
  nearest.distance = farthest;
  for (const Object& object : objects) {
    if (passesBy(object, ray)) {
      continue;
    }
    const Ray local{object.turn.undo(ray.origin - object.centre) / object.half,
                    object.turn.undo(ray.direction) / object.half};
    const Span span = spanOf(object.shape, local);
    const bool outside = span.enter > kNearest;
    const float distance = outside ? span.enter : span.leave;
    if (span.enter > span.leave || distance <= kNearest || distance >= nearest.distance) {
      continue;
    }
    const Vec normal = outside ? span.enter_normal : span.leave_normal * -1.0F;
    nearest = {distance, normalized(object.turn.apply(normal / object.half)), local.origin + local.direction * distance,
               &object};
  }
  return nearest;
}

Vec albedoAt(const Hit& hit) {
  const Material& material = hit.object->material;
  switch (material.texture) {
    case Texture::Plain:
      return material.albedo;
    case Texture::Wood:
      return material.albedo * woodShade(hit.local * hit.object->half);
    case Texture::Keys:
      return material.albedo * keyShade(hit.local);
    case Texture::Plaster:
      return material.albedo * (0.92F + 0.16F * smoothNoise(hit.local.x * 25.0F, hit.local.y * 17.0F));
    case Texture::Ribs:
      return material.albedo * (0.5F + 0.5F * std::cos(18.0F * std::atan2(hit.local.z, hit.local.x)));
  }
  return material.albedo;
}

Room makeRoom() {
  Room room;
  addShell(&room.objects);
  addShelf(&room.objects);
  addDeskTop(&room.objects);
  addMonitor(&room);
  room.window = {
      Shape::Box, {-1.68F, 0.75F, 0.15F}, {0.005F, 0.55F, 0.6F}, {}, {{}, 0, 0, Texture::Plain, {5.2F, 6.4F, 8.2F}}};
  room.lamp = {Shape::Sphere,
               {0.56F, 0.29F, -0.26F},
               {0.06F, 0.06F, 0.06F},
               {},
               {{}, 0, 0, Texture::Plain, {17.0F, 11.0F, 5.6F}}};
  room.objects.push_back(room.window);
  room.objects.push_back(room.lamp);
  return room;
}

}  // namespace vantorel::scene
