#include "effect/Lifecycle.h"

#include <cstring>

#include "effect/GlobalBlock.h"
#include "effect/StringTable.h"
#include "platform/Handles.h"

namespace {

constexpr std::uint32_t kPackedVersion = 0x00100600;
constexpr long kMajorVersion = 2;
constexpr long kMinorVersion = 0;

constexpr std::uint32_t kCapabilities = OUT_FLAG_USES_EXTENT_HINT | OUT_FLAG_SETS_OUTPUT_SIZE | OUT_FLAG_16BIT_WORLDS;

// A zeroed global block from the host's allocator or, if the host has none, from the platform's; null when out of
// memory.
PF_Handle newGlobalBlock(const PF_UtilityCallbacks& utilities) {
  const PF_Handle handle =
      utilities.new_handle != nullptr ? utilities.new_handle(sizeof(GlobalBlock)) : NewHandle(sizeof(GlobalBlock));
  if (handle != nullptr) {
    std::memset(*handle, 0, sizeof(GlobalBlock));
  }
  return handle;
}

void disposeGlobalBlock(const PF_UtilityCallbacks& utilities, PF_Handle handle) {
  if (utilities.dispose_handle != nullptr) {
    utilities.dispose_handle(handle);
  } else {
    DisposeHandle(handle);
  }
}

std::int32_t reportSetupFailure(PF_InData* in_data, PF_OutData* out_data, void** string_table, std::int32_t err) {
  if (*string_table != nullptr) {
    in_data->unregister_string_table(string_table);
  }
  out_data->out_flags |= OUT_FLAG_SHOW_MESSAGE;
  in_data->utility_callbacks->strcpy(out_data->return_msg, "Vantorel could not be initialized.");
  return err;
}

}  // namespace

std::int32_t About(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** /*params*/, PF_LayerDef* /*output*/) {
  in_data->utility_callbacks->sprintf(out_data->return_msg, LookupString(in_data, FX_STRING_ABOUT), kMajorVersion,
                                      kMinorVersion);
  return ERR_NONE;
}

std::int32_t GlobalSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** /*params*/, PF_LayerDef* /*output*/) {
  void* string_table = FX_G_zref.header;
  const std::int32_t err = in_data->register_string_table(&string_table, PF_STRING_TABLE_FORMAT);
  if (err != ERR_NONE) {
    return reportSetupFailure(in_data, out_data, &string_table, err);
  }
  const PF_Handle handle = newGlobalBlock(*in_data->utility_callbacks);
  if (handle == nullptr) {
    return reportSetupFailure(in_data, out_data, &string_table, ERR_OUT_OF_MEMORY);
  }

  static_cast<GlobalBlock*>(*handle)->string_table = string_table;
  out_data->global_data = handle;
  in_data->global_data = handle;
  out_data->version = kPackedVersion;
  out_data->out_flags = kCapabilities;
  out_data->out_flags2 |= OUT_FLAG2_FLOAT_WORLDS;
  return ERR_NONE;
}

std::int32_t GlobalSetdown(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** /*params*/,
                           PF_LayerDef* /*output*/) {
  if (in_data->global_data == nullptr) {
    return ERR_NONE;
  }
  void* string_table = stringTableReference(in_data);
  in_data->unregister_string_table(&string_table);
  if (out_data->global_data != nullptr) {
    static_cast<GlobalBlock*>(*out_data->global_data)->string_table = nullptr;
  }
  disposeGlobalBlock(*in_data->utility_callbacks, in_data->global_data);
  out_data->global_data = nullptr;
  in_data->global_data = nullptr;
  return ERR_NONE;
}
