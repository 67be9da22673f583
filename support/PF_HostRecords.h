// The interface between a compositing host and the effect module: every record, callback table, suite, flag, command
// number and error code that passes between them. A host author needs only this header.
//
// A module exports one function, EffectMainExtra. The host fills the records below, keeps them valid for the duration
// of one call and owns them; the module writes only PF_OutData, the records it hands to `add_param`, the pre-render
// result, the pixels of output worlds, its global block and PF_InData.global_data. Pointers are 64 bits wide, integers
// little-endian. Every callback returns 0 for success or an error code, unless it is declared otherwise. Entries named
// `reserved...` keep a position: the module neither reads nor calls them, and a host may leave them null or zero.
//
// Threads. Commands may run at the same time on different threads, each with records of its own; but global setup has
// returned before any other begins, and global set-down begins after all others have returned. The module starts no
// threads. It calls every callback on the thread of the command, except the area samplers: pixel functions call those,
// so that they run on whichever threads the host iterates on, several at once. An iterator may call its pixel function
// for different pixels at once and in any order, and returns when the last call has returned.
//
// Fixed-point numbers ("16.16") are signed 32-bit integers whose value is the integer divided by 65536.
#pragma once

#include <cstddef>
#include <cstdint>

#include "KZFX_srect.h"

// ---- Commands ------------------------------------------------------------------------------------------------------

// The first argument of EffectMainExtra. Any other number does nothing and returns ERR_NONE.
enum PF_Command : std::int32_t {
  CMD_ABOUT = 0,           // text about the effect into PF_OutData.return_msg
  CMD_GLOBAL_SETUP = 1,    // first call: declares version and capabilities, allocates the global block
  CMD_GLOBAL_SETDOWN = 3,  // last call: frees the global block
  CMD_PARAMS_SETUP = 4,    // declares the parameters through `add_param`
  CMD_FRAME_SETUP = 10,    // plain protocol, first step: output size and origin
  CMD_RENDER = 11,         // plain protocol, second step: pixels
  CMD_PRE_RENDER = 23,     // two-phase protocol, first step: output rectangle and inputs (extra: PF_PreRenderExtra)
  CMD_SMART_RENDER = 24,   // two-phase protocol, second step: pixels (extra: PF_SmartRenderExtra)
};

// ---- Error codes ---------------------------------------------------------------------------------------------------

// The codes that the effect itself produces. Codes that host callbacks return are passed back unchanged.
enum PF_Error : std::int32_t {
  ERR_NONE = 0,
  ERR_OUT_OF_MEMORY = 4,
  ERR_SUITE_UNAVAILABLE = 13,
  ERR_FAILED = 516,
};

// ---- Flags and constants -------------------------------------------------------------------------------------------

// Bits of PF_OutData.out_flags.
constexpr std::uint32_t OUT_FLAG_USES_EXTENT_HINT = 0x40;   // renders only what the output's extent_hint asks for
constexpr std::uint32_t OUT_FLAG_SHOW_MESSAGE = 0x100;      // return_msg is an error message for the user
constexpr std::uint32_t OUT_FLAG_SETS_OUTPUT_SIZE = 0x200;  // sets the output's size and origin at frame setup
constexpr std::uint32_t OUT_FLAG_16BIT_WORLDS = 0x2000000;  // renders 16-bit worlds

// Bits of PF_OutData.out_flags2.
constexpr std::uint32_t OUT_FLAG2_FLOAT_WORLDS = 0x1000;  // renders 32-bit float worlds

// PF_InData.quality: this value asks for high quality, any other for standard quality.
constexpr std::int32_t PF_QUALITY_HIGH = 1;

// PF_ParamDef.param_type of a 2-D point.
constexpr std::int32_t PARAM_TYPE_POINT = 6;

// Capacity of PF_OutData.return_msg and PF_ParamDef.name in bytes, the terminating NUL included.
constexpr std::size_t PF_RETURN_MSG_CAPACITY = 256;
constexpr std::size_t PF_PARAM_NAME_CAPACITY = 32;

// Pixel-format codes of the world suite: four bytes that spell a tag in memory order.
constexpr std::int32_t PF_MakePixelFormat(char a, char b, char c, char d) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<unsigned char>(a)) |
                                   static_cast<std::uint32_t>(static_cast<unsigned char>(b)) << 8 |
                                   static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << 16 |
                                   static_cast<std::uint32_t>(static_cast<unsigned char>(d)) << 24);
}
constexpr std::int32_t PF_PIXEL_FORMAT_ARGB8 = PF_MakePixelFormat('a', 'r', 'g', 'b');
constexpr std::int32_t PF_PIXEL_FORMAT_ARGB16 = PF_MakePixelFormat('k', 'z', '1', '6');
constexpr std::int32_t PF_PIXEL_FORMAT_ARGB32F = PF_MakePixelFormat('k', 'z', '3', '2');

// ---- Pixels and worlds ---------------------------------------------------------------------------------------------

// A pixel of four channels, alpha first in memory. All four channels zero is transparent.
struct PF_Pixel8 {
  std::uint8_t alpha;
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
};

struct PF_Pixel16 {
  std::uint16_t alpha;
  std::uint16_t red;
  std::uint16_t green;
  std::uint16_t blue;
};

struct PF_PixelFloat {
  float alpha;
  float red;
  float green;
  float blue;
};

// An image world: the input layer or an output buffer. Its pixel format is not stored here; the world suite returns it.
struct PF_LayerDef {
  void* data;                    // first pixel of the top row
  std::int32_t row_bytes;        // bytes from the start of one row to the start of the next
  std::int32_t width;            // pixels
  std::int32_t height;           // pixels
  M_UnionableLRect extent_hint;  // the part that the host needs, in the world's own pixels
};

// The global data block: a pointer to a pointer to the block.
using PF_Handle = void**;

// ---- Parameters ----------------------------------------------------------------------------------------------------

// The value of a point parameter.
struct PF_PointValue {
  std::int32_t point_x;  // 16.16, layer pixels
  std::int32_t point_y;
  std::uint8_t reserved[4];
  std::int32_t point_default_x;  // 16.16, percent of the layer's width
  std::int32_t point_default_y;  // 16.16, percent of the layer's height
};

// The value of a parameter, depending on its kind.
union PF_ParamValue {
  PF_LayerDef layer_world;  // the input layer, parameter 0
  PF_PointValue point;      // PARAM_TYPE_POINT
};

// One parameter: a definition handed to `add_param`, or a value that `checkout_param` fills.
struct PF_ParamDef {
  std::int32_t param_id;
  std::int32_t ui_flags;
  std::int16_t ui_width;
  std::int16_t ui_height;
  std::int32_t param_type;
  char name[PF_PARAM_NAME_CAPACITY];
  std::int32_t param_flags;
  PF_ParamValue value;
};

// ---- Callbacks -----------------------------------------------------------------------------------------------------

struct PF_InData;

// A pixel function, called by the iterators for every pixel of an area, on any thread: x and y are the destination
// pixel's coordinates, `in` the source pixel (meaningless without a source world), `out` the pixel to write. This
// module's own pixel functions write a whole row to `out`, and are iterated over an area one pixel wide.
using PF_PixelFunction8 = std::int32_t (*)(void* refcon, std::int32_t x, std::int32_t y, PF_Pixel8* in, PF_Pixel8* out);
using PF_PixelFunction16 = std::int32_t (*)(void* refcon, std::int32_t x, std::int32_t y, PF_Pixel16* in,
                                            PF_Pixel16* out);
using PF_PixelFunctionFloat = std::int32_t (*)(void* refcon, std::int32_t x, std::int32_t y, PF_PixelFloat* in,
                                               PF_PixelFloat* out);

// Iterates a pixel function over `area` of `destination`; `source` may be null. Progress runs from `progress_base` to
// `progress_final`.
template <typename PixelFunction>
using PF_IterateCallback = std::int32_t (*)(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, void* refcon,
                                            PixelFunction function, PF_LayerDef* destination);

// The same, with the position of the source's origin in the destination.
template <typename PixelFunction>
using PF_IterateOriginCallback = std::int32_t (*)(PF_InData* in_data, std::int32_t progress_base,
                                                  std::int32_t progress_final, PF_LayerDef* source, const M_LRect* area,
                                                  const M_LPoint* origin, void* refcon, PixelFunction function,
                                                  PF_LayerDef* destination);

// The box around a position that an area sampler averages, and its source.
struct PF_SampleParams {
  std::int32_t x_radius;  // 16.16, half the box's width in source pixels
  std::int32_t y_radius;  // 16.16, half the box's height
  std::int32_t area;      // 16.16, the whole box in square source pixels: 4 * x_radius * y_radius
  PF_LayerDef* source;    // the world to sample
  void* reserved[4];
};

// Area samplers: *out = the mean of the box around (x, y), 16.16 in source pixels. Pixel functions call them, on any
// thread of the iteration, and ignore their results: on an error the pixel is whatever *out holds.
template <typename Pixel>
using PF_AreaSampler = std::int32_t (*)(void* effect_ref, std::int32_t x, std::int32_t y, const PF_SampleParams* params,
                                        Pixel* out);

// The utility-callback table.
struct PF_UtilityCallbacks {
  PF_AreaSampler<PF_Pixel8> sample_area_8;

  // Fills a world. A null colour and a null rectangle clear the whole world.
  std::int32_t (*fill)(void* effect_ref, const void* color, const M_LRect* rect, PF_LayerDef* world);

  PF_IterateCallback<PF_PixelFunction8> iterate_8;
  PF_IterateOriginCallback<PF_PixelFunction8> iterate_origin_8;

  // Relocatable memory blocks. `new_handle` need not clear the memory, and returns null on failure. A block lives until
  // `dispose_handle`, across commands. Either both entries are null, and the effect uses its own allocator, or neither
  // is.
  PF_Handle (*new_handle)(std::uint64_t size);
  void (*dispose_handle)(PF_Handle handle);

  double (*ceil)(double value);
  double (*sqrt)(double value);

  int (*sprintf)(char* destination, const char* format, ...);
  char* (*strcpy)(char* destination, const char* source);

  PF_IterateOriginCallback<PF_PixelFunction8> iterate_origin_non_clip_src_8;

  PF_AreaSampler<PF_Pixel16> sample_area_16;
  PF_IterateCallback<PF_PixelFunction16> iterate_16;
  PF_IterateOriginCallback<PF_PixelFunction16> iterate_origin_16;
  PF_IterateOriginCallback<PF_PixelFunction16> iterate_origin_non_clip_src_16;
};

// The suite service: named, versioned tables of functions. `acquire` fills *suite with the table, or leaves it null and
// returns an error. A command releases every suite that it acquires before it returns.
struct PF_SuiteProvider {
  std::int32_t (*acquire)(const char* name, std::int32_t version, const void** suite);
  std::int32_t (*release)(const char* name, std::int32_t version);
};

// ---- Suites --------------------------------------------------------------------------------------------------------

constexpr const char* PF_WORLD_SUITE = "PF World Suite";
constexpr std::int32_t PF_WORLD_SUITE_VERSION = 2;

struct PF_WorldSuite2 {
  // Allocates a world of that size and pixel format, cleared to zero if `clear`, and describes it in *world. The host
  // keeps it valid until the current command returns and then frees it; modules have no call to do so.
  std::int32_t (*new_world)(void* effect_ref, std::int32_t width, std::int32_t height, bool clear,
                            std::int32_t pixel_format, PF_LayerDef* world);
  void (*reserved_2)();
  // Stores the world's pixel-format code in *pixel_format.
  std::int32_t (*get_pixel_format)(PF_LayerDef* world, std::int32_t* pixel_format);
};

constexpr const char* PF_ITERATE_FLOAT_SUITE = "PF iterateFloat Suite";
constexpr std::int32_t PF_ITERATE_FLOAT_SUITE_VERSION = 1;

struct PF_iterateFloatSuite1 {
  PF_IterateCallback<PF_PixelFunctionFloat> iterate;
  PF_IterateOriginCallback<PF_PixelFunctionFloat> iterate_origin;
  PF_IterateOriginCallback<PF_PixelFunctionFloat> iterate_origin_non_clip_src;
};

constexpr const char* PF_SAMPLING_FLOAT_SUITE = "PF SamplingFloat Suite";
constexpr std::int32_t PF_SAMPLING_FLOAT_SUITE_VERSION = 1;

struct PF_SamplingFloatSuite1 {
  void (*reserved_1)();
  void (*reserved_2)();
  PF_AreaSampler<PF_PixelFloat> sample_area_float;
};

// ---- String tables --------------------------------------------------------------------------------------------------

// The format number passed when a string table is registered.
constexpr std::int32_t PF_STRING_TABLE_FORMAT = 4065;

// A row: "key=default text", and working space for the host. The terminating row has a null text.
struct FX_StringRow {
  const char* text;
  std::uint64_t host_work[3];
};

// The table that a module registers: `register_string_table` is given the address of a pointer to this header.
struct FX_StringHeader {
  const char* tag;          // "FX"
  std::uint64_t row_count;  // including the terminating row
  FX_StringRow* rows;
  std::uint64_t reserved;
};

struct FX_StringReference {
  FX_StringHeader* header;
  std::uint64_t reserved;
};

// ---- The records of every call -------------------------------------------------------------------------------------

// The host's description of the current call.
struct PF_InData {
  // Fills *out with the parameter's value at that time; the effect checks in every successful checkout exactly once.
  std::int32_t (*checkout_param)(void* effect_ref, std::int32_t index, std::int32_t time, std::int32_t time_step,
                                 std::uint32_t time_scale, PF_ParamDef* out);
  std::int32_t (*checkin_param)(void* effect_ref, PF_ParamDef* param);

  // Adds a parameter after the last one (position -1); the host copies what it needs from the record.
  std::int32_t (*add_param)(void* effect_ref, std::int32_t position, PF_ParamDef* definition);

  // String tables. At registration the host may replace the reference by one of its own. A looked-up string belongs to
  // the host and is valid until the next callback.
  std::int32_t (*register_string_table)(void** table_ref, std::int32_t format);
  const char* (*lookup_string)(void* table_ref, std::int32_t row, std::int32_t zero, void* null_pointer);
  std::int32_t (*unregister_string_table)(void** table_ref);

  PF_UtilityCallbacks* utility_callbacks;
  void* effect_ref;           // the host's handle of this effect instance
  std::int32_t quality;       // PF_QUALITY_HIGH, or anything else for standard quality
  std::int32_t current_time;  // in units of 1 / time_scale seconds
  std::int32_t time_step;     // duration of a frame, in the same units
  std::uint32_t time_scale;   // units per second
  std::int32_t width;         // the layer's size in full-resolution pixels
  std::int32_t height;
  std::int32_t output_origin_x;  // added to every corner value read from the parameters
  std::int32_t output_origin_y;
  std::int32_t downsample_x_num;  // this render's resolution, as a ratio
  std::uint32_t downsample_x_den;
  std::int32_t downsample_y_num;
  std::uint32_t downsample_y_den;
  PF_Handle global_data;             // as the effect stored it in PF_OutData at global setup
  PF_SuiteProvider* suite_provider;  // null when the host offers no suites
  std::int32_t source_origin_x;      // the layer's own top-left corner inside the input buffer
  std::int32_t source_origin_y;
};

// The effect's answers to the host.
struct PF_OutData {
  std::uint32_t version;
  PF_Handle global_data;
  std::int32_t param_count;  // including the input layer, the first one
  std::int32_t width;        // the output buffer's size, set at frame setup
  std::int32_t height;
  std::int32_t origin_x;  // where the input layer's origin lies in the output buffer, set at frame setup
  std::int32_t origin_y;
  std::uint32_t out_flags;
  char return_msg[PF_RETURN_MSG_CAPACITY];
  std::uint32_t out_flags2;
};

// ---- The two-phase protocol ----------------------------------------------------------------------------------------

// A request for part of a layer. The bytes after the rectangle belong to the host.
struct PF_RenderRequest {
  M_UnionableLRect rect;  // layer pixels
  std::uint8_t reserved[28];
};

struct PF_CheckoutResult {
  M_UnionableLRect result_rect;      // what the host will deliver
  M_UnionableLRect max_result_rect;  // the most that it could deliver
};

struct PF_PreRenderCallbacks {
  // Declares which part of a layer parameter smart render will need; on success both rectangles of *out are written.
  std::int32_t (*checkout_layer)(void* effect_ref, std::int32_t index, std::int32_t checkout_id,
                                 const PF_RenderRequest* request, std::int32_t time, std::int32_t time_step,
                                 std::uint32_t time_scale, PF_CheckoutResult* out);
};

struct PF_PreRenderResult {
  M_UnionableLRect result_rect;      // what the effect will render
  M_UnionableLRect max_result_rect;  // the most that it could render at any request
};

// The extra record of CMD_PRE_RENDER.
struct PF_PreRenderExtra {
  PF_RenderRequest* request;
  PF_PreRenderResult* result;
  PF_PreRenderCallbacks* callbacks;
};

struct PF_SmartRenderCallbacks {
  // The pixels of the layer that was checked out in pre-render under that id.
  std::int32_t (*checkout_layer_pixels)(void* effect_ref, std::int32_t checkout_id, PF_LayerDef** world);
  void (*reserved_2)();
  // The world to draw into.
  std::int32_t (*checkout_output)(void* effect_ref, PF_LayerDef** world);
};

// The extra record of CMD_SMART_RENDER.
struct PF_SmartRenderExtra {
  PF_SmartRenderCallbacks* callbacks;
};

// ---- Layout --------------------------------------------------------------------------------------------------------

static_assert(sizeof(void*) == 8, "the interface is defined for 64-bit pointers");
static_assert(sizeof(M_LRect) == 16 && sizeof(M_LPoint) == 8);
static_assert(sizeof(PF_Pixel8) == 4 && sizeof(PF_Pixel16) == 8 && sizeof(PF_PixelFloat) == 16);
static_assert(sizeof(PF_RenderRequest) == 44);
static_assert(sizeof(PF_PointValue) == 20);

// ---- The module's entry --------------------------------------------------------------------------------------------

// The type of the function that a module exports under the name EffectMainExtra.
using PF_EffectMain = std::int32_t (*)(std::int32_t command, PF_InData* in_data, PF_OutData* out_data,
                                       PF_ParamDef** params, PF_LayerDef* output, void* extra);
constexpr const char* PF_EFFECT_ENTRY = "EffectMainExtra";
