// A complete host in one file: loads the effect module, lets it draw one 8-bit frame and writes the frame as a PPM.
//
//   minimal_host MODULE LAYER.ppm OUT.ppm  ULX ULY URX URY LLX LLY LRX LRY
//
// The corners are in layer pixels. The output is the rectangle that the effect itself requests, over black.
#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/PF_HostRecords.h"

constexpr std::int32_t kFixedOne = 65536;        // 1.0 in 16.16
constexpr std::int32_t kFarthestOutput = 15000;  // how far the output may extend from the layer's origin, in pixels
constexpr std::int32_t kBadArgument = 1000;      // this host's own error code
constexpr int kParameters = 5;                   // the layer, then the four points

// A picture, and the world that describes it to the effect.
struct Picture {
  Picture(std::int32_t width, std::int32_t height)
      : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
        world{pixels.data(), width * 4, width, height, M_LRect(0, 0, width, height)} {}

  std::vector<PF_Pixel8> pixels;
  PF_LayerDef world;
};

static PF_Pixel8* pixelAt(const PF_LayerDef& world, std::int64_t x, std::int64_t y) {
  return reinterpret_cast<PF_Pixel8*>(static_cast<std::byte*>(world.data) + y * world.row_bytes) + x;
}

// ---- Callbacks: the effect_ref that most of them get is the array of the parameters' values ------------------------

static std::int32_t checkoutParam(void* effect_ref, std::int32_t index, std::int32_t /*time*/, std::int32_t /*step*/,
                                  std::uint32_t /*scale*/, PF_ParamDef* out) {
  if (index < 0 || index >= kParameters) {
    return kBadArgument;
  }
  *out = static_cast<PF_ParamDef*>(effect_ref)[index];
  return ERR_NONE;
}

// A row of the module's table is "key=text".
static const char* lookupString(void* table_ref, std::int32_t row, std::int32_t /*zero*/, void* /*null_pointer*/) {
  const char* const text = static_cast<FX_StringHeader*>(table_ref)->rows[row].text;
  const char* const equals = std::strchr(text, '=');
  return equals != nullptr ? equals + 1 : text;
}

// The mean of the box around (x, y), rounded to nearest: every pixel is weighted by how much of it the box covers, and
// everything outside the world counts as transparent. In 16.16, pixel k covers [k - 0.5, k + 0.5).
static std::int32_t sampleArea8(void* /*effect_ref*/, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                                PF_Pixel8* out) {
  struct Span {
    std::int64_t begin, end;  // pixel k covering [k, k + 1)
    Span(std::int64_t centre, std::int64_t radius)
        : begin(centre + kFixedOne / 2 - radius), end(centre + kFixedOne / 2 + radius) {}
    std::int64_t first() const { return std::max<std::int64_t>(begin >> 16, 0); }
    std::int64_t last(std::int32_t size) const { return std::min<std::int64_t>((end - 1) >> 16, size - 1); }
    std::int64_t weight(std::int64_t k) const { return std::min(end, (k + 1) << 16) - std::max(begin, k << 16); }
  };
  const PF_LayerDef& source = *params->source;
  const Span columns(x, params->x_radius);
  const Span rows(y, params->y_radius);
  std::int64_t sums[4] = {};
  for (std::int64_t row = rows.first(); row <= rows.last(source.height); ++row) {
    for (std::int64_t column = columns.first(); column <= columns.last(source.width); ++column) {
      const std::int64_t weight = columns.weight(column) * rows.weight(row);
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

// The effect only ever clears a whole world.
static std::int32_t fill(void* /*effect_ref*/, const void* color, const M_LRect* rect, PF_LayerDef* world) {
  if (color != nullptr || rect != nullptr) {
    return kBadArgument;
  }
  for (std::int32_t y = 0; y < world->height; ++y) {
    std::fill_n(pixelAt(*world, 0, y), world->width, PF_Pixel8{});
  }
  return ERR_NONE;
}

// The effect's area is one pixel wide: each call of `function` draws a whole row.
static std::int32_t iterate8(PF_InData* /*in_data*/, std::int32_t /*progress_base*/, std::int32_t /*progress_final*/,
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
static int formatMessage(char* destination, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(destination, PF_RETURN_MSG_CAPACITY, format, arguments);
  va_end(arguments);
  return length;
}

// 8-bit frames need only one suite, which returns a world's pixel format.
static std::int32_t acquireSuite(const char* name, std::int32_t version, const void** suite) {
  static const PF_WorldSuite2 kWorldSuite{nullptr, nullptr, [](PF_LayerDef*, std::int32_t* format) -> std::int32_t {
                                            *format = PF_PIXEL_FORMAT_ARGB8;
                                            return ERR_NONE;
                                          }};
  const bool known = std::strcmp(name, PF_WORLD_SUITE) == 0 && version == PF_WORLD_SUITE_VERSION;
  *suite = known ? &kWorldSuite : nullptr;
  return known ? ERR_NONE : ERR_SUITE_UNAVAILABLE;
}

// What every command receives. Nothing here has to be released.
static PF_InData makeInData(PF_ParamDef* values, PF_UtilityCallbacks* utilities, PF_SuiteProvider* suites) {
  utilities->sample_area_8 = sampleArea8;
  utilities->fill = fill;
  utilities->iterate_8 = iterate8;
  utilities->ceil = std::ceil;
  utilities->sqrt = std::sqrt;
  utilities->sprintf = formatMessage;
  utilities->strcpy = std::strcpy;
  *suites = {acquireSuite, [](const char*, std::int32_t) -> std::int32_t { return ERR_NONE; }};
  PF_InData in{};
  in.checkout_param = checkoutParam;
  in.checkin_param = [](void*, PF_ParamDef*) -> std::int32_t { return ERR_NONE; };
  in.add_param = [](void*, std::int32_t, PF_ParamDef* definition) -> std::int32_t {
    std::printf("parameter: %s\n", definition->name);
    return ERR_NONE;
  };
  in.register_string_table = [](void**, std::int32_t format) -> std::int32_t {
    return format == PF_STRING_TABLE_FORMAT ? std::int32_t{ERR_NONE} : kBadArgument;
  };
  in.lookup_string = lookupString;
  in.unregister_string_table = [](void**) -> std::int32_t { return ERR_NONE; };
  in.utility_callbacks = utilities;
  in.suite_provider = suites;
  in.effect_ref = values;
  in.quality = PF_QUALITY_HIGH;
  in.time_step = 1;
  in.time_scale = 24;
  in.width = values[0].value.layer_world.width;
  in.height = values[0].value.layer_world.height;
  in.downsample_x_num = in.downsample_y_num = 1;
  in.downsample_x_den = in.downsample_y_den = 1;
  return in;
}

// ---- The order of commands ------------------------------------------------------------------------------------------

// Runs a command. Throws the effect's message or, if there is none, the error code.
static PF_OutData call(PF_EffectMain entry, PF_Command command, PF_InData& in, PF_ParamDef** params = nullptr,
                       PF_LayerDef* output = nullptr) {
  PF_OutData out{};
  out.global_data = in.global_data;
  const std::int32_t code = entry(command, &in, &out, params, output, nullptr);
  if (code != ERR_NONE) {
    const bool has_message = (out.out_flags & OUT_FLAG_SHOW_MESSAGE) != 0;
    throw std::runtime_error(has_message ? std::string(out.return_msg)
                                         : "command " + std::to_string(command) + ": error " + std::to_string(code));
  }
  return out;
}

// Draws the layer, values[0], onto the points, values[1] to [4], in an output as large as the effect requests. A host
// that continues after a failed command must still set the module down.
static Picture render(PF_EffectMain entry, PF_ParamDef* values) {
  PF_UtilityCallbacks utilities{};
  PF_SuiteProvider suites{};
  PF_InData in = makeInData(values, &utilities, &suites);
  in.global_data = call(entry, CMD_GLOBAL_SETUP, in).global_data;
  call(entry, CMD_PARAMS_SETUP, in);

  PF_ParamDef* params[kParameters] = {&values[0], &values[1], &values[2], &values[3], &values[4]};
  PF_LayerDef area{};
  area.extent_hint = M_LRect(-kFarthestOutput, -kFarthestOutput, kFarthestOutput, kFarthestOutput);
  const PF_OutData answer = call(entry, CMD_FRAME_SETUP, in, params, &area);
  Picture output(answer.width, answer.height);
  in.output_origin_x = answer.origin_x;
  in.output_origin_y = answer.origin_y;
  call(entry, CMD_RENDER, in, params, &output.world);
  std::printf("output: %dx%d from %d,%d\n", answer.width, answer.height, -answer.origin_x, -answer.origin_y);

  call(entry, CMD_GLOBAL_SETDOWN, in);
  return output;
}

// ---- Files ----------------------------------------------------------------------------------------------------------

// An opaque picture from a binary PPM without comments, 8 bits per channel.
static Picture readPpm(const std::string& path) {
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

// Colours are premultiplied, so omitting alpha composites the picture over black.
static void writePpm(const std::string& path, const Picture& picture) {
  std::ofstream file(path, std::ios::binary);
  file << "P6\n" << picture.world.width << ' ' << picture.world.height << "\n255\n";
  for (const PF_Pixel8& pixel : picture.pixels) {
    file.write(reinterpret_cast<const char*>(&pixel.red), 3);
  }
  if (!file.flush()) {
    throw std::runtime_error(path + ": cannot be written; check the folder and the space left");
  }
}

int main(int argc, char** argv) try {
  if (argc != 12) {
    std::fputs("usage: minimal_host MODULE LAYER.ppm OUT.ppm ULX ULY URX URY LLX LLY LRX LRY\n", stderr);
    return 2;
  }
  void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* const entry = library != nullptr ? dlsym(library, PF_EFFECT_ENTRY) : nullptr;
  if (entry == nullptr) {
    throw std::runtime_error(dlerror());
  }
  Picture layer = readPpm(argv[2]);
  PF_ParamDef values[kParameters]{};
  values[0].value.layer_world = layer.world;
  for (int i = 0; i < 8; ++i) {
    char* end = nullptr;
    const double pixels = std::strtod(argv[4 + i], &end);
    if (end == argv[4 + i] || *end != '\0' || !(std::abs(pixels) < 32767.0)) {
      throw std::runtime_error(std::string(argv[4 + i]) + ": not a coordinate; give a number between -32767 and 32767");
    }
    PF_ParamDef& point = values[1 + i / 2];
    point.param_type = PARAM_TYPE_POINT;
    (i % 2 == 0 ? point.value.point.point_x : point.value.point.point_y) =
        static_cast<std::int32_t>(std::lround(pixels * kFixedOne));
  }
  writePpm(argv[3], render(reinterpret_cast<PF_EffectMain>(entry), values));
  return 0;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "minimal_host: %s\n", failure.what());
  return 1;
}
