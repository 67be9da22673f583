// The callback tables that a module is given. They hold no state and live as long as the program; a callback finds its
// data in the context of the running command (CallContext.h).
#pragma once

#include "host/sampling/SampleSpace.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Sets every callback, the utility table and the suite service in the record. The area samplers are those for `space`.
void installCallbacks(PF_InData* in_data, SampleSpace space);

// The callbacks of the two-phase protocol's two commands: declaring which pixels the module will need, and handing them
// over.
PF_PreRenderCallbacks* preRenderCallbacks();
PF_SmartRenderCallbacks* smartRenderCallbacks();

// ---- The parts, each in the file of its name -----------------------------------------------------------------------

// ParameterCallbacks: declaring parameters, and reading their values at a time.
void installParameterCallbacks(PF_InData* in_data);

// StringCallbacks: registering a module's string table, and looking its texts up.
void installStringCallbacks(PF_InData* in_data);

// WorldCallbacks: allocating worlds for the module, and filling worlds. `fillWorld` takes a pixel of the world's depth,
// or null for transparent; a null rectangle is the whole world, any other is clipped to it. kCodeBadArgument for a
// world that does not belong to the frame.
const PF_WorldSuite2* worldSuite();
std::int32_t fillWorld(void* effect_ref, const void* color, const M_LRect* rect, PF_LayerDef* world);

// SuiteCallbacks: the world suite 2, the float iteration suite 1 and the float sampling suite 1. Any other suite gives
// ERR_SUITE_UNAVAILABLE and a null pointer.
PF_SuiteProvider* suiteProvider();

}  // namespace vantorel::host
