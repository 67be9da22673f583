// Fuzzes whole frames through the module's entry: sizes, strides, origins, resolutions, hints, corners, depth, quality,
// protocol, the host's rectangles and failures of its callbacks, all from the input. Nothing around the pixels of a
// world is touched, and whatever happens, the effect gives back what it took.
#include <cstddef>
#include <cstdint>

#include "fuzz/Input.h"
#include "tests/effect/ScriptedHost.h"

namespace {

using vantorel::fuzz::Input;
using vantorel::fuzz::require;

constexpr int kMaxSide = 40;
constexpr const char* kCallbacks[] = {"checkout_param",   "checkin_param",
                                      "acquire",          "release",
                                      "get_pixel_format", "iterate_8",
                                      "iterate_16",       "iterate_float",
                                      "checkout_layer",   "checkout_layer_pixels",
                                      "checkout_output",  "add_param",
                                      "new_handle",       "register_string_table"};

// Rows of 8-bit pixels are whole pixels apart: the effect steps in those.
WorldShape someShape(Input& input, int depth) {
  const int unit = depth == 8 ? 4 : 1;
  return {input.inRange(0, kMaxSide), input.inRange(0, kMaxSide), input.inRange(0, 9) * unit, input.flag()};
}

M_LRect someRect(Input& input) {
  return {input.number(), input.number(), input.number(), input.number()};
}

void fillRecords(Input& input, ScriptedHost& host) {
  PF_InData& in = host.in;
  in.quality = input.inRange(0, 1);
  if (input.flag()) {
    in.width = input.number();
    in.height = input.number();
    in.downsample_x_num = input.number();
    in.downsample_y_num = input.number();
    in.downsample_x_den = static_cast<std::uint32_t>(input.number());
    in.downsample_y_den = static_cast<std::uint32_t>(input.number());
  }
  if (input.flag()) {
    in.output_origin_x = input.number();
    in.output_origin_y = input.number();
    in.source_origin_x = input.number();
    in.source_origin_y = input.number();
  }
  if (input.flag()) {
    host.output.world.extent_hint = someRect(input);
    host.request.rect = someRect(input);
    host.checkout = {someRect(input), someRect(input)};
  }
  for (int i = 1; i <= 4; ++i) {
    PF_PointValue& point = host.values[i].value.point;
    point.point_x = input.fixed();
    point.point_y = input.fixed();
  }
  for (std::uint32_t i = 0; i < 16; ++i) {
    if (host.input.world.width > 0 && host.input.world.height > 0) {
      const std::uint8_t at = input.take<std::uint8_t>();
      host.input.at<std::uint8_t>(at % host.input.world.width, at / 7 % host.input.world.height) = at;
    }
  }
}

void spoil(Input& input, ScriptedHost& host) {
  if (input.inRange(0, 3) == 0) {
    host.fail(kCallbacks[input.inRange(0, std::size(kCallbacks) - 1)], input.inRange(1, 12), input.number(),
              input.flag());
  }
  if (input.inRange(0, 15) == 0) {
    host.hands_back_input = input.flag();
    host.hands_back_output = input.flag();
    host.pixel_format = input.flag() ? host.pixel_format : input.number();
    host.in.suite_provider = input.flag() ? host.in.suite_provider : nullptr;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const int depth = 8 << input.inRange(0, 2);
  const WorldShape layer = someShape(input, depth);
  ScriptedHost host(depth, layer, someShape(input, depth));
  host.input.protectGuards();
  host.output.protectGuards();
  const bool is_smart = input.flag();
  fillRecords(input, host);
  spoil(input, host);
  for (const std::int32_t command : {CMD_GLOBAL_SETUP, CMD_PARAMS_SETUP, is_smart ? CMD_PRE_RENDER : CMD_FRAME_SETUP,
                                     is_smart ? CMD_SMART_RENDER : CMD_RENDER}) {
    host.run(command);
    require(host.parameters_out == 0 && host.suites_out == 0, "what is checked out or acquired is given back, once");
  }
  require(host.input.guardsIntact() && host.output.guardsIntact(), "pixels alone are written");
  return 0;
}
