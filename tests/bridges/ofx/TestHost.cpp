#include "tests/bridges/ofx/TestHost.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace vantorel::ofx {
namespace {

TestHost* the_host = nullptr;

// ---- Properties ----------------------------------------------------------------------------------------------------

template <typename Stored, typename Given>
Status setValue(const char* call, PropertySet set, const char* name, int index, Given value) {
  if (the_host->refuses(call)) {
    return the_host->refusal;
  }
  if (set == nullptr) {
    return Status::BadHandle;
  }
  std::vector<Value>& values = set->values[name];
  values.resize(std::max(values.size(), static_cast<std::size_t>(index) + 1));
  values[static_cast<std::size_t>(index)] = Stored(value);
  return Status::Ok;
}

template <typename Stored, typename Out>
Status getValue(const char* call, PropertySet set, const char* name, int index, Out* out) {
  if (the_host->refuses(call)) {
    return the_host->refusal;
  }
  if (set == nullptr) {
    return Status::BadHandle;
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

template <typename Stored, typename Out>
Status getValues(const char* call, PropertySet set, const char* name, int count, Out* out) {
  Status status = Status::Ok;
  for (int i = 0; i < count && status == Status::Ok; ++i) {
    status = getValue<Stored>(call, set, name, i, out + i);
  }
  return status;
}

const PropertySuite kProperties{
    [](PropertySet s, const char* n, int i, void* v) { return setValue<void*>("set_pointer", s, n, i, v); },
    [](PropertySet s, const char* n, int i, const char* v) { return setValue<std::string>("set_string", s, n, i, v); },
    [](PropertySet s, const char* n, int i, double v) { return setValue<double>("set_double", s, n, i, v); },
    [](PropertySet s, const char* n, int i, int v) { return setValue<int>("set_int", s, n, i, v); },
    nullptr,
    nullptr,
    [](PropertySet s, const char* n, int count, const double* v) {
      Status status = Status::Ok;
      for (int i = 0; i < count && status == Status::Ok; ++i) {
        status = setValue<double>("set_doubles", s, n, i, v[i]);
      }
      return status;
    },
    nullptr,
    [](PropertySet s, const char* n, int i, void** v) { return getValue<void*>("get_pointer", s, n, i, v); },
    [](PropertySet s, const char* n, int i, char** v) { return getValue<std::string>("get_string", s, n, i, v); },
    [](PropertySet s, const char* n, int i, double* v) { return getValue<double>("get_double", s, n, i, v); },
    [](PropertySet s, const char* n, int i, int* v) { return getValue<int>("get_int", s, n, i, v); },
    nullptr,
    nullptr,
    [](PropertySet s, const char* n, int count, double* v) { return getValues<double>("get_doubles", s, n, count, v); },
    [](PropertySet s, const char* n, int count, int* v) { return getValues<int>("get_ints", s, n, count, v); },
    nullptr,
    nullptr};

// ---- Effects, clips, images ----------------------------------------------------------------------------------------

Status getImage(ClipHandle clip, Time, const RectD*, PropertySet* image) {
  if (the_host->refuses("clip_image")) {
    return the_host->refusal;
  }
  if (!clip->image) {
    return Status::Failed;
  }
  ++the_host->images_out;
  *image = clip->image.get();
  return Status::Ok;
}

const ImageEffectSuite kEffects{[](EffectHandle effect, PropertySet* out) {
                                  *out = &effect->properties;
                                  return the_host->refuses("effect_properties") ? the_host->refusal : Status::Ok;
                                },
                                [](EffectHandle effect, ParamSet* out) {
                                  *out = &effect->params;
                                  return the_host->refuses("param_set") ? the_host->refusal : Status::Ok;
                                },
                                [](EffectHandle effect, const char* name, PropertySet* out) {
                                  if (the_host->refuses("define_clip")) {
                                    return the_host->refusal;
                                  }
                                  *out = &effect->clips[name].properties;
                                  return Status::Ok;
                                },
                                [](EffectHandle effect, const char* name, ClipHandle* out, PropertySet* properties) {
                                  const auto found = effect->clips.find(name);
                                  if (the_host->refuses("clip") || found == effect->clips.end()) {
                                    return found == effect->clips.end() ? Status::BadHandle : the_host->refusal;
                                  }
                                  *out = &found->second;
                                  *properties = &found->second.properties;
                                  return Status::Ok;
                                },
                                nullptr,
                                getImage,
                                [](PropertySet) {
                                  --the_host->images_out;
                                  return the_host->refuses("release_image") ? the_host->refusal : Status::Ok;
                                },
                                [](ClipHandle clip, Time, RectD* out) {
                                  *out = clip->region;
                                  return the_host->refuses("region") ? the_host->refusal : Status::Ok;
                                },
                                [](EffectHandle) { return the_host->refuses("abort") || the_host->aborts ? 1 : 0; },
                                nullptr,
                                nullptr,
                                nullptr,
                                nullptr};

// ---- Parameters ----------------------------------------------------------------------------------------------------

Status valueAtTime(ParamHandle param, Time time, ...) {
  if (the_host->refuses("value_at_time")) {
    return the_host->refusal;
  }
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
  va_list arguments;
  va_start(arguments, param);
  for (double& value : param->value) {
    value = va_arg(arguments, double);
  }
  va_end(arguments);
  return Status::Ok;
}

const ParameterSuite kParameters{[](ParamSet set, const char* type, const char* name, PropertySet* out) {
                                   if (the_host->refuses("define")) {
                                     return the_host->refusal;
                                   }
                                   ParamRecord& param = set->params[name];
                                   param.type = type;
                                   *out = &param.properties;
                                   return Status::Ok;
                                 },
                                 [](ParamSet set, const char* name, ParamHandle* out, PropertySet*) {
                                   if (the_host->refuses("param") || set->params.count(name) == 0) {
                                     return set->params.count(name) == 0 ? Status::Unknown : the_host->refusal;
                                   }
                                   *out = &set->params[name];
                                   return Status::Ok;
                                 },
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 valueAtTime,
                                 nullptr,
                                 nullptr,
                                 setParam,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 [](ParamSet, const char*) {
                                   ++the_host->edits_open;
                                   return the_host->refuses("begin_edit") ? the_host->refusal : Status::Ok;
                                 },
                                 [](ParamSet) {
                                   --the_host->edits_open;
                                   return the_host->refuses("end_edit") ? the_host->refusal : Status::Ok;
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

const MessageSuite kMessages{setMessage, setMessage, [](void*) {
                               the_host->message.clear();
                               return the_host->refuses("clear_persistent") ? the_host->refusal : Status::Ok;
                             }};

const MultiThreadSuite kThreads{nullptr,
                                [](unsigned* count) {
                                  *count = 2;
                                  return the_host->refuses("cpu_count") ? the_host->refusal : Status::Ok;
                                },
                                nullptr,
                                [] { return 0; },
                                nullptr,
                                nullptr,
                                nullptr,
                                nullptr,
                                nullptr};

const InteractSuite kInteracts{
    nullptr, [](InteractHandle) { return the_host->refuses("redraw") ? the_host->refusal : Status::Ok; },
    [](InteractHandle interact, PropertySet* out) {
      *out = &interact->properties;
      return the_host->refuses("interact") ? the_host->refusal : Status::Ok;
    }};

const DrawSuite kDraws{
    nullptr,
    [](DrawContext, const Colour*) { return the_host->refuses("colour") ? the_host->refusal : Status::Ok; },
    [](DrawContext, float) { return the_host->refuses("width") ? the_host->refusal : Status::Ok; },
    nullptr,
    [](DrawContext context, int primitive, const PointD*, int count) {
      context->calls.push_back(std::to_string(primitive) + " of " + std::to_string(count));
      return the_host->refuses("draw") ? the_host->refusal : Status::Ok;
    },
    [](DrawContext context, const char* text, const PointD*, int) {
      context->calls.emplace_back(text);
      return the_host->refuses("text") ? the_host->refusal : Status::Ok;
    }};

const void* fetchSuite(PropertySet, const char* name, int version) {
  static const std::map<std::string, const void*> kSuites{
      {"OfxPropertySuite 1", &kProperties}, {"OfxImageEffectSuite 1", &kEffects}, {"OfxParameterSuite 1", &kParameters},
      {"OfxMessageSuite 1", &kMessages},    {"OfxMessageSuite 2", &kMessages},    {"OfxMultiThreadSuite 1", &kThreads},
      {"OfxInteractSuite 1", &kInteracts},  {"OfxDrawSuite 1", &kDraws}};
  const std::string key = std::string(name) + " " + std::to_string(version);
  if (the_host->refuses("fetch_suite") || the_host->absent_suites.count(key) != 0 || kSuites.count(key) == 0) {
    return nullptr;
  }
  return kSuites.at(key);
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
