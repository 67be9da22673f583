#include "bench/quality/TruthCache.h"

#include <fmt/format.h>

#include <fstream>
#include <stdexcept>

namespace vantorel::quality {

namespace {

// To be changed whenever the truth's definition changes.
constexpr std::uint64_t kVersion = 2;

// FNV-1a over values' bytes.
class Digest {
 public:
  template <typename Value>
  void add(const Value* values, std::size_t count) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(values);
    for (std::size_t i = 0; i < count * sizeof(Value); ++i) {
      value_ = (value_ ^ bytes[i]) * 0x100000001B3U;
    }
  }
  template <typename Value>
  void add(const Value& value) {
    add(&value, 1);
  }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325U;
};

std::uint64_t digestOf(const Scene& scene, std::span<const Layer> layers) {
  Digest digest;
  digest.add(kVersion);
  digest.add(kInsideSamples);
  digest.add(kEdgeSamples);
  digest.add(scene.path);
  digest.add(scene.canvas);
  for (const host::Point& corner : ringOf(scene.corners)) {
    digest.add(corner);
  }
  for (const Layer& layer : layers) {
    digest.add(layer.size);
    digest.add(layer.grey.data(), layer.grey.size());
  }
  return digest.value();
}

template <typename Visit>
void eachChannel(Truth& truth, const Visit& visit) {
  visit(truth.alpha);
  for (std::vector<float>& grey : truth.grey) {
    visit(grey);
  }
}

bool read(const std::filesystem::path& file, Truth& truth) {
  std::ifstream stream(file, std::ios::binary);
  eachChannel(truth, [&](std::vector<float>& channel) {
    stream.read(reinterpret_cast<char*>(channel.data()), static_cast<std::streamsize>(channel.size() * sizeof(float)));
  });
  return stream.good() && stream.peek() == std::ifstream::traits_type::eof();
}

// Written under another name first, so that a file is either complete or missing.
void write(const std::filesystem::path& file, Truth& truth) {
  std::filesystem::path unfinished = file;
  unfinished += ".part";
  std::ofstream stream(unfinished, std::ios::binary);
  eachChannel(truth, [&](const std::vector<float>& channel) {
    stream.write(reinterpret_cast<const char*>(channel.data()),
                 static_cast<std::streamsize>(channel.size() * sizeof(float)));
  });
  stream.close();
  if (!stream) {
    throw std::runtime_error(unfinished.string() + ": writing failed; free space on the disk");
  }
  std::filesystem::rename(unfinished, file);
}

}  // namespace

TruthCache::TruthCache(std::filesystem::path folder) : folder_(std::move(folder)) {
  std::filesystem::create_directories(folder_);
}

Truth TruthCache::truth(const Scene& scene, std::span<const Layer> layers) const {
  const std::filesystem::path file = folder_ / fmt::format("{:016x}.truth", digestOf(scene, layers));
  Truth truth = blankTruth(layers.size(), ringOf(scene.corners), scene.canvas);
  if (!read(file, truth)) {
    truth = truthOf(layers, mappingOf(scene), ringOf(scene.corners), scene.canvas);
    write(file, truth);
  }
  return truth;
}

}  // namespace vantorel::quality
