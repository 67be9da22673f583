// Setting the effect up and down, and its About text. These handlers ignore `params` and `output`.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// Writes the About text, with the version, into return_msg. Always ERR_NONE.
std::int32_t About(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// Registers the string table, allocates the global block and declares version and capabilities. On failure (the host's
// code, or ERR_OUT_OF_MEMORY) neither registration nor block is left behind, and return_msg says so.
std::int32_t GlobalSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// Ends the string table's registration and frees the global block. Without a block there is nothing to do. Always
// ERR_NONE.
std::int32_t GlobalSetdown(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);
