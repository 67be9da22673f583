// Channels of an OpenEXR file other than those of its picture, in the file's own sample types.
#pragma once

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace vantorel::cli {

class ExtraChannels {
 public:
  // Allocates memory for these channels and this window, in the file's sampling. It is not cleared.
  ExtraChannels(const Imf::ChannelList& channels, const Imath::Box2i& window);

  const Imf::ChannelList& channels() const { return channels_; }

  // Adds slices for the channels to the frame buffer; rows and columns must lie within the window.
  void addTo(Imf::FrameBuffer& buffer) const;

  // Whether the window contains another one.
  bool cover(const Imath::Box2i& window) const;

  // A copy for another window, with zeros where this one has no samples.
  ExtraChannels in(const Imath::Box2i& window) const;

 private:
  // The samples of one channel; positions count its own samples, which may be subsampled.
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
