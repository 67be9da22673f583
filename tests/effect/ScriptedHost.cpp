#include "tests/effect/ScriptedHost.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <ostream>

#include "effect/EffectMain.h"

namespace {

constexpr std::uint8_t kGuard = 0xDB;
constexpr std::size_t kGuardBytes = 64;

ScriptedHost* current = nullptr;

std::string text(const M_LRect* r) {
  return r == nullptr ? "null" : fmt::format("[{} {} {} {}]", r->left, r->top, r->right, r->bottom);
}

std::string text(const void* p) {
  return current->name(p);
}

// The address of a function as one of data, to give it a name.
template <typename Function>
const void* address(Function* function) {
  return reinterpret_cast<const void*>(function);
}

template <typename Pixel>
std::int32_t sample(void* effectRef, std::int32_t x, std::int32_t y, const PF_SampleParams* p, Pixel* out) {
  current->samples.push_back({x, y, p->x_radius, p->y_radius, p->area, p->source});
  if (current->samplerWrites && effectRef == current->in.effect_ref) {
    *out = pixelFromCode<Pixel>(static_cast<std::uint32_t>(current->samples.size()));
  }
  return 99;
}

// All nine iterators. `originText` is empty for the kind without an origin.
template <typename Pixel, typename Function>
std::int32_t iterate(const char* callback, PF_InData* in, std::int32_t base, std::int32_t total, PF_LayerDef* source,
                     const M_LRect* area, const std::string& originText, void* refcon, Function* function,
                     PF_LayerDef* destination) {
  const std::int32_t code = current->called(
      callback, fmt::format("{} {} {} {} {}{} {} {}", in == &current->in ? "in" : "?", base, total, text(source),
                            text(area), originText, text(address(function)), text(destination)));
  current->onIterate(refcon);
  for (int y = area->top; code == 0 && y < area->bottom; ++y) {
    for (int x = area->left; x < area->right; ++x) {
      auto* row = static_cast<std::uint8_t*>(destination->data) + std::ptrdiff_t{y} * destination->row_bytes;
      function(refcon, x, y, nullptr, reinterpret_cast<Pixel*>(row) + x);
    }
  }
  return code;
}

template <typename Pixel, int kIndex, typename Function>
std::int32_t iteratePlain(PF_InData* in, std::int32_t base, std::int32_t total, PF_LayerDef* source,
                          const M_LRect* area, void* refcon, Function function, PF_LayerDef* destination) {
  constexpr const char* kNames[] = {"iterate_8", "iterate_16", "iterate_float"};
  return iterate<Pixel>(kNames[kIndex], in, base, total, source, area, "", refcon, function, destination);
}

template <typename Pixel, int kIndex, typename Function>
std::int32_t iterateOrigin(PF_InData* in, std::int32_t base, std::int32_t total, PF_LayerDef* source,
                           const M_LRect* area, const M_LPoint* origin, void* refcon, Function function,
                           PF_LayerDef* destination) {
  constexpr const char* kNames[] = {"iterate_origin_8",           "iterate_origin_16",
                                    "iterate_origin_float",       "iterate_origin_non_clip_8",
                                    "iterate_origin_non_clip_16", "iterate_origin_non_clip_float"};
  return iterate<Pixel>(kNames[kIndex], in, base, total, source, area, fmt::format(" ({} {})", origin->x, origin->y),
                        refcon, function, destination);
}

std::int32_t checkoutParam(void* ref, std::int32_t index, std::int32_t time, std::int32_t step, std::uint32_t scale,
                           PF_ParamDef* out) {
  const std::int32_t code =
      current->called("checkout_param", fmt::format("{} {} {} {} {}", text(ref), index, time, step, scale));
  if (code == 0) {
    *out = current->values[index];
    out->param_id = index;
  }
  return code;
}

std::int32_t checkinParam(void* ref, PF_ParamDef* param) {
  return current->called("checkin_param", fmt::format("{} {}", text(ref), param->param_id));
}

std::int32_t addParam(void* ref, std::int32_t position, PF_ParamDef* definition) {
  current->added.push_back(*definition);
  return current->called("add_param", fmt::format("{} {} {}", text(ref), position, definition->name));
}

std::int32_t registerTable(void** reference, std::int32_t format) {
  current->registeredTable = *reference;
  *reference = current->replacementTable;
  return current->called("register_string_table", std::to_string(format));
}

const char* lookupString(void* reference, std::int32_t row, std::int32_t zero, void* null) {
  current->called("lookup_string", fmt::format("{} {} {} {}", text(reference), row, zero, text(null)));
  return current->strings.at(static_cast<std::size_t>(row)).c_str();
}

std::int32_t unregisterTable(void** reference) {
  return current->called("unregister_string_table", text(*reference));
}

PF_Handle newHandle(std::uint64_t size) {
  return current->called("new_handle", std::to_string(size)) != 0 ? nullptr : &current->handle;
}

void disposeHandle(PF_Handle block) {
  current->called("dispose_handle", text(block));
}

int formatMessage(char* destination, const char* format, ...) {
  current->called("sprintf", format);
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(destination, PF_RETURN_MSG_CAPACITY, format, arguments);
  va_end(arguments);
  return length;
}

char* copyString(char* destination, const char* source) {
  current->called("strcpy", source);
  return std::strcpy(destination, source);
}

std::int32_t fill(void* ref, const void* color, const M_LRect* rect, PF_LayerDef* world) {
  if (world == &current->output.world) {
    current->output.fillBytes(0);
  }
  return current->called("fill", fmt::format("{} {} {} {}", text(ref), text(color), text(rect), text(world)));
}

std::int32_t acquireSuite(const char* name, std::int32_t version, const void** suite) {
  const std::string key = fmt::format("{}/{}", name, version);
  const std::int32_t code = current->called("acquire", key);
  const auto found = current->suites.find(key);
  if (found == current->suites.end()) {
    return code != 0 ? code : 1;
  }
  *suite = found->second;
  return code;
}

std::int32_t releaseSuite(const char* name, std::int32_t version) {
  return current->called("release", fmt::format("{}/{}", name, version));
}

std::int32_t newWorld(void* ref, std::int32_t width, std::int32_t height, bool clear, std::int32_t format,
                      PF_LayerDef* world) {
  return current->called("new_world", fmt::format("{} {} {} {} {:.4} {}", text(ref), width, height, clear,
                                                  std::string(reinterpret_cast<const char*>(&format), 4), text(world)));
}

std::int32_t getPixelFormat(PF_LayerDef* world, std::int32_t* format) {
  *format = current->pixelFormat;
  return current->called("get_pixel_format", text(world));
}

std::int32_t checkoutLayer(void* ref, std::int32_t index, std::int32_t id, const PF_RenderRequest* request,
                           std::int32_t time, std::int32_t step, std::uint32_t scale, PF_CheckoutResult* out) {
  *out = current->checkout;
  const bool sameTail = std::memcmp(request->reserved, current->request.reserved, sizeof request->reserved) == 0;
  return current->called("checkout_layer", fmt::format("{} {} {} {}{} {} {} {}", text(ref), index, id,
                                                       text(&request->rect), sameTail ? "" : "?", time, step, scale));
}

std::int32_t checkoutPixels(void* ref, std::int32_t id, PF_LayerDef** world) {
  *world = current->handsBackWorlds ? &current->input.world : nullptr;
  return current->called("checkout_layer_pixels", fmt::format("{} {}", text(ref), id));
}

std::int32_t checkoutOutput(void* ref, PF_LayerDef** world) {
  *world = current->handsBackWorlds ? &current->output.world : nullptr;
  return current->called("checkout_output", text(ref));
}

const PF_WorldSuite2 kWorldSuite = {newWorld, nullptr, getPixelFormat};
const PF_iterateFloatSuite1 kIterateFloatSuite = {iteratePlain<PF_PixelFloat, 2>, iterateOrigin<PF_PixelFloat, 2>,
                                                  iterateOrigin<PF_PixelFloat, 5>};
const PF_SamplingFloatSuite1 kSamplingFloatSuite = {nullptr, nullptr, sample<PF_PixelFloat>};

}  // namespace

const Log kReadCorners = {"checkout_param fx 1 5 2 24", "checkin_param fx 1",         "checkout_param fx 2 5 2 24",
                          "checkin_param fx 2",         "checkout_param fx 4 5 2 24", "checkin_param fx 4",
                          "checkout_param fx 3 5 2 24", "checkin_param fx 3"};
const Log kAskDepth = {"acquire PF World Suite/2", "get_pixel_format output", "release PF World Suite/2"};

Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

std::ostream& operator<<(std::ostream& stream, const Sample& s) {
  return stream << fmt::format("({}, {}) radii {} {} area {}", s.x, s.y, s.x_radius, s.y_radius, s.area);
}

GuardedWorld::GuardedWorld(int depth, int width, int height) : pixelRowBytes_(std::size_t(width) * (depth / 2)) {
  const std::size_t rowBytes = pixelRowBytes_ + std::size_t(depth / 2) * 3;
  bytes_.assign(2 * kGuardBytes + rowBytes * std::size_t(height), kGuard);
  world = {bytes_.data() + kGuardBytes, static_cast<std::int32_t>(rowBytes), width, height, {0, 0, width, height}};
  fillBytes(0);
}

void GuardedWorld::fillBytes(std::uint8_t value) {
  for (int y = 0; y < world.height; ++y) {
    std::memset(&at<std::uint8_t>(0, y), value, pixelRowBytes_);
  }
}

bool GuardedWorld::guardsIntact() const {
  std::size_t guards = bytes_.size() - pixelRowBytes_ * std::size_t(world.height);
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    const std::size_t fromTop = i - kGuardBytes;
    const std::size_t rowBytes = std::size_t(world.row_bytes);
    const bool isPixel =
        i >= kGuardBytes && fromTop / rowBytes < std::size_t(world.height) && fromTop % rowBytes < pixelRowBytes_;
    guards -= !isPixel && bytes_[i] == kGuard ? 1 : 0;
  }
  return guards == 0;
}

ScriptedHost::ScriptedHost(int depth, M_LPoint layerSize, M_LPoint outputSize)
    : entry(EffectMainExtra),
      input(depth, layerSize.x, layerSize.y),
      output(depth, outputSize.x, outputSize.y),
      replacementTable(block),
      pixelFormat(depth == 8    ? PF_PIXEL_FORMAT_ARGB8
                  : depth == 16 ? PF_PIXEL_FORMAT_ARGB16
                                : PF_PIXEL_FORMAT_ARGB32F),
      block{block},
      handle(block),
      squareRoot([](double value) { return std::sqrt(value); }) {
  current = this;
  in.checkout_param = checkoutParam;
  in.checkin_param = checkinParam;
  in.add_param = addParam;
  in.register_string_table = registerTable;
  in.lookup_string = lookupString;
  in.unregister_string_table = unregisterTable;
  in.utility_callbacks = &utilities;
  in.effect_ref = &names;
  in.quality = PF_QUALITY_HIGH;
  in.current_time = 5;
  in.time_step = 2;
  in.time_scale = 24;
  in.width = layerSize.x;
  in.height = layerSize.y;
  in.downsample_x_num = in.downsample_y_num = 1;
  in.downsample_x_den = in.downsample_y_den = 1;
  in.global_data = &handle;
  in.suite_provider = &provider;

  utilities.sample_area_8 = sample<PF_Pixel8>;
  utilities.sample_area_16 = sample<PF_Pixel16>;
  utilities.fill = fill;
  utilities.iterate_8 = iteratePlain<PF_Pixel8, 0>;
  utilities.iterate_16 = iteratePlain<PF_Pixel16, 1>;
  utilities.iterate_origin_8 = iterateOrigin<PF_Pixel8, 0>;
  utilities.iterate_origin_16 = iterateOrigin<PF_Pixel16, 1>;
  utilities.iterate_origin_non_clip_src_8 = iterateOrigin<PF_Pixel8, 3>;
  utilities.iterate_origin_non_clip_src_16 = iterateOrigin<PF_Pixel16, 4>;
  utilities.new_handle = newHandle;
  utilities.dispose_handle = disposeHandle;
  utilities.ceil = [](double value) { return std::ceil(value); };
  utilities.sqrt = [](double value) { return current->squareRoot(value); };
  utilities.sprintf = formatMessage;
  utilities.strcpy = copyString;
  provider = {acquireSuite, releaseSuite};
  suites = {{"PF World Suite/2", &kWorldSuite},
            {"PF iterateFloat Suite/1", &kIterateFloatSuite},
            {"PF SamplingFloat Suite/1", &kSamplingFloatSuite}};

  values[0].value.layer_world = input.world;
  const double w = layerSize.x;
  const double h = layerSize.y;
  setCorners({{0, 0}, {w, 0}, {w, h}, {0, h}});
  request.rect = {0, 0, layerSize.x, layerSize.y};
  std::memset(request.reserved, 0x5C, sizeof request.reserved);
  checkout = {request.rect, request.rect};
  names = {{in.effect_ref, "fx"},   {block, "table"},          {&handle, "handle"},
           {&input.world, "input"}, {&output.world, "output"}, {&values[0].value.layer_world, "input"}};
  std::memset(static_cast<void*>(&out), 0xA5, sizeof out);
  outAtFirst_.assign(reinterpret_cast<const char*>(&out), sizeof out);
}

ScriptedHost::~ScriptedHost() {
  current = nullptr;
}

void ScriptedHost::setCorners(const double (&corners)[4][2]) {
  constexpr int kParameters[4] = {1, 2, 4, 3};
  for (int i = 0; i < 4; ++i) {
    PF_PointValue& point = values[kParameters[i]].value.point;
    point.point_x = static_cast<std::int32_t>(corners[i][0] * 65536.0);
    point.point_y = static_cast<std::int32_t>(corners[i][1] * 65536.0);
  }
}

void ScriptedHost::fail(const std::string& callback, int nth, std::int32_t code, bool ever) {
  failures_[callback] = [=](int call) { return call == nth || (ever && call > nth) ? code : 0; };
}

std::int32_t ScriptedHost::run(std::int32_t command) {
  PF_ParamDef* params[5];
  for (int i = 0; i < 5; ++i) {
    params[i] = &values[i];
  }
  PF_PreRenderCallbacks preCallbacks = {checkoutLayer};
  PF_PreRenderExtra pre = {&request, &result, &preCallbacks};
  PF_SmartRenderCallbacks smartCallbacks = {checkoutPixels, nullptr, checkoutOutput};
  PF_SmartRenderExtra smart = {&smartCallbacks};
  void* extra = command == CMD_PRE_RENDER ? static_cast<void*>(&pre) : command == CMD_SMART_RENDER ? &smart : nullptr;
  return entry(command, &in, &out, extra == nullptr ? params : nullptr, extra == nullptr ? &output.world : nullptr,
               extra);
}

bool ScriptedHost::outIs(const std::function<void(PF_OutData&)>& change) const {
  PF_OutData expected;
  std::memcpy(static_cast<void*>(&expected), outAtFirst_.data(), sizeof expected);
  change(expected);
  return std::memcmp(&expected, &out, sizeof out) == 0;
}

std::string ScriptedHost::name(const void* pointer) const {
  const auto found = names.find(pointer);
  return pointer == nullptr ? "null" : found != names.end() ? found->second : "?";
}

std::int32_t ScriptedHost::called(const std::string& callback, const std::string& arguments) {
  log.push_back(callback + " " + arguments);
  const int call = ++calls_[callback];
  const auto failure = failures_.find(callback);
  return failure == failures_.end() ? 0 : failure->second(call);
}
