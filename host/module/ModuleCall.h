// One command sent to a module: the records that go with it, and what becomes of its answer.
#pragma once

#include "host/Error.h"
#include "host/Frame.h"
#include "host/callbacks/CallContext.h"
#include "host/module/ModuleState.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

class ModuleCall {
 public:
  // Fills the records with everything that holds for each command. For a command about a frame, give its state.
  explicit ModuleCall(const ModuleState& module, FrameState* frame = nullptr);
  ModuleCall(const ModuleCall&) = delete;
  ModuleCall& operator=(const ModuleCall&) = delete;

  // Adds what frame commands receive: the layer's full size, the time, the quality and the resolution.
  void setFrame(Size layer_size, const FrameOptions& options);

  // Sends the command. An error when the module returns one (with its message where it has one), when the frame was
  // stopped, and in checking mode when the module did not keep to the interface. Adds the time that the module took to
  // the frame's.
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
