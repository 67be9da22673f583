// One command sent to a module: its records, and the handling of its result.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/callbacks/CallContext.h"
#include "host/module/ModuleState.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

class ModuleCall {
 public:
  // Fills the records with everything that all commands need. Pass the frame's state for a command about a frame.
  explicit ModuleCall(const ModuleState& module, FrameState* frame = nullptr);
  ModuleCall(const ModuleCall&) = delete;
  ModuleCall& operator=(const ModuleCall&) = delete;

  // Adds what frame commands need: the layer's full size, the time, the quality and the resolution.
  void setFrame(Size layer_size, const FrameOptions& options);

  // Sends the command. Fails if the module returns an error (with its message, if any), if the frame was stopped, and,
  // in checking mode, if the module violated the interface. Adds the time taken to the frame's.
  Result<void> run(PF_Command command, PF_ParamDef** params, PF_LayerDef* output, void* extra);

  PF_InData in{};
  PF_OutData out{};
  CallContext context;

 private:
  std::int32_t callModule(PF_Command command, PF_ParamDef** params, PF_LayerDef* output, void* extra);
  Error errorOf(PF_Command command, std::int32_t code);

  const ModuleState& module_;
  CallLedger ledger_;
};

}  // namespace vantorel::host
