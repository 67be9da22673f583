#include "tests/effect/ScriptedHost.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "effect/EffectMain.h"

namespace {

ScriptedHost* current = nullptr;

std::string text(long long number) {
  return std::to_string(number);
}
std::string text(const char* string) {
  return string;
}
std::string text(const void* p) {
  const auto found = current->names.find(p);
  return p == nullptr ? "null" : found != current->names.end() ? found->second : "?";
}
std::string text(const M_LPoint* p) {
  return "(" + text(p->x) + " " + text(p->y) + ")";
}
std::string text(const M_LRect* r) {
  return r == nullptr ? "null"
                      : "[" + text(r->left) + " " + text(r->top) + " " + text(r->right) + " " + text(r->bottom) + "]";
}

// Logs a call as its name and arguments, and returns the code that it is to give.
template <typename... Arguments>
std::int32_t call(const std::string& callback, const Arguments&... arguments) {
  std::string line = callback;
  ((line += " " + text(arguments)), ...);
  return current->called(callback, line);
}

template <typename Pixel>
std::int32_t sample(void* effect_ref, std::int32_t x, std::int32_t y, const PF_SampleParams* p, Pixel* out) {
  current->samples.push_back({x, y, p->x_radius, p->y_radius, p->area, p->source});
  if (current->sampler_writes && effect_ref == current->in.effect_ref) {
    *out = pixelFromCode<Pixel>(static_cast<std::uint32_t>(current->samples.size()));
  }
  return 99;
}

template <typename Pixel, typename Function, typename... Origin>
std::int32_t iterateArea(const std::string& kind, PF_InData* in, std::int32_t base, std::int32_t total,
                         PF_LayerDef* source, const M_LRect* area, void* refcon, Function* function,
                         PF_LayerDef* destination, Origin... origin) {
  const std::string depth = sizeof(Pixel) == 4 ? "8" : sizeof(Pixel) == 8 ? "16" : "float";
  const std::int32_t code = call(kind + depth, static_cast<void*>(in), base, total, source, area, origin...,
                                 reinterpret_cast<const void*>(function), destination);
  current->on_iterate(refcon);
  // From the last row to the first: a host may draw them in any order.
  for (int y = area->bottom - 1; code == 0 && y >= area->top; --y) {
    for (int x = area->left; x < area->right; ++x) {
      auto* const row = static_cast<char*>(destination->data) + std::ptrdiff_t{y} * destination->row_bytes;
      function(refcon, x, y, nullptr, reinterpret_cast<Pixel*>(row) + x);
    }
  }
  return code;
}

template <typename Pixel, typename Function>
std::int32_t iterate(PF_InData* in, std::int32_t base, std::int32_t total, PF_LayerDef* source, const M_LRect* area,
                     void* refcon, Function function, PF_LayerDef* destination) {
  return iterateArea<Pixel>("iterate_", in, base, total, source, area, refcon, function, destination);
}

template <typename Pixel, bool kClips, typename Function>
std::int32_t iterateOrigin(PF_InData* in, std::int32_t base, std::int32_t total, PF_LayerDef* source,
                           const M_LRect* area, const M_LPoint* origin, void* refcon, Function function,
                           PF_LayerDef* destination) {
  return iterateArea<Pixel>(kClips ? "iterate_origin_" : "iterate_origin_non_clip_", in, base, total, source, area,
                            refcon, function, destination, origin);
}

int formatMessage(char* destination, const char* format, ...) {
  call("sprintf", format);
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(destination, PF_RETURN_MSG_CAPACITY, format, arguments);
  va_end(arguments);
  return length;
}

std::int32_t acquireSuite(const char* name, std::int32_t version, const void** suite) {
  const auto found = current->suites.find(std::string(name) + "/" + text(version));
  const std::int32_t code = call("acquire", name, version);
  if (found == current->suites.end() || (code != 0 && !current->failed_acquire_hands_over)) {
    return code != 0 ? code : 1;
  }
  *suite = found->second;
  ++current->suites_out;
  return code;
}

const PF_WorldSuite2 kWorldSuite = {
    [](void* ref, std::int32_t width, std::int32_t height, bool clear, std::int32_t format, PF_LayerDef* world) {
      const std::string tag(reinterpret_cast<const char*>(&format), 4);
      return call("new_world", ref, width, height, clear, tag.c_str(), world);
    },
    nullptr,
    [](PF_LayerDef* world, std::int32_t* format) {
      *format = current->pixel_format;
      return call("get_pixel_format", world);
    }};
const PF_iterateFloatSuite1 kIterateFloatSuite = {iterate<PF_PixelFloat>, iterateOrigin<PF_PixelFloat, true>,
                                                  iterateOrigin<PF_PixelFloat, false>};
const PF_SamplingFloatSuite1 kSamplingFloatSuite = {nullptr, nullptr, sample<PF_PixelFloat>};

void fillCallbacks(PF_InData* in) {
  in->checkout_param = [](void* ref, std::int32_t index, std::int32_t time, std::int32_t step, std::uint32_t scale,
                          PF_ParamDef* out) {
    const std::int32_t code = call("checkout_param", ref, index, time, step, scale);
    if (code == 0) {
      ++current->parameters_out;
      *out = current->values[index];
      out->param_id = index;
    }
    return code;
  };
  in->checkin_param = [](void* ref, PF_ParamDef* param) {
    --current->parameters_out;
    return call("checkin_param", ref, param->param_id);
  };
  in->add_param = [](void* ref, std::int32_t position, PF_ParamDef* d) {
    const PF_PointValue& p = d->value.point;
    return call("add_param", ref, position, d->param_id, d->ui_flags, d->ui_width, d->ui_height, d->param_type, d->name,
                d->param_flags, p.point_x, p.point_y, p.point_default_x, p.point_default_y);
  };
  in->register_string_table = [](void** reference, std::int32_t format) {
    current->registered_table = *reference;
    *reference = current->replacement_table;
    return call("register_string_table", format);
  };
  in->lookup_string = [](void* reference, std::int32_t row, std::int32_t zero, void* null) {
    call("lookup_string", reference, row, zero, null);
    return current->strings.at(static_cast<std::size_t>(row)).c_str();
  };
  in->unregister_string_table = [](void** reference) { return call("unregister_string_table", *reference); };
}

void fillUtilities(PF_UtilityCallbacks* u) {
  u->sample_area_8 = sample<PF_Pixel8>;
  u->sample_area_16 = sample<PF_Pixel16>;
  u->fill = [](void* ref, const void* color, const M_LRect* rect, PF_LayerDef* world) {
    current->output.fillBytes(0);
    return call("fill", ref, color, rect, world);
  };
  u->iterate_8 = iterate<PF_Pixel8>;
  u->iterate_16 = iterate<PF_Pixel16>;
  u->iterate_origin_8 = iterateOrigin<PF_Pixel8, true>;
  u->iterate_origin_16 = iterateOrigin<PF_Pixel16, true>;
  u->iterate_origin_non_clip_src_8 = iterateOrigin<PF_Pixel8, false>;
  u->iterate_origin_non_clip_src_16 = iterateOrigin<PF_Pixel16, false>;
  u->new_handle = [](std::uint64_t size) {
    return call("new_handle", static_cast<int>(size)) != 0 ? nullptr : &current->handle;
  };
  u->dispose_handle = [](PF_Handle handle) { call("dispose_handle", handle); };
  u->ceil = [](double value) { return std::ceil(value); };
  u->sqrt = [](double value) { return current->square_root_factor * std::sqrt(value); };
  u->sprintf = formatMessage;
  u->strcpy = [](char* destination, const char* source) {
    call("strcpy", source);
    return std::strcpy(destination, source);
  };
}

std::int32_t checkoutLayer(void* ref, std::int32_t index, std::int32_t id, const PF_RenderRequest* request,
                           std::int32_t time, std::int32_t step, std::uint32_t scale, PF_CheckoutResult* out) {
  *out = current->checkout;
  const bool same_tail = std::memcmp(request->reserved, current->request.reserved, sizeof request->reserved) == 0;
  return call(same_tail ? "checkout_layer" : "?", ref, index, id, &request->rect, time, step, scale);
}

std::int32_t checkoutPixels(void* ref, std::int32_t id, PF_LayerDef** world) {
  *world = current->hands_back_input ? &current->input.world : nullptr;
  return call("checkout_layer_pixels", ref, id);
}

std::int32_t checkoutOutput(void* ref, PF_LayerDef** world) {
  *world = current->hands_back_output ? &current->output.world : nullptr;
  return call("checkout_output", ref);
}

}  // namespace

const Log kReadCorners = {"checkout_param fx 1 5 2 24", "checkin_param fx 1",         "checkout_param fx 2 5 2 24",
                          "checkin_param fx 2",         "checkout_param fx 4 5 2 24", "checkin_param fx 4",
                          "checkout_param fx 3 5 2 24", "checkin_param fx 3"};
const Log kAskDepth = {"acquire PF World Suite 2", "get_pixel_format output", "release PF World Suite 2"};

Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

ScriptedHost::ScriptedHost(int depth, const WorldShape& layer, const WorldShape& output_shape)
    : entry(EffectMainExtra),
      input(depth, layer),
      output(depth, output_shape),
      replacement_table(block),
      pixel_format(depth == 8    ? PF_PIXEL_FORMAT_ARGB8
                   : depth == 16 ? PF_PIXEL_FORMAT_ARGB16
                                 : PF_PIXEL_FORMAT_ARGB32F),
      block{block},
      handle(block) {
  current = this;
  fillCallbacks(&in);
  fillUtilities(&utilities);
  provider = {acquireSuite, [](const char* name, std::int32_t version) {
                --current->suites_out;
                return call("release", name, version);
              }};
  suites = {{"PF World Suite/2", &kWorldSuite},
            {"PF iterateFloat Suite/1", &kIterateFloatSuite},
            {"PF SamplingFloat Suite/1", &kSamplingFloatSuite}};
  in.utility_callbacks = &utilities;
  in.suite_provider = &provider;
  in.global_data = &handle;
  in.effect_ref = &names;
  in.quality = PF_QUALITY_HIGH;
  in.current_time = 5;
  in.time_step = 2;
  in.time_scale = 24;
  in.width = layer.width;
  in.height = layer.height;
  in.downsample_x_num = in.downsample_y_num = 1;
  in.downsample_x_den = in.downsample_y_den = 1;
  values[0].value.layer_world = input.world;
  const double w = layer.width;
  const double h = layer.height;
  setCorners({{0, 0}, {w, 0}, {w, h}, {0, h}});
  request.rect = {0, 0, layer.width, layer.height};
  std::memset(request.reserved, 0x5C, sizeof request.reserved);
  checkout = {request.rect, request.rect};
  names = {{in.effect_ref, "fx"},
           {&in, "in"},
           {block, "table"},
           {&handle, "handle"},
           {&input.world, "input"},
           {&output.world, "output"},
           {&values[0].value.layer_world, "input"}};
  std::memset(static_cast<void*>(&out), 0xA4, sizeof out);  // none of the bits that the effect sets
  out_at_first_.assign(reinterpret_cast<const char*>(&out), sizeof out);
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
  failures_[callback] = [=](int number) { return number == nth || (ever && number > nth) ? code : 0; };
}

std::int32_t ScriptedHost::run(std::int32_t command) {
  PF_ParamDef* params[5] = {&values[0], &values[1], &values[2], &values[3], &values[4]};
  PF_PreRenderCallbacks pre_callbacks = {checkoutLayer};
  PF_PreRenderExtra pre = {&request, &result, &pre_callbacks};
  PF_SmartRenderCallbacks smart_callbacks = {checkoutPixels, nullptr, checkoutOutput};
  PF_SmartRenderExtra smart = {&smart_callbacks};
  if (command == CMD_PRE_RENDER || command == CMD_SMART_RENDER) {
    void* const extra = command == CMD_PRE_RENDER ? static_cast<void*>(&pre) : &smart;
    return entry(command, &in, &out, nullptr, nullptr, extra);
  }
  return entry(command, &in, &out, params, &output.world, nullptr);
}

bool ScriptedHost::outIs(const std::function<void(PF_OutData&)>& change) const {
  PF_OutData expected;
  std::memcpy(static_cast<void*>(&expected), out_at_first_.data(), sizeof expected);
  change(expected);
  return std::memcmp(&expected, &out, sizeof out) == 0;
}

bool ScriptedHost::outHasMessages(const Log& messages) const {
  return outIs([&](PF_OutData& expected) {
    for (const std::string& message : messages) {
      expected.out_flags |= OUT_FLAG_SHOW_MESSAGE;
      std::strcpy(expected.return_msg, message.c_str());
    }
  });
}

std::int32_t ScriptedHost::called(const std::string& callback, const std::string& line) {
  log.push_back(line);
  const int number = ++calls_[callback];
  const auto failure = failures_.find(callback);
  const std::int32_t code = failure == failures_.end() ? 0 : failure->second(number);
  if (code != 0) {
    on_failure();
  }
  return code;
}

KZFX_PerspectiveInfo perspectiveInfo(ScriptedHost& host, int width, int height) {
  KZFX_PerspectiveInfo info;
  info.out_width_d = info.out_width = width;
  info.out_height_d = info.out_height = height;
  info.bound_left = info.bound_top = -1e9;
  info.bound_right = info.bound_bottom = 1e9;
  info.input_world = &host.input.world;
  info.effect_ref = host.in.effect_ref;
  info.sample_8 = host.utilities.sample_area_8;
  info.sample_16 = host.utilities.sample_area_16;
  info.sample_float =
      static_cast<const PF_SamplingFloatSuite1*>(host.suites["PF SamplingFloat Suite/1"])->sample_area_float;
  return info;
}
