#include "KZFX_Iterate.h"

#include <new>

#include "KZFX_SuiteHelper.h"

namespace {

// Calls `entry` of the float iteration suite with the arguments, and converts exceptions back into error codes.
template <typename Entry, typename... Arguments>
std::int32_t iterateFloat(PF_InData* in_data, Entry PF_iterateFloatSuite1::*entry, Arguments... arguments) {
  std::int32_t err = ERR_NONE;
  try {
    const KZFX_SuiteScoper<PF_iterateFloatSuite1> suite(in_data, PF_ITERATE_FLOAT_SUITE, PF_ITERATE_FLOAT_SUITE_VERSION,
                                                        nullptr, nullptr);
    err = (suite.operator->()->*entry)(in_data, arguments...);
    if (err != ERR_NONE) {
      throw err;
    }
  } catch (const std::int32_t code) {
    err = code;
  } catch (const std::bad_alloc&) {
    err = ERR_OUT_OF_MEMORY;
  }
  return err;
}

}  // namespace

std::int32_t PF_IterateWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                            PF_LayerDef* source, const M_LRect* area, void* refcon, PF_PixelFunction8 function,
                            PF_LayerDef* destination) {
  return in_data->utility_callbacks->iterate_8(in_data, progress_base, progress_final, source, area, refcon, function,
                                               destination);
}

std::int32_t PF_IterateWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                            PF_LayerDef* source, const M_LRect* area, void* refcon, PF_PixelFunction16 function,
                            PF_LayerDef* destination) {
  return in_data->utility_callbacks->iterate_16(in_data, progress_base, progress_final, source, area, refcon, function,
                                                destination);
}

std::int32_t PF_IterateWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                            PF_LayerDef* source, const M_LRect* area, void* refcon, PF_PixelFunctionFloat function,
                            PF_LayerDef* destination) {
  return iterateFloat(in_data, &PF_iterateFloatSuite1::iterate, progress_base, progress_final, source, area, refcon,
                      function, destination);
}

std::int32_t PF_IterateOriginWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                  PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                  PF_PixelFunction8 function, PF_LayerDef* destination) {
  return in_data->utility_callbacks->iterate_origin_8(in_data, progress_base, progress_final, source, area, origin,
                                                      refcon, function, destination);
}

std::int32_t PF_IterateOriginWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                  PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                  PF_PixelFunction16 function, PF_LayerDef* destination) {
  return in_data->utility_callbacks->iterate_origin_16(in_data, progress_base, progress_final, source, area, origin,
                                                       refcon, function, destination);
}

std::int32_t PF_IterateOriginWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                  PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin, void* refcon,
                                  PF_PixelFunctionFloat function, PF_LayerDef* destination) {
  return iterateFloat(in_data, &PF_iterateFloatSuite1::iterate_origin, progress_base, progress_final, source, area,
                      origin, refcon, function, destination);
}

std::int32_t PF_IterateOriginNonClipSrcWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                                            void* refcon, PF_PixelFunction8 function, PF_LayerDef* destination) {
  return in_data->utility_callbacks->iterate_origin_non_clip_src_8(in_data, progress_base, progress_final, source, area,
                                                                   origin, refcon, function, destination);
}

std::int32_t PF_IterateOriginNonClipSrcWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                                            void* refcon, PF_PixelFunction16 function, PF_LayerDef* destination) {
  return in_data->utility_callbacks->iterate_origin_non_clip_src_16(in_data, progress_base, progress_final, source,
                                                                    area, origin, refcon, function, destination);
}

std::int32_t PF_IterateOriginNonClipSrcWrap(PF_InData* in_data, std::int32_t progress_base, std::int32_t progress_final,
                                            PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                                            void* refcon, PF_PixelFunctionFloat function, PF_LayerDef* destination) {
  return iterateFloat(in_data, &PF_iterateFloatSuite1::iterate_origin_non_clip_src, progress_base, progress_final,
                      source, area, origin, refcon, function, destination);
}
