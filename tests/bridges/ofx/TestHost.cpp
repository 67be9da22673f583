#include "tests/bridges/ofx/TestHost.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The suites leave out what the plug-in does not call.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace vantorel::ofx {
namespace {

TestHost* the_host = nullptr;

// What a call without a result of its own gives.
Status answer(const char* call) {
  return the_host->refuses(call) ? the_host->refusal : Status::Ok;
}

// Gives a result, unless the call is refused.
template <typename Out>
Status give(const char* call, Out value, Out* out) {
  if (the_host->refuses(call)) {
    return the_host->refusal;
  }
  *out = value;
  return Status::Ok;
}

// ---- Properties ----------------------------------------------------------------------------------------------------

template <typename Stored, typename Given>
Status setValue(PropertySet set, const char* name, int index, Given value) {
  if (the_host->refuses(name)) {
    return the_host->refusal;
  }
  std::vector<Value>& values = set->values[name];
  values.resize(std::max(values.size(), static_cast<std::size_t>(index) + 1));
  values[static_cast<std::size_t>(index)] = Stored(value);
  return Status::Ok;
}

template <typename Stored, typename Out>
Status getValue(PropertySet set, const char* name, int index, Out* out) {
  if (the_host->refuses(name)) {
    return the_host->refusal;
  }
  const auto found = set->values.find(name);
  if (found == set->values.end()) {
    return Status::Unknown;
  }
  if (index < 0 || static_cast<std::size_t>(index) >= found->second.size()) {
    return Status::BadIndex;
  }
  auto* const stored = std::get_if<Stored>(&found->second[static_cast<std::size_t>(index)]);
  if (stored == nullptr) {
    return Status::Unknown;
  }
  if constexpr (std::is_same_v<Stored, std::string>) {
    *out = stored->data();
  } else {
    *out = *stored;
  }
  return Status::Ok;
}

template <typename Stored>
Status setValues(PropertySet set, const char* name, int count, const Stored* values) {
  Status status = Status::Ok;
  for (int i = 0; i < count && status == Status::Ok; ++i) {
    status = setValue<Stored>(set, name, i, values[i]);
  }
  return status;
}

template <typename Stored>
Status getValues(PropertySet set, const char* name, int count, Stored* out) {
  Status status = Status::Ok;
  for (int i = 0; i < count && status == Status::Ok; ++i) {
    status = getValue<Stored>(set, name, i, out + i);
  }
  return status;
}

const PropertySuite kProperties{.set_pointer = setValue<void*, void*>,
                                .set_string = setValue<std::string, const char*>,
                                .set_double = setValue<double, double>,
                                .set_int = setValue<int, int>,
                                .set_doubles = setValues<double>,
                                .get_pointer = getValue<void*, void*>,
                                .get_string = getValue<std::string, char*>,
                                .get_double = getValue<double, double>,
                                .get_int = getValue<int, int>,
                                .get_doubles = getValues<double>,
                                .get_ints = getValues<int>};

// ---- Effects, clips, images ----------------------------------------------------------------------------------------

Status defineClip(EffectHandle effect, const char* name, PropertySet* out) {
  if (the_host->refuses("define_clip")) {
    return the_host->refusal;
  }
  *out = &effect->clips[name].properties;
  return Status::Ok;
}

Status findClip(EffectHandle effect, const char* name, ClipHandle* out, PropertySet* properties) {
  if (the_host->refuses("clip")) {
    return the_host->refusal;
  }
  const auto found = effect->clips.find(name);
  if (found == effect->clips.end()) {
    return Status::BadHandle;
  }
  *out = &found->second;
  *properties = &found->second.properties;
  return Status::Ok;
}

Status getImage(ClipHandle clip, Time time, const RectD*, PropertySet* image) {
  if (the_host->refuses("clip_image", time)) {
    return the_host->refusal;
  }
  if (!clip->image) {
    return Status::Failed;
  }
  ++the_host->images_out;
  *image = clip->image.get();
  return Status::Ok;
}

const ImageEffectSuite kEffects{
    .properties = [](EffectHandle effect,
                     PropertySet* out) { return give("effect_properties", effect->properties.handle(), out); },
    .param_set = [](EffectHandle effect, ParamSet* out) { return give("param_set", &effect->params, out); },
    .define_clip = defineClip,
    .clip = findClip,
    .clip_image = getImage,
    .release_image =
        [](PropertySet) {
          --the_host->images_out;
          return answer("release_image");
        },
    .clip_region_of_definition =
        [](ClipHandle clip, Time time, RectD* out) {
          if (the_host->refuses("region", time)) {
            return the_host->refusal;
          }
          *out = clip->region;
          return Status::Ok;
        },
    .abort =
        [](EffectHandle) {
          if (the_host->on_abort) {
            the_host->on_abort();
          }
          return the_host->refuses("abort") || the_host->aborts ? 1 : 0;
        }};

// ---- Parameters ----------------------------------------------------------------------------------------------------

Status defineParam(ParamSet set, const char* type, const char* name, PropertySet* out) {
  if (the_host->refuses("define")) {
    return the_host->refusal;
  }
  ParamRecord& param = set->params[name];
  param.type = type;
  *out = &param.properties;
  return Status::Ok;
}

Status findParam(ParamSet set, const char* name, ParamHandle* out, PropertySet*) {
  return set->params.count(name) == 0 ? Status::Unknown : give("param", &set->params[name], out);
}

Status valueAtTime(ParamHandle param, Time time, ...) {
  if (the_host->refuses("value_at_time", time)) {
    return the_host->refusal;
  }
  const std::scoped_lock lock(the_host->mutex);
  va_list arguments;
  va_start(arguments, time);
  for (const double value : param->value) {
    if (param->type == "OfxParamTypeDouble2D" || param->type == "OfxParamTypeDouble") {
      *va_arg(arguments, double*) = value;
    } else {
      *va_arg(arguments, int*) = static_cast<int>(value);
    }
  }
  va_end(arguments);
  return Status::Ok;
}

Status setParam(ParamHandle param, ...) {
  if (the_host->refuses("set_value")) {
    return the_host->refusal;
  }
  const std::scoped_lock lock(the_host->mutex);
  va_list arguments;
  va_start(arguments, param);
  for (double& value : param->value) {
    value = va_arg(arguments, double);
  }
  va_end(arguments);
  return Status::Ok;
}

const ParameterSuite kParameters{.define = defineParam,
                                 .handle = findParam,
                                 .value_at_time = valueAtTime,
                                 .set_value = setParam,
                                 .begin_edit =
                                     [](ParamSet, const char*) {
                                       ++the_host->edits_open;
                                       return answer("begin_edit");
                                     },
                                 .end_edit =
                                     [](ParamSet) {
                                       --the_host->edits_open;
                                       return answer("end_edit");
                                     }};

// ---- Messages, threads, overlays -----------------------------------------------------------------------------------

Status setMessage(void*, const char*, const char*, const char* format, ...) {
  if (the_host->refuses("set_persistent")) {
    return the_host->refusal;
  }
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  const std::scoped_lock lock(the_host->mutex);
  the_host->message = text;
  return Status::Ok;
}

const MessageSuite kMessages{.message = setMessage, .set_persistent = setMessage, .clear_persistent = [](void*) {
                               const std::scoped_lock lock(the_host->mutex);
                               the_host->message.clear();
                               return answer("clear_persistent");
                             }};

const MultiThreadSuite kThreads{
    .cpu_count = [](unsigned* count) { return give("cpu_count", the_host->processors, count); },
    .is_spawned_thread = [] { return 0; }};

const InteractSuite kInteracts{
    .redraw = [](InteractHandle) { return answer("redraw"); },
    .properties = [](InteractHandle interact,
                     PropertySet* out) { return give("interact", interact->properties.handle(), out); }};

const DrawSuite kDraws{.set_colour = [](DrawContext, const Colour*) { return answer("colour"); },
                       .set_line_width = [](DrawContext, float) { return answer("width"); },
                       .draw =
                           [](DrawContext context, int primitive, const PointD*, int count) {
                             context->calls.push_back(std::to_string(primitive) + " of " + std::to_string(count));
                             return answer("draw");
                           },
                       .draw_text =
                           [](DrawContext context, const char* text, const PointD*, int) {
                             context->calls.emplace_back(text);
                             return answer("text");
                           }};

template <typename Suite>
std::pair<const void*, std::size_t> served(const Suite& suite) {
  return {&suite, sizeof suite / sizeof(void*)};
}

// By name and version: its functions, and how many.
const std::map<std::string, std::pair<const void*, std::size_t>> kSuites{
    {"OfxPropertySuite 1", served(kProperties)},  {"OfxImageEffectSuite 1", served(kEffects)},
    {"OfxParameterSuite 1", served(kParameters)}, {"OfxMessageSuite 1", served(kMessages)},
    {"OfxMessageSuite 2", served(kMessages)},     {"OfxMultiThreadSuite 1", served(kThreads)},
    {"OfxInteractSuite 1", served(kInteracts)},   {"OfxDrawSuite 1", served(kDraws)}};

const void* fetchSuite(PropertySet, const char* name, int version) {
  const std::string key = std::string(name) + " " + std::to_string(version);
  const auto found = kSuites.find(key);
  if (the_host->refuses("fetch_suite") || the_host->absent_suites.count(key) != 0 || found == kSuites.end()) {
    return nullptr;
  }
  const auto& [suite, functions] = found->second;
  if (key != the_host->null_function.first) {
    return suite;
  }
  static std::vector<void*> with_null;
  with_null.assign(functions, nullptr);
  std::memcpy(with_null.data(), suite, functions * sizeof(void*));
  with_null.at(the_host->null_function.second) = nullptr;
  return with_null.data();
}

}  // namespace

TestHost::TestHost() : record{&properties_, fetchSuite} {
  the_host = this;
  properties_.put("OfxPropName", std::string("test host"));
  properties_.put("OfxImageEffectPropSupportsOverlays", 1);
}

TestHost::~TestHost() {
  the_host = nullptr;
}

bool TestHost::refuses(const char* call, Time time) {
  calls_at_other_times += time != now ? 1 : 0;
  return refuses(call);
}

bool TestHost::refuses(const char* call) {
  const int number = calls++;
  if (refused_call >= 0) {
    log.emplace_back(call);
  }
  return refused_call >= 0 && (number == refused_call || (refuses_all_after && number > refused_call));
}

std::unique_ptr<PropertySetRecord> makeImage(const Layout& layout) {
  auto image = std::make_unique<PropertySetRecord>();
  const std::string depth = layout.depth;
  const int channel_bytes = depth == "OfxBitDepthByte" ? 1 : depth == "OfxBitDepthFloat" ? 4 : 2;
  const std::string components = layout.components;
  const int channels = components == "OfxImageComponentRGBA" ? 4 : components == "OfxImageComponentRGB" ? 3 : 1;
  const int stride = layout.bounds.width() * channels * channel_bytes + layout.spare_bytes;
  image->pixels.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(layout.bounds.height()),
                       std::byte{0xA7});
  const auto last = static_cast<std::ptrdiff_t>(stride) * (layout.bounds.height() - 1);
  const RectI& b = layout.bounds;
  const RectI& f = layout.full_frame.empty() ? layout.bounds : layout.full_frame;
  image->put("OfxImagePropData", static_cast<void*>(image->pixels.data() + (layout.upper_first ? last : 0)));
  image->put("OfxImagePropRowBytes", layout.upper_first ? -stride : stride);
  image->put("OfxImagePropBounds", b.x1, b.y1, b.x2, b.y2);
  image->put("OfxImagePropRegionOfDefinition", f.x1, f.y1, f.x2, f.y2);
  image->put("OfxImageEffectPropPixelDepth", depth);
  image->put("OfxImageEffectPropComponents", components);
  image->put("OfxImageEffectPropPreMultiplication", std::string(layout.premultiplication));
  image->put("OfxImagePropPixelAspectRatio", layout.pixel_aspect);
  image->put("OfxImagePropField", std::string(layout.field));
  image->put("test pixel bytes", channels * channel_bytes);
  return image;
}

std::byte* pixelOf(PropertySetRecord& image, int x, int y) {
  return static_cast<std::byte*>(image.get<void*>("OfxImagePropData")) +
         static_cast<std::ptrdiff_t>(image.get<int>("OfxImagePropRowBytes")) *
             (y - image.get<int>("OfxImagePropBounds", 1)) +
         static_cast<std::ptrdiff_t>(image.get<int>("test pixel bytes")) *
             (x - image.get<int>("OfxImagePropBounds", 0));
}

}  // namespace vantorel::ofx
