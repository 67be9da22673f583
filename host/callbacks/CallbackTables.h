// The tables of callbacks that a module is given. They hold no state and live as long as the program; what a callback
// works on it finds in the context of the running command (CallContext.h).
#pragma once

#include "host/sampling/SampleSpace.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Enters every callback, the utility table and the suite service into the record; the area samplers are those of the
// space.
void installCallbacks(PF_InData* in_data, SampleSpace space);

// The tables that go with the two commands of the two-phase protocol: which pixels the module will need, and handing
// them over.
PF_PreRenderCallbacks* preRenderCallbacks();
PF_SmartRenderCallbacks* smartRenderCallbacks();

// ---- The parts, each in the file of its name -----------------------------------------------------------------------

// ParameterCallbacks: declaring parameters, and reading their values at a time.
void installParameterCallbacks(PF_InData* in_data);

// StringCallbacks: registering a module's string table, and looking its texts up.
void installStringCallbacks(PF_InData* in_data);

// WorldCallbacks: worlds of the module's own, and filling worlds. `fillWorld` takes a pixel of the world's depth, null
// for transparent; a null rectangle is the whole world, any other is cut to it. kCodeBadArgument for a world that is
// none of the frame's.
const PF_WorldSuite2* worldSuite();
std::int32_t fillWorld(void* effect_ref, const void* color, const M_LRect* rect, PF_LayerDef* world);

// SuiteCallbacks: the world suite 2, the float iteration suite 1 and the float sampling suite 1. A suite that is none
// of these gives ERR_SUITE_UNAVAILABLE and a null pointer.
PF_SuiteProvider* suiteProvider();

}  // namespace vantorel::host
