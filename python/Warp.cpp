#include "python/Warp.h"

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "bridges/common/EmbeddedModule.h"
#include "host/Instance.h"
#include "python/Pixels.h"

namespace vantorel::python {

namespace {

// Kept from one picture to the next, so that a second one of the same size allocates nothing here.
struct Renderer {
  host::Instance instance{valueOrRaise(bridges::embeddedModule())};
  host::Image layer;
  host::Image output;
};

using Renderers = std::vector<std::unique_ptr<Renderer>>;

Renderers& threadsIdleRenderers() {
  thread_local Renderers idle;
  return idle;
}

// One of this thread's renderers that no other warp is using. Warps of one thread can nest: Python may run signal
// handlers in the middle of a picture, and user code while it converts arguments.
class BorrowedRenderer {
 public:
  BorrowedRenderer() {
    Renderers& idle = threadsIdleRenderers();
    idle.reserve(kMostKept);
    if (idle.empty()) {
      renderer_ = std::make_unique<Renderer>();
    } else {
      renderer_ = std::move(idle.back());
      idle.pop_back();
    }
  }
  ~BorrowedRenderer() {
    Renderers& idle = threadsIdleRenderers();
    if (idle.size() < kMostKept) {
      idle.push_back(std::move(renderer_));
    }
  }
  BorrowedRenderer(const BorrowedRenderer&) = delete;
  BorrowedRenderer& operator=(const BorrowedRenderer&) = delete;

  Renderer& operator*() { return *renderer_; }

 private:
  static constexpr std::size_t kMostKept = 4;  // for nested warps; reserved, so that giving one back never allocates

  std::unique_ptr<Renderer> renderer_;
};

// Thrown through the host when a signal handler has raised an exception, which is in Python's thread state.
struct SignalRaised {};

// Checks for Ctrl-C at intervals, on the thread that Python called.
class SignalCheck {
 public:
  void operator()() {
    constexpr std::chrono::milliseconds kInterval{50};
    const auto now = std::chrono::steady_clock::now();
    if (std::this_thread::get_id() != thread_ || now < next_) {
      return;
    }
    next_ = now + kInterval;
    const py::gil_scoped_acquire gil;
    if (PyErr_CheckSignals() != 0) {
      throw SignalRaised{};
    }
  }

 private:
  std::thread::id thread_ = std::this_thread::get_id();
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now();
};

host::Quality qualityFrom(const std::string& name) {
  if (name == "standard") {
    return host::Quality::Standard;
  }
  if (name == "high") {
    return host::Quality::High;
  }
  if (name == "best") {
    return host::Quality::Best;
  }
  refuse("quality", "'" + name + "' is unknown; use 'standard', 'high' or 'best'");
}

std::optional<host::Edges> edgesFrom(const std::optional<std::string>& name) {
  if (!name) {
    return std::nullopt;
  }
  if (*name != "soft" && *name != "crisp") {
    refuse("edges", "'" + *name + "' is unknown; use 'soft', 'crisp' or None");
  }
  return *name == "soft" ? host::Edges::Soft : host::Edges::Crisp;
}

host::FrameOptions frameOptions(const WarpArguments& arguments) {
  if (arguments.threads < 0) {
    refuse("threads", std::to_string(arguments.threads) + " is negative; give 1 or more, or 0 for as many as possible");
  }
  host::FrameOptions options;
  options.quality = qualityFrom(arguments.quality);
  options.edges = edgesFrom(arguments.edges);
  options.samples = arguments.samples;
  options.threads = static_cast<unsigned>(arguments.threads);
  return options;
}

host::Rect canvasOf(const WarpArguments& arguments, host::Size layer) {
  if (arguments.size && arguments.canvas) {
    refuse("canvas", "it conflicts with size; omit one of them");
  }
  if (!arguments.canvas) {
    const host::Size size = arguments.size ? sizeFrom(*arguments.size, "size") : layer;
    return {0, 0, size.width, size.height};
  }
  const auto [left, top, right, bottom] = *arguments.canvas;
  sizeFrom({std::int64_t{right} - left, std::int64_t{bottom} - top}, "canvas");
  return {left, top, right, bottom};
}

// One number for all colours, three colours or four channels, in straight alpha.
std::optional<Background> backgroundFrom(const py::object& object, host::Depth depth) {
  if (object.is_none()) {
    return std::nullopt;
  }
  const auto values = py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(object);
  if (!values || values.ndim() > 1 || (values.size() != 1 && values.size() != 3 && values.size() != 4)) {
    PyErr_Clear();
    refuse("background", "it is neither a number nor a sequence of 3 or 4; give one value for each channel");
  }
  const double opaque = depth == host::Depth::Float ? 1.0 : depth == host::Depth::Bits8 ? 255.0 : 65535.0;
  const double alpha = values.size() == 4 ? values.data()[3] : opaque;
  Background background{};
  for (std::size_t c = 0; c < 4; ++c) {
    const double value = c == 3 ? opaque : values.data()[values.size() == 1 ? 0 : c];
    if (!std::isfinite(value) || !(alpha >= 0.0 && alpha <= opaque) ||
        (depth != host::Depth::Float && !(value >= 0.0 && value <= opaque))) {
      refuse("background", "a value is out of range; give numbers that the picture's channels can hold");
    }
    background[c] = static_cast<float>(value * alpha / opaque);
  }
  return background;
}

void setCorners(host::Instance& instance, const WarpArguments& arguments, host::Size layer) {
  const host::Corners own{{0.0, 0.0},
                          {static_cast<double>(layer.width), 0.0},
                          {0.0, static_cast<double>(layer.height)},
                          {static_cast<double>(layer.width), static_cast<double>(layer.height)}};
  host::Result<void> set =
      instance.setCorners(arguments.corners.is_none() ? own : cornersFrom(arguments.corners, "corners"));
  instance.clearSource();
  if (set && !arguments.from_corners.is_none()) {
    set = instance.setSource(cornersFrom(arguments.from_corners, "from_corners"));
  }
  if (!set) {
    raise(set.error());
  }
}

py::array outputFor(const WarpArguments& arguments, host::Size size) {
  std::vector<py::ssize_t> shape{size.height, size.width};
  if (arguments.image.ndim() == 3) {
    shape.push_back(arguments.image.shape(2));
  }
  if (!arguments.out) {
    return py::array(arguments.image.dtype(), shape);
  }
  const py::array& out = *arguments.out;
  if (!out.writeable()) {
    refuse("out", "it is read-only; give an array that can be written");
  }
  if (!std::equal(shape.begin(), shape.end(), out.shape(), out.shape() + out.ndim()) ||
      !out.dtype().equal(arguments.image.dtype())) {
    refuse("out",
           "its shape or dtype is not the result's; give the image's dtype and channels, and the size asked for");
  }
  return out;
}

host::Result<void> draw(Renderer& renderer, const PixelArray& image, const host::Rect& canvas, const PixelArray& to,
                        const std::optional<Background>& background, bool premultiplied,
                        const host::FrameOptions& options) {
  std::optional<host::ImageView> layer = hostView(image);
  // The host cannot draw in place: the layer must not be the output.
  if (!layer || mayShareMemory(image, to) || (!premultiplied && !isOpaque(asConst(*layer)))) {
    if (host::Result<void> fitted = renderer.layer.fit(image.size, image.depth); !fitted) {
      return fitted;
    }
    layer = renderer.layer.view();
    toHost(image, premultiplied, *layer);
  }
  std::optional<host::ImageView> output = hostView(to);
  if (!output) {
    if (host::Result<void> fitted = renderer.output.fit(to.size, to.depth); !fitted) {
      return fitted;
    }
    output = renderer.output.view();
  }
  return renderer.instance.render(asConst(*layer), canvas, *output, options).map([&](const host::FrameResult& frame) {
    fromHost(*output, frame.drawn, background, premultiplied, to);
  });
}

}  // namespace

py::array warp(const WarpArguments& arguments) {
  const PixelArray image = pixelArrayOf(arguments.image, "image");
  host::FrameOptions options = frameOptions(arguments);
  const host::Rect canvas = canvasOf(arguments, image.size);
  const std::optional<Background> background = backgroundFrom(arguments.background, image.depth);
  BorrowedRenderer borrowed;
  Renderer& renderer = *borrowed;
  setCorners(renderer.instance, arguments, image.size);
  py::array result = outputFor(arguments, {canvas.width(), canvas.height()});
  const PixelArray to = pixelArrayOf(result, "out");

  SignalCheck check;
  options.progress = [&check](double) { check(); };
  host::Result<void> drawn;
  try {
    const py::gil_scoped_release without_gil;
    drawn = draw(renderer, image, canvas, to, background, arguments.premultiplied, options);
  } catch (const SignalRaised&) {
    throw py::error_already_set();
  }
  if (!drawn) {
    raise(drawn.error());
  }
  return result;
}

}  // namespace vantorel::python
