#include "bridges/common/EmbeddedModule.h"

#include <mutex>

extern "C" std::int32_t EffectMainExtra(std::int32_t command, PF_InData* in_data, PF_OutData* out_data,
                                        PF_ParamDef** params, PF_LayerDef* output, void* extra);

namespace vantorel::bridges {

host::Result<std::shared_ptr<const host::Module>> embeddedModule() {
  static std::mutex mutex;
  static std::weak_ptr<const host::Module> shared;

  const std::scoped_lock lock(mutex);
  if (std::shared_ptr<const host::Module> module = shared.lock()) {
    return module;
  }
  host::Result<std::shared_ptr<const host::Module>> module =
      host::Module::fromEntry(&EffectMainExtra, "the built-in effect");
  if (module) {
    shared = *module;
  }
  return module;
}

}  // namespace vantorel::bridges
