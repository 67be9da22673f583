// Setup and set-down of the effect, and its About text. These handlers ignore `params` and `output`.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// Writes the About text, with the version, into return_msg. Always ERR_NONE.
std::int32_t About(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// Registers the string table, allocates the global block and declares version and capabilities. On failure it returns
// the host's code or ERR_OUT_OF_MEMORY, leaves neither a registration nor a block behind, and reports the failure in
// return_msg.
std::int32_t GlobalSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

// Unregisters the string table and frees the global block. Does nothing if there is no block. Always ERR_NONE.
std::int32_t GlobalSetdown(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);
