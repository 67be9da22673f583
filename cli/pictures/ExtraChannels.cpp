#include "cli/pictures/ExtraChannels.h"

#include <algorithm>
#include <cstring>

namespace vantorel::cli {

namespace {

// Towards minus infinity, as OpenEXR counts the samples of channels that do not have one for every pixel.
int floorDivided(int value, int by) {
  return value >= 0 ? value / by : -((by - 1 - value) / by);
}

int ceilDivided(int value, int by) {
  return floorDivided(value - 1, by) + 1;
}

Imath::Box2i placesIn(const Imath::Box2i& window, const Imf::Channel& channel) {
  return {{ceilDivided(window.min.x, channel.xSampling), ceilDivided(window.min.y, channel.ySampling)},
          {floorDivided(window.max.x, channel.xSampling), floorDivided(window.max.y, channel.ySampling)}};
}

Imath::Box2i overlap(const Imath::Box2i& a, const Imath::Box2i& b) {
  return {{std::max(a.min.x, b.min.x), std::max(a.min.y, b.min.y)},
          {std::min(a.max.x, b.max.x), std::min(a.max.y, b.max.y)}};
}

}  // namespace

ExtraChannels::Plane::Plane(const Imf::Channel& channel, const Imath::Box2i& window)
    : sample_bytes(channel.type == Imf::HALF ? 2 : 4),
      places(placesIn(window, channel)),
      samples(std::make_unique_for_overwrite<char[]>(bytes())) {}

char* ExtraChannels::Plane::at(int x, int y) const {
  return samples.get() + (y - places.min.y) * static_cast<std::ptrdiff_t>(rowBytes()) +
         (x - places.min.x) * static_cast<std::ptrdiff_t>(sample_bytes);
}

ExtraChannels::ExtraChannels(const Imf::ChannelList& channels, const Imath::Box2i& window)
    : channels_(channels), window_(window) {
  for (auto it = channels_.begin(); it != channels_.end(); ++it) {
    planes_.emplace_back(it.channel(), window);
  }
}

void ExtraChannels::addTo(Imf::FrameBuffer& buffer) const {
  auto plane = planes_.begin();
  for (auto it = channels_.begin(); it != channels_.end(); ++it, ++plane) {
    const Imf::Channel& channel = it.channel();
    // OpenEXR addresses a sample by its position, counted from the display window's origin.
    buffer.insert(it.name(), Imf::Slice(channel.type, plane->at(0, 0), plane->sample_bytes, plane->rowBytes(),
                                        channel.xSampling, channel.ySampling));
  }
}

bool ExtraChannels::cover(const Imath::Box2i& window) const {
  return overlap(window_, window) == window;
}

ExtraChannels ExtraChannels::in(const Imath::Box2i& window) const {
  ExtraChannels moved(channels_, window);
  for (std::size_t c = 0; c < planes_.size(); ++c) {
    const Plane& from = planes_[c];
    const Plane& to = moved.planes_[c];
    std::memset(to.samples.get(), 0, to.bytes());
    const Imath::Box2i both = overlap(from.places, to.places);
    for (int y = both.min.y; y <= both.max.y && both.min.x <= both.max.x; ++y) {
      std::memcpy(to.at(both.min.x, y), from.at(both.min.x, y),
                  from.sample_bytes * static_cast<std::size_t>(both.max.x - both.min.x + 1));
    }
  }
  return moved;
}

}  // namespace vantorel::cli
