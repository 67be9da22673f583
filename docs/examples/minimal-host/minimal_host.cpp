// A complete host in one file: loads the effect module, has it draw one 8-bit frame and writes the frame as a PPM.
//
//   minimal_host MODULE LAYER.ppm OUT.ppm  ULX ULY URX URY LLX LLY LRX LRY
//
// The corners are in layer pixels. The output is the rectangle that the effect itself asks for, over black.
#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/PF_HostRecords.h"

namespace {

constexpr std::int32_t kFixedOne = 65536;        // 1.0 in 16.16
constexpr std::int32_t kHalf = kFixedOne / 2;    // 0.5 in 16.16
constexpr std::int32_t kBadArgument = 1000;      // this host's own error code
constexpr std::int32_t kFarthestOutput = 15000;  // how far the output may reach from the layer's origin, in pixels
constexpr int kParameters = 5;                   // the layer, then the four points

// A picture, and the world that shows it to the effect.
struct Picture {
  Picture(std::int32_t width, std::int32_t height)
      : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
        world{pixels.data(), width * 4, width, height, M_LRect(0, 0, width, height)} {}

  std::vector<PF_Pixel8> pixels;
  PF_LayerDef world;
};

PF_Pixel8* pixelAt(const PF_LayerDef& world, std::int64_t x, std::int64_t y) {
  return reinterpret_cast<PF_Pixel8*>(static_cast<std::byte*>(world.data) + y * world.row_bytes) + x;
}

// ---- Parameters: the effect_ref of every call is the array of their values ------------------------------------------

std::int32_t checkoutParam(void* effect_ref, std::int32_t index, std::int32_t /*time*/, std::int32_t /*time_step*/,
                           std::uint32_t /*time_scale*/, PF_ParamDef* out) {
  if (index < 0 || index >= kParameters) {
    return kBadArgument;
  }
  *out = static_cast<PF_ParamDef*>(effect_ref)[index];
  return ERR_NONE;
}

// A checkout copies the value, so there is nothing to give back.
std::int32_t checkinParam(void* /*effect_ref*/, PF_ParamDef* /*param*/) {
  return ERR_NONE;
}

std::int32_t addParam(void* /*effect_ref*/, std::int32_t /*position*/, PF_ParamDef* definition) {
  std::printf("parameter: %s\n", definition->name);
  return ERR_NONE;
}

// ---- Strings: the table is read where the module keeps it, so its reference stays as it is --------------------------

std::int32_t registerStringTable(void** /*table_ref*/, std::int32_t format) {
  return format == PF_STRING_TABLE_FORMAT ? std::int32_t{ERR_NONE} : kBadArgument;
}

const char* lookupString(void* table_ref, std::int32_t row, std::int32_t /*zero*/, void* /*null_pointer*/) {
  const char* const text = static_cast<FX_StringHeader*>(table_ref)->rows[row].text;
  const char* const equals = std::strchr(text, '=');
  return equals != nullptr ? equals + 1 : text;
}

std::int32_t unregisterStringTable(void** /*table_ref*/) {
  return ERR_NONE;
}

// ---- Utilities ------------------------------------------------------------------------------------------------------

// The part of an axis that a box covers, in 16.16. Pixel k covers [k - 0.5, k + 0.5).
struct Extent {
  std::int64_t low;
  std::int64_t high;

  // The pixels that it reaches, cut to those of a world.
  std::int64_t first() const { return std::max<std::int64_t>((low + kHalf) >> 16, 0); }
  std::int64_t last(std::int32_t size) const { return std::min<std::int64_t>((high - 1 + kHalf) >> 16, size - 1); }

  std::int64_t overlap(std::int64_t pixel) const {
    return std::min(high, pixel * kFixedOne + kHalf) - std::max(low, pixel * kFixedOne - kHalf);
  }
};

// The mean of the box around (x, y), rounded to nearest: every pixel is weighted by how much of it the box covers, and
// what lies outside the world counts as transparent.
std::int32_t sampleArea8(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                         PF_Pixel8* out) {
  const PF_LayerDef& source = *params->source;
  const Extent columns{std::int64_t{x} - params->x_radius, std::int64_t{x} + params->x_radius};
  const Extent rows{std::int64_t{y} - params->y_radius, std::int64_t{y} + params->y_radius};
  std::int64_t sums[4] = {};
  for (std::int64_t row = rows.first(); row <= rows.last(source.height); ++row) {
    for (std::int64_t column = columns.first(); column <= columns.last(source.width); ++column) {
      const std::int64_t weight = columns.overlap(column) * rows.overlap(row);
      const PF_Pixel8& pixel = *pixelAt(source, column, row);
      sums[0] += weight * pixel.alpha;
      sums[1] += weight * pixel.red;
      sums[2] += weight * pixel.green;
      sums[3] += weight * pixel.blue;
    }
  }
  const std::int64_t area = std::int64_t{4} * params->x_radius * params->y_radius;
  const auto mean = [area](std::int64_t sum) { return static_cast<std::uint8_t>((sum + area / 2) / area); };
  *out = {mean(sums[0]), mean(sums[1]), mean(sums[2]), mean(sums[3])};
  return ERR_NONE;
}

// The effect asks for nothing but to clear a whole world.
std::int32_t fill(void* /*effect_ref*/, const void* color, const M_LRect* rect, PF_LayerDef* world) {
  if (color != nullptr || rect != nullptr) {
    return kBadArgument;
  }
  for (std::int32_t y = 0; y < world->height; ++y) {
    std::fill_n(pixelAt(*world, 0, y), world->width, PF_Pixel8{});
  }
  return ERR_NONE;
}

// The effect's area is one pixel wide: each call of `function` draws a whole row.
std::int32_t iterate8(PF_InData* /*in_data*/, std::int32_t /*progress_base*/, std::int32_t /*progress_final*/,
                      PF_LayerDef* /*source*/, const M_LRect* area, void* refcon, PF_PixelFunction8 function,
                      PF_LayerDef* destination) {
  PF_Pixel8 no_source{};
  std::int32_t code = ERR_NONE;
  for (std::int32_t y = area->top; y < area->bottom && code == ERR_NONE; ++y) {
    for (std::int32_t x = area->left; x < area->right && code == ERR_NONE; ++x) {
      code = function(refcon, x, y, &no_source, pixelAt(*destination, x, y));
    }
  }
  return code;
}

// `destination` is the start of return_msg.
int formatMessage(char* destination, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(destination, PF_RETURN_MSG_CAPACITY, format, arguments);
  va_end(arguments);
  return length;
}

// ---- Suites: every world of this host is 8 bits deep ----------------------------------------------------------------

std::int32_t getPixelFormat(PF_LayerDef* /*world*/, std::int32_t* pixel_format) {
  *pixel_format = PF_PIXEL_FORMAT_ARGB8;
  return ERR_NONE;
}

std::int32_t acquireSuite(const char* name, std::int32_t version, const void** suite) {
  static constexpr PF_WorldSuite2 kWorldSuite{nullptr, nullptr, getPixelFormat};
  const bool known = std::strcmp(name, PF_WORLD_SUITE) == 0 && version == PF_WORLD_SUITE_VERSION;
  *suite = known ? &kWorldSuite : nullptr;
  return known ? ERR_NONE : ERR_SUITE_UNAVAILABLE;
}

std::int32_t releaseSuite(const char* /*name*/, std::int32_t /*version*/) {
  return ERR_NONE;
}

PF_UtilityCallbacks makeUtilities() {
  PF_UtilityCallbacks callbacks{};
  callbacks.sample_area_8 = sampleArea8;
  callbacks.fill = fill;
  callbacks.iterate_8 = iterate8;
  callbacks.ceil = std::ceil;
  callbacks.sqrt = std::sqrt;
  callbacks.sprintf = formatMessage;
  callbacks.strcpy = std::strcpy;
  return callbacks;
}

// ---- The module -----------------------------------------------------------------------------------------------------

// A loaded module between global setup and global set-down.
class Module {
 public:
  explicit Module(const char* path) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL), dlclose) {
    entry_ = library_ ? reinterpret_cast<PF_EffectMain>(dlsym(library_.get(), PF_EFFECT_ENTRY)) : nullptr;
    if (entry_ == nullptr) {
      throw std::runtime_error(dlerror());
    }
    PF_InData in = inData();
    global_data_ = call(CMD_GLOBAL_SETUP, in).global_data;
  }

  ~Module() {
    PF_InData in = inData();
    PF_OutData out{};
    out.global_data = global_data_;
    entry_(CMD_GLOBAL_SETDOWN, &in, &out, nullptr, nullptr, nullptr);
  }

  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // What every command is told, with the parameters' values for those about a frame.
  PF_InData inData(PF_ParamDef* values = nullptr) {
    PF_InData in{};
    in.checkout_param = checkoutParam;
    in.checkin_param = checkinParam;
    in.add_param = addParam;
    in.register_string_table = registerStringTable;
    in.lookup_string = lookupString;
    in.unregister_string_table = unregisterStringTable;
    in.utility_callbacks = &utilities_;
    in.suite_provider = &suites_;
    in.effect_ref = values;
    in.global_data = global_data_;
    in.quality = PF_QUALITY_HIGH;
    in.time_step = 1;
    in.time_scale = 24;
    in.width = values != nullptr ? values[0].value.layer_world.width : 0;
    in.height = values != nullptr ? values[0].value.layer_world.height : 0;
    in.downsample_x_num = in.downsample_y_num = 1;
    in.downsample_x_den = in.downsample_y_den = 1;
    return in;
  }

  // Runs a command by the plain protocol. Throws the effect's message or, where it gives none, the error code.
  PF_OutData call(PF_Command command, PF_InData& in, PF_ParamDef** params = nullptr, PF_LayerDef* output = nullptr) {
    PF_OutData out{};
    out.global_data = global_data_;
    const std::int32_t code = entry_(command, &in, &out, params, output, nullptr);
    if (code != ERR_NONE && (out.out_flags & OUT_FLAG_SHOW_MESSAGE) != 0) {
      throw std::runtime_error(out.return_msg);
    }
    if (code != ERR_NONE) {
      throw std::runtime_error("command " + std::to_string(command) + " fails with error code " + std::to_string(code));
    }
    return out;
  }

 private:
  std::unique_ptr<void, int (*)(void*)> library_;
  PF_EffectMain entry_ = nullptr;
  PF_Handle global_data_ = nullptr;
  PF_UtilityCallbacks utilities_ = makeUtilities();
  PF_SuiteProvider suites_{acquireSuite, releaseSuite};
};

// Draws the layer onto the points, in an output as large as the effect asks for.
Picture render(Module& module, PF_ParamDef* values) {
  PF_ParamDef* params[kParameters];
  for (int i = 0; i < kParameters; ++i) {
    params[i] = &values[i];
  }
  PF_InData in = module.inData(values);
  module.call(CMD_PARAMS_SETUP, in);

  PF_LayerDef area{};
  area.extent_hint = M_LRect(-kFarthestOutput, -kFarthestOutput, kFarthestOutput, kFarthestOutput);
  const PF_OutData answer = module.call(CMD_FRAME_SETUP, in, params, &area);

  Picture output(answer.width, answer.height);
  in.output_origin_x = answer.origin_x;
  in.output_origin_y = answer.origin_y;
  module.call(CMD_RENDER, in, params, &output.world);
  std::printf("output: %dx%d from %d,%d\n", answer.width, answer.height, -answer.origin_x, -answer.origin_y);
  return output;
}

// ---- Files and arguments --------------------------------------------------------------------------------------------

// An opaque picture from a binary PPM without comments, 8 bits per channel.
Picture readPpm(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string magic;
  int width = 0;
  int height = 0;
  int white = 0;
  file >> magic >> width >> height >> white;
  file.get();
  if (!file || magic != "P6" || white != 255 || std::min(width, height) < 1 || std::max(width, height) > 32767) {
    throw std::runtime_error(path + ": not a binary PPM of 1x1 to 32767x32767 pixels, 8 bits per channel; give one");
  }
  Picture picture(width, height);
  for (PF_Pixel8& pixel : picture.pixels) {
    pixel.alpha = 255;
    file.read(reinterpret_cast<char*>(&pixel.red), 3);
  }
  if (!file) {
    throw std::runtime_error(path + ": is truncated; give the whole file");
  }
  return picture;
}

// Colours are multiplied by alpha, so that omitting alpha puts the picture over black.
void writePpm(const std::string& path, const Picture& picture) {
  std::ofstream file(path, std::ios::binary);
  file << "P6\n" << picture.world.width << ' ' << picture.world.height << "\n255\n";
  for (const PF_Pixel8& pixel : picture.pixels) {
    file.write(reinterpret_cast<const char*>(&pixel.red), 3);
  }
  if (!file.flush()) {
    throw std::runtime_error(path + ": cannot be written; check the folder and the space left");
  }
}

std::int32_t fixedFromText(const char* text) {
  char* end = nullptr;
  const double pixels = std::strtod(text, &end);
  if (end == text || *end != '\0' || !(std::abs(pixels) < 32767.0)) {
    throw std::runtime_error(std::string(text) + ": not a coordinate; give a number between -32767 and 32767");
  }
  return static_cast<std::int32_t>(std::lround(pixels * kFixedOne));
}

void run(const char* module_path, const char* layer_path, const char* output_path, char** coordinates) {
  Picture layer = readPpm(layer_path);
  PF_ParamDef values[kParameters]{};
  values[0].value.layer_world = layer.world;
  for (int i = 1; i < kParameters; ++i) {
    values[i].param_type = PARAM_TYPE_POINT;
    values[i].value.point.point_x = fixedFromText(*coordinates++);
    values[i].value.point.point_y = fixedFromText(*coordinates++);
  }
  Module module(module_path);
  writePpm(output_path, render(module, values));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 12) {
    std::fputs("usage: minimal_host MODULE LAYER.ppm OUT.ppm ULX ULY URX URY LLX LLY LRX LRY\n", stderr);
    return 2;
  }
  try {
    run(argv[1], argv[2], argv[3], argv + 4);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "minimal_host: %s\n", failure.what());
    return 1;
  }
}
