#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"

namespace vantorel::host {

namespace {

void reportMisuse(CallContext* context, const char* misuse) {
  if (context->ledger != nullptr) {
    context->ledger->report(misuse);
  }
}

// Always delivers the whole layer, whatever part is requested.
std::int32_t checkoutLayer(void* effect_ref, std::int32_t index, std::int32_t checkout_id,
                           const PF_RenderRequest* /*request*/, std::int32_t /*time*/, std::int32_t /*time_step*/,
                           std::uint32_t /*time_scale*/, PF_CheckoutResult* out) {
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || context->frame == nullptr || index != 0 || out == nullptr) {
    return kCodeBadArgument;
  }
  return guarded([&]() -> std::int32_t {
    FrameState& frame = *context->frame;
    if (frame.layer_checkout) {
      reportMisuse(context, "the layer was checked out twice in one pre-render");
      return kCodeBadArgument;
    }
    frame.layer_checkout = checkout_id;
    out->result_rect = M_LRect(0, 0, frame.input.width, frame.input.height);
    out->max_result_rect = out->result_rect;
    return ERR_NONE;
  });
}

std::int32_t checkoutLayerPixels(void* effect_ref, std::int32_t checkout_id, PF_LayerDef** world) {
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || context->frame == nullptr || world == nullptr) {
    return kCodeBadArgument;
  }
  return guarded([&]() -> std::int32_t {
    if (context->frame->layer_checkout != checkout_id) {
      reportMisuse(context, "layer pixels were requested under an id that was not checked out in pre-render");
      return kCodeBadArgument;
    }
    *world = &context->frame->input;
    return ERR_NONE;
  });
}

std::int32_t checkoutOutput(void* effect_ref, PF_LayerDef** world) {
  CallContext* const context = contextOf(effect_ref);
  if (context == nullptr || context->frame == nullptr || world == nullptr) {
    return kCodeBadArgument;
  }
  *world = &context->frame->output;
  return ERR_NONE;
}

}  // namespace

PF_PreRenderCallbacks* preRenderCallbacks() {
  static PF_PreRenderCallbacks callbacks{checkoutLayer};
  return &callbacks;
}

PF_SmartRenderCallbacks* smartRenderCallbacks() {
  static PF_SmartRenderCallbacks callbacks{checkoutLayerPixels, nullptr, checkoutOutput};
  return &callbacks;
}

}  // namespace vantorel::host
