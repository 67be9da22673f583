// The module's entry point.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// Executes one command: calls its handler and returns the handler's result. `params` and `output` are for the plain
// commands; `extra` is the PF_PreRenderExtra or PF_SmartRenderExtra of the two-phase commands. Unknown commands do
// nothing and return ERR_NONE.
extern "C" __attribute__((visibility("default"))) std::int32_t EffectMainExtra(std::int32_t command, PF_InData* in_data,
                                                                               PF_OutData* out_data,
                                                                               PF_ParamDef** params,
                                                                               PF_LayerDef* output, void* extra);
