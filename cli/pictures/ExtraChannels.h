// Channels of an OpenEXR file besides those of its picture, as the file has them.
#pragma once

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace vantorel::cli {

class ExtraChannels {
 public:
  // Memory for those channels in that window, by the file's own count. It is not cleared.
  ExtraChannels(const Imf::ChannelList& channels, const Imath::Box2i& window);

  const Imf::ChannelList& channels() const { return channels_; }

  // Adds the channels to the buffer, for rows and columns within the window.
  void addTo(Imf::FrameBuffer& buffer) const;

  // Whether the window has all of another one.
  bool cover(const Imath::Box2i& window) const;

  // The channels in another window, zero where they have no samples in this one.
  ExtraChannels in(const Imath::Box2i& window) const;

 private:
  // The samples of a channel. Positions are counted in its own samples.
  struct Plane {
    Plane(const Imf::Channel& channel, const Imath::Box2i& window);

    std::size_t rowBytes() const { return sample_bytes * static_cast<std::size_t>(places.max.x - places.min.x + 1); }
    std::size_t bytes() const { return rowBytes() * static_cast<std::size_t>(places.max.y - places.min.y + 1); }
    char* at(int x, int y) const;

    std::size_t sample_bytes;
    Imath::Box2i places;
    std::unique_ptr<char[]> samples;
  };

  Imf::ChannelList channels_;
  Imath::Box2i window_;
  std::vector<Plane> planes_;
};

}  // namespace vantorel::cli
