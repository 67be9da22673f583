// The host's pixel iteration as overloaded functions, chosen by the pixel type. 8 and 16-bit pixels go through the
// utility callbacks; float pixels through the float iteration suite, which is acquired and released around the call.
//
// Each passes its arguments on unchanged and returns the iteration's error. The float versions also return
// ERR_SUITE_UNAVAILABLE, without a message, when the suite is unavailable, and ERR_OUT_OF_MEMORY when the host throws
// std::bad_alloc.
#pragma once

#include <cstdint>

#include "PF_HostRecords.h"

// Every pixel of `area` of `destination`; `source` may be null.
std::int32_t PF_IterateWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                            PF_LayerDef* source, const M_LRect* area, void* refcon, PF_PixelFunction8 function,
                            PF_LayerDef* destination);
std::int32_t PF_IterateWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                            PF_LayerDef* source, const M_LRect* area, void* refcon, PF_PixelFunction16 function,
                            PF_LayerDef* destination);
std::int32_t PF_IterateWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                            PF_LayerDef* source, const M_LRect* area, void* refcon, PF_PixelFunctionFloat function,
                            PF_LayerDef* destination);

// The same with an origin point for the source.
std::int32_t PF_IterateOriginWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                  PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                  PF_PixelFunction8 function, PF_LayerDef* destination);
std::int32_t PF_IterateOriginWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                  PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                  PF_PixelFunction16 function, PF_LayerDef* destination);
std::int32_t PF_IterateOriginWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                  PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                  PF_PixelFunctionFloat function, PF_LayerDef* destination);

// The same again; the host does not clip the source to its bounds.
std::int32_t PF_IterateOriginNonClipSrcWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                                            void* refcon, PF_PixelFunction8 function, PF_LayerDef* destination);
std::int32_t PF_IterateOriginNonClipSrcWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                                            void* refcon, PF_PixelFunction16 function, PF_LayerDef* destination);
std::int32_t PF_IterateOriginNonClipSrcWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                                            void* refcon, PF_PixelFunctionFloat function, PF_LayerDef* destination);
