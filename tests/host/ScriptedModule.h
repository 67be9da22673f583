// A module inside the test program, which does what a test tells it to do.
#pragma once

#include <functional>

#include "support/PF_HostRecords.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
inline namespace testing {

// A command under way; the output is null at global setup, and the parameters but at frame setup.
struct Call {
  PF_InData* in;
  PF_OutData* out;
  PF_LayerDef* output;
  PF_ParamDef** parameters = nullptr;
};

// Draws 7s into its 8-bit output, row by row, and calls these functions on the way.
struct Script {
  int points = 4;                // parameters that it declares
  std::int32_t checkout_id = 4;  // under which it asks for the layer's pixels; it checks the layer out under 4
  std::function<std::int32_t(const Call&)> setup{};
  std::function<std::int32_t(const Call&)> frame_setup{};
  std::function<std::int32_t(const Call&)> draw{};                                    // before any row
  std::function<std::int32_t(PF_Pixel8* row, const PF_LayerDef& output)> in_row_3{};  // after its 7s
};

// A module with that script; those loaded earlier follow it from now on, too.
Result<std::shared_ptr<const Module>> loadScripted(Script script, ModuleOptions options = {});

// Gives the user a message; the result is `code`.
std::int32_t failWithMessage(const Call& call, const char* message, std::int32_t code);

}  // namespace testing
}  // namespace vantorel::host
