#include "effect/PreRender.h"

#include "effect/CornerGeometry.h"
#include "effect/Int32Arithmetic.h"
#include "effect/Parameters.h"
#include "effect/PathChoice.h"
#include "math/Int32FromDouble.h"

namespace {

constexpr std::int32_t kInputLayer = 0;

std::int32_t checkOutWholeLayer(PF_InData* in_data, const PF_PreRenderExtra* extra, PF_CheckoutResult* checkout) {
  PF_RenderRequest request = *extra->request;
  request.rect = M_LRect(0, 0, in_data->width, in_data->height);
  return extra->callbacks->checkout_layer(in_data->effect_ref, kInputLayer, kInputCheckoutId, &request,
                                          in_data->current_time, in_data->time_step, in_data->time_scale, checkout);
}

// Whether the delivered rectangle is that of the input buffer: in pixels of the current resolution, with the whole
// layer in it at the origin given by PF_InData. Some hosts return the request itself, at full resolution, or only part
// of the layer, from which the buffer's size cannot be known.
bool tellsBufferSize(const PF_InData* in_data, const M_LRect& delivered) {
  const bool is_request = delivered.left == 0 && delivered.top == 0 && delivered.right == in_data->width &&
                          delivered.bottom == in_data->height;
  const ScaledSize layer = scaledLayerSize(in_data);
  return !delivered.IsEmpty() && !is_request && delivered.left == wrapSub(0, in_data->source_origin_x) &&
         delivered.top == wrapSub(0, in_data->source_origin_y) && delivered.right >= layer.width &&
         delivered.bottom >= layer.height;
}

// The corners' bounding box, extended by a pixel on every side and truncated toward zero.
M_LRect widenedBounds(const M_Vector2T<double>* corners) {
  const M_FloatRect box = cornerBounds(corners);
  return {int32FromDouble(box.left - 1.0), int32FromDouble(box.top - 1.0), int32FromDouble(box.right + 1.0),
          int32FromDouble(box.bottom + 1.0)};
}

}  // namespace

std::int32_t PreRender(PF_InData* in_data, PF_OutData* out_data, PF_PreRenderExtra* extra) {
  PF_CheckoutResult checkout;
  std::int32_t err = checkOutWholeLayer(in_data, extra, &checkout);
  if (err != ERR_NONE) {
    return err;
  }
  const M_LRect& delivered = M_RemoveUnionableness(checkout.result_rect);
  PF_LayerDef buffer{};
  buffer.width = wrapSub(delivered.right, delivered.left);
  buffer.height = wrapSub(delivered.bottom, delivered.top);
  PF_LayerDef* const input = tellsBufferSize(in_data, delivered) ? &buffer : nullptr;

  M_Vector2T<double> corners[4]{};
  err = UseBilinear(in_data, out_data, input) ? GetCornerParams(in_data, corners, 0, 0)
                                              : GetCornerPoints(in_data, out_data, input, corners);
  if (err != ERR_NONE) {
    return err;
  }
  const M_LRect bounds = widenedBounds(corners);
  PF_PreRenderResult& result = *extra->result;
  if (delivered.left != delivered.right) {
    result.result_rect = delivered;
    result.result_rect.Union(bounds);
    IntersectLRect(&extra->request->rect, &result.result_rect);
  }
  result.max_result_rect = checkout.max_result_rect;
  result.max_result_rect.Union(bounds);
  return ERR_NONE;
}
