#include "tests/host/ScriptedModule.h"

#include <cstring>

namespace vantorel::host {
inline namespace testing {

namespace {

Script current;

std::int32_t declarePoints(PF_InData* in_data, PF_OutData* out_data) {
  for (int i = 0; i < current.points; ++i) {
    PF_ParamDef definition{};
    definition.param_type = PARAM_TYPE_POINT;
    std::strcpy(definition.name, "Point");
    definition.value.point.point_default_x = (i % 2) * 100 * 65536;
    definition.value.point.point_default_y = (i / 2) * 100 * 65536;
    if (const std::int32_t err = in_data->add_param(in_data->effect_ref, -1, &definition); err != ERR_NONE) {
      return err;
    }
  }
  out_data->param_count = current.points + 1;
  return ERR_NONE;
}

std::int32_t drawRow(void* refcon, std::int32_t /*x*/, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  const PF_LayerDef& world = *static_cast<const PF_LayerDef*>(refcon);
  std::memset(out, 7, sizeof(PF_Pixel8) * world.width);
  return y == 3 && current.in_row_3 ? current.in_row_3(out, world) : ERR_NONE;
}

std::int32_t draw(PF_InData* in_data, PF_OutData* out_data, PF_LayerDef* output) {
  const std::int32_t err = current.draw ? current.draw({in_data, out_data, output}) : ERR_NONE;
  const M_LRect area(0, 0, 1, output->height);
  return err != ERR_NONE ? err
                         : in_data->utility_callbacks->iterate_8(in_data, 0, output->height, nullptr, &area, output,
                                                                 drawRow, output);
}

std::int32_t preRender(PF_InData* in_data, PF_PreRenderExtra* extra) {
  PF_CheckoutResult checkout;
  extra->result->result_rect = extra->request->rect;
  return extra->callbacks->checkout_layer(in_data->effect_ref, 0, 4, extra->request, in_data->current_time,
                                          in_data->time_step, in_data->time_scale, &checkout);
}

std::int32_t smartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra) {
  PF_LayerDef* world = nullptr;
  std::int32_t err = extra->callbacks->checkout_layer_pixels(in_data->effect_ref, current.checkout_id, &world);
  if (err == ERR_NONE) {
    err = extra->callbacks->checkout_output(in_data->effect_ref, &world);
  }
  return err != ERR_NONE ? err : draw(in_data, out_data, world);
}

std::int32_t entry(std::int32_t command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params,
                   PF_LayerDef* output, void* extra) {
  switch (command) {
    case CMD_GLOBAL_SETUP:
      return current.setup ? current.setup({in_data, out_data, nullptr}) : ERR_NONE;
    case CMD_PARAMS_SETUP:
      return declarePoints(in_data, out_data);
    case CMD_FRAME_SETUP:
      out_data->width = output->extent_hint.right;
      out_data->height = output->extent_hint.bottom;
      return current.frame_setup ? current.frame_setup({in_data, out_data, output, params}) : ERR_NONE;
    case CMD_RENDER:
      return draw(in_data, out_data, output);
    case CMD_PRE_RENDER:
      return preRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case CMD_SMART_RENDER:
      return smartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
      return ERR_NONE;
  }
}

}  // namespace

Result<std::shared_ptr<const Module>> loadScripted(Script script, ModuleOptions options) {
  current = std::move(script);
  return Module::fromEntry(entry, "scripted", std::move(options));
}

std::int32_t failWithMessage(const Call& call, const char* message, std::int32_t code) {
  call.out->out_flags |= OUT_FLAG_SHOW_MESSAGE;
  call.in->utility_callbacks->strcpy(call.out->return_msg, message);
  return code;
}

}  // namespace testing
}  // namespace vantorel::host
