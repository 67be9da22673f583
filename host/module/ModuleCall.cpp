#include "host/module/ModuleCall.h"

#include <chrono>

#include "host/callbacks/CallbackTables.h"
#include "host/module/StringTable.h"

namespace vantorel::host {

namespace {

const char* commandName(PF_Command command) {
  switch (command) {
    case CMD_ABOUT:
      return "about";
    case CMD_GLOBAL_SETUP:
      return "global setup";
    case CMD_GLOBAL_SETDOWN:
      return "global set-down";
    case CMD_PARAMS_SETUP:
      return "parameter setup";
    case CMD_FRAME_SETUP:
      return "frame setup";
    case CMD_RENDER:
      return "render";
    case CMD_PRE_RENDER:
      return "pre-render";
    case CMD_SMART_RENDER:
      return "smart render";
  }
  return "command";
}

}  // namespace

ModuleCall::ModuleCall(const ModuleState& module, FrameState* frame) : context(module.resources), module_(module) {
  context.frame = frame;
  context.out = &out;
  context.ledger = module.checking ? &ledger_ : nullptr;
  installCallbacks(&in, frame != nullptr ? frame->space : SampleSpace::Centres);
  in.effect_ref = &context;
  in.global_data = module.global_data;
  in.quality = PF_QUALITY_HIGH;
  in.time_step = 1;
  in.time_scale = 1;
  in.downsample_x_num = 1;
  in.downsample_x_den = 1;
  in.downsample_y_num = 1;
  in.downsample_y_den = 1;
  out.global_data = module.global_data;
  out.version = module.info.version_word;
}

void ModuleCall::setFrame(Size layer_size, const FrameOptions& options) {
  in.width = layer_size.width;
  in.height = layer_size.height;
  in.quality = options.quality == Quality::Standard ? 0 : PF_QUALITY_HIGH;
  in.current_time = options.time.time;
  in.time_step = options.time.step;
  in.time_scale = options.time.scale;
  in.downsample_x_den = static_cast<std::uint32_t>(options.downsample);
  in.downsample_y_den = static_cast<std::uint32_t>(options.downsample);
}

Result<void> ModuleCall::run(PF_Command command, PF_ParamDef** params, PF_LayerDef* output, void* extra) {
  const auto begin = std::chrono::steady_clock::now();
  const std::int32_t code = callModule(command, params, output, extra);
  if (context.frame != nullptr) {
    context.frame->render_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }
  ledger_.close();
  if (!ledger_.misuse().empty()) {
    return failure(ErrorKind::Misuse, commandName(command), ledger_.misuse(), code);
  }
  if (code != ERR_NONE) {
    return tl::unexpected(errorOf(command, code));
  }
  return {};
}

std::int32_t ModuleCall::callModule(PF_Command command, PF_ParamDef** params, PF_LayerDef* output, void* extra) {
  const CallScope scope(context);
  return guarded([&] { return module_.entry(command, &in, &out, params, output, extra); });
}

Error ModuleCall::errorOf(PF_Command command, std::int32_t code) {
  if (context.failure) {
    return *context.failure;
  }
  if (context.frame != nullptr && context.frame->rows.stopRequested()) {
    return {ErrorKind::Interrupted, code, commandName(command), "the frame was stopped before it was done"};
  }
  const ErrorKind kind = code == ERR_OUT_OF_MEMORY ? ErrorKind::OutOfMemory : ErrorKind::EffectFailed;
  out.return_msg[PF_RETURN_MSG_CAPACITY - 1] = '\0';
  if ((out.out_flags & OUT_FLAG_SHOW_MESSAGE) != 0 && out.return_msg[0] != '\0') {
    return {kind, code, commandName(command), withLineBreaks(out.return_msg)};
  }
  return {kind, code, commandName(command),
          std::string("the effect's ") + commandName(command) + " failed with error code " + std::to_string(code)};
}

}  // namespace vantorel::host
