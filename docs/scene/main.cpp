// Renders the plate of the guides' pictures by path tracing: one frame of a camera that moves past a desk.
//
//   scene FRAME WIDTHxHEIGHT [SAMPLES OUT.ppm]
//
// FRAME runs from 1 to 25; SAMPLES is the number of paths per pixel. Prints the corners of the monitor's screen in the
// picture as a line of a corners file: frame,ulx,uly,urx,ury,llx,lly,lrx,lry.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <vector>

#include "Room.h"

namespace {

using namespace vantorel::scene;

constexpr int kLastFrame = 25;
constexpr int kLongestPath = 4;
constexpr float kPi = std::numbers::pi_v<float>;

struct Camera {
  Vec position;
  Vec right;
  Vec up;
  Vec forward;
  float focal_length;    // in picture heights
  float focus_distance;  // metres
};

// A hand-held camera that moves from right to left and in, always towards the monitor.
Camera cameraAt(int frame) {
  const float t = static_cast<float>(frame - 1) / (kLastFrame - 1);
  const float sway = 0.004F * std::sin(9.0F * t) + 0.002F * std::sin(23.0F * t + 1.0F);
  const Vec position{0.66F - 0.75F * t, 0.42F - 0.04F * t + sway, 0.92F - 0.02F * t + sway};
  const Vec target{0.1F - 0.06F * t + sway, 0.215F - sway, -0.15F};
  const Vec forward = normalized(target - position);
  const Vec right = normalized(cross(forward, {0, 1, 0}));
  return {position, right, cross(right, forward), forward, 1.65F, dot(Vec{-0.08F, 0.28F, -0.13F} - position, forward)};
}

// A ray through a point of the picture, in picture heights from its middle, and through a point of the lens.
Ray rayThrough(const Camera& camera, float x, float y, Random* random) {
  constexpr float kLensRadius = 0.009F;
  const float radius = kLensRadius * std::sqrt(random->next());
  const float angle = 2.0F * kPi * random->next();
  const Vec lens = camera.right * (radius * std::cos(angle)) + camera.up * (radius * std::sin(angle));
  const Vec through = camera.forward + camera.right * (x / camera.focal_length) + camera.up * (y / camera.focal_length);
  return {camera.position + lens, normalized(through * camera.focus_distance - lens)};
}

Vec pointOnWindow(const Object& window, Random* random) {
  return window.centre + window.half * Vec{1, 2.0F * random->next() - 1.0F, 2.0F * random->next() - 1.0F};
}

// The light that a point of a matt surface gets straight from the window and the lamp, per unit of albedo.
Vec directLight(const Room& room, Vec point, Vec normal, Random* random) {
  Vec sum;
  const auto add = [&](const Object& light, Vec target, Vec light_normal, float area) {
    const Vec to_light = target - point;
    const float squared = dot(to_light, to_light);
    const Vec direction = to_light * (1.0F / std::sqrt(squared));
    const float cosines = std::max(dot(normal, direction), 0.0F) * std::max(-dot(light_normal, direction), 0.0F);
    if (cosines <= 0.0F) {
      return;
    }
    const Hit hit = intersect(room.objects, {point, direction}, std::sqrt(squared) * 1.001F);
    if (hit.object != nullptr && hit.object->material.emission.x > 0.0F) {
      sum = sum + light.material.emission * (cosines * area / (kPi * squared));
    }
  };
  const Object& window = room.window;
  add(window, pointOnWindow(window, random), {1, 0, 0}, 4.0F * window.half.y * window.half.z);
  // Half of the globe faces the point; the other half's samples give nothing.
  const Vec outward = random->direction();
  add(room.lamp, room.lamp.centre + outward * room.lamp.half.x, outward,
      4.0F * kPi * room.lamp.half.x * room.lamp.half.x);
  return sum;
}

Vec reflected(Vec direction, Vec normal, float roughness, Random* random) {
  const Vec mirror = direction - normal * (2.0F * dot(direction, normal));
  const Vec blurred = normalized(mirror + random->direction() * roughness);
  return dot(blurred, normal) > 0.0F ? blurred : mirror;
}

// The light that comes along a ray that has been scattered `depth` times. Without `sees_lights`, the window and the
// lamp themselves are dark, since directLight has counted them.
Vec radiance(const Room& room, const Ray& ray, int depth, bool sees_lights, Random* random) {
  const Hit hit = intersect(room.objects, ray, 100.0F);
  if (hit.object == nullptr || depth == kLongestPath) {
    return {};
  }
  const Material& material = hit.object->material;
  if (material.emission.x > 0.0F) {
    return sees_lights ? material.emission : Vec{};
  }
  const Vec point = ray.origin + ray.direction * hit.distance;
  const float grazing = 1.0F - std::abs(dot(ray.direction, hit.normal));
  const float reflectance = material.coat * (0.04F + 0.96F * std::pow(grazing, 5.0F));
  const auto coat = [&] {
    const Vec direction = reflected(ray.direction, hit.normal, material.roughness, random);
    return radiance(room, {point, direction}, depth + 1, true, random);
  };
  const auto base = [&] {
    const Vec direct = directLight(room, point, hit.normal, random);
    const Vec indirect = radiance(room, {point, random->cosineDirection(hit.normal)}, depth + 1, false, random);
    return albedoAt(hit) * (direct + indirect);
  };
  if (depth > 0 || reflectance == 0.0F) {
    return base();  // light reflected by a second coat would need too many samples
  }
  return coat() * reflectance + base() * (1.0F - reflectance);
}

// A film's response: linear light to an sRGB value, 0 to 1, bright light rolled off.
float developed(float light) {
  const float x = 0.95F * light;
  const float rolled = (x * (2.51F * x + 0.03F)) / (x * (2.43F * x + 0.59F) + 0.14F);
  return std::pow(std::clamp(rolled, 0.0F, 1.0F), 1.0F / 2.2F);
}

struct Picture {
  int width;
  int height;
  std::vector<unsigned char> pixels;
};

void renderRow(const Room& room, const Camera& camera, int frame, int samples, int y, Picture* picture) {
  const auto height = static_cast<float>(picture->height);
  const float aspect = static_cast<float>(picture->width) / height;
  Random random(static_cast<std::uint64_t>(frame) * 100000U + static_cast<std::uint64_t>(y));
  for (int x = 0; x < picture->width; ++x) {
    Vec light;
    float u = 0.0F;
    float v = 0.0F;
    for (int i = 0; i < samples; ++i) {
      u = (static_cast<float>(x) + random.next()) / height - 0.5F * aspect;
      v = 0.5F - (static_cast<float>(y) + random.next()) / height;
      light = light + radiance(room, rayThrough(camera, u, v, &random), 0, true, &random);
    }
    const float vignette = 1.0F / (1.0F + 0.35F * (u * u + v * v));
    const float grain = 0.014F * (random.next() + random.next() - 1.0F);
    const Vec mean = light * (vignette * vignette / static_cast<float>(samples));
    unsigned char* const pixel = picture->pixels.data() + 3 * (std::ptrdiff_t{y} * picture->width + x);
    const float channels[] = {mean.x, mean.y, mean.z};
    for (int c = 0; c < 3; ++c) {
      pixel[c] = static_cast<unsigned char>(std::clamp((developed(channels[c]) + grain) * 255.0F + 0.5F, 0.0F, 255.0F));
    }
  }
}

void render(const Room& room, const Camera& camera, int frame, int samples, Picture* picture) {
  const int count = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int first = 0; first < count; ++first) {
    threads.emplace_back([=, &room, &camera] {
      for (int y = first; y < picture->height; y += count) {
        renderRow(room, camera, frame, samples, y, picture);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

void printCorners(const Room& room, const Camera& camera, int frame, int width, int height) {
  std::printf("%d", frame);
  for (const Vec& corner : room.screen) {
    const Vec seen = corner - camera.position;
    const float scale = camera.focal_length * static_cast<float>(height) / dot(seen, camera.forward);
    std::printf(",%.1f,%.1f", 0.5F * static_cast<float>(width) + scale * dot(seen, camera.right),
                0.5F * static_cast<float>(height) - scale * dot(seen, camera.up));
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  int width = 0;
  int height = 0;
  const bool draws = argc == 5;
  const int frame = argc == 3 || draws ? std::atoi(argv[1]) : 0;
  const int samples = draws ? std::atoi(argv[3]) : 1;
  if (frame < 1 || frame > kLastFrame || samples < 1 || std::sscanf(argv[2], "%dx%d", &width, &height) != 2 ||
      std::clamp(width, 1, 8192) != width || std::clamp(height, 1, 8192) != height) {
    std::fputs("usage: scene FRAME WIDTHxHEIGHT [SAMPLES OUT.ppm] (FRAME from 1 to 25)\n", stderr);
    return 2;
  }
  const Room room = makeRoom();
  const Camera camera = cameraAt(frame);
  printCorners(room, camera, frame, width, height);
  if (!draws) {
    return 0;
  }
  Picture picture{width, height, {}};
  picture.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
  render(room, camera, frame, samples, &picture);

  std::ofstream file(argv[4], std::ios::binary);
  file << "P6\n" << width << ' ' << height << "\n255\n";
  file.write(reinterpret_cast<const char*>(picture.pixels.data()), static_cast<std::streamsize>(picture.pixels.size()));
  if (!file.flush()) {
    std::fprintf(stderr, "scene: %s cannot be written; check the folder and the space left\n", argv[4]);
    return 1;
  }
  return 0;
}
