#include "effect/EffectMain.h"

#include "effect/FrameSetup.h"
#include "effect/Lifecycle.h"
#include "effect/Parameters.h"
#include "effect/PreRender.h"
#include "effect/RenderDriver.h"

std::int32_t EffectMainExtra(std::int32_t command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params,
                             PF_LayerDef* output, void* extra) {
  switch (command) {
    case CMD_ABOUT:
      return About(in_data, out_data, params, output);
    case CMD_GLOBAL_SETUP:
      return GlobalSetup(in_data, out_data, params, output);
    case CMD_GLOBAL_SETDOWN:
      return GlobalSetdown(in_data, out_data, params, output);
    case CMD_PARAMS_SETUP:
      return ParamsSetup(in_data, out_data, params, output);
    case CMD_FRAME_SETUP:
      return FrameSetup(in_data, out_data, params, output);
    case CMD_RENDER:
      return Render(in_data, out_data, params, output);
    case CMD_PRE_RENDER:
      return PreRender(in_data, out_data, static_cast<PF_PreRenderExtra*>(extra));
    case CMD_SMART_RENDER:
      return SmartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
      return ERR_NONE;
  }
}
