#include "host/Module.h"

#include <cstring>
#include <utility>

#include "host/Error.h"
#include "host/Simd.h"
#include "host/checking/OutOfMemory.h"
#include "host/module/ModuleCall.h"
#include "host/module/ModuleState.h"
#include "host/module/StringTable.h"

namespace vantorel::host {

namespace {

// Turns an error of a setup command into one about the module.
Error aboutModule(const std::string& path, Error error) {
  if (error.kind == ErrorKind::EffectFailed) {
    error.kind = ErrorKind::ModuleUnusable;
  }
  if (error.kind != ErrorKind::InvalidArgument) {
    error.message = error.input + ": " + error.message;
    error.input = path;
  }
  return error;
}

// The layout of a version word: the major number from bit 19, the minor number in 4 bits from bit 15, the patch number
// in 4 bits from bit 11, and below them stage and build.
std::string versionText(std::uint32_t word) {
  const std::uint32_t patch = word >> 11 & 15;
  const std::string text = std::to_string(word >> 19) + "." + std::to_string(word >> 15 & 15);
  return patch == 0 ? text : text + "." + std::to_string(patch);
}

// Fills in what global setup declared.
void describeModule(const PF_OutData& out, ModuleInfo* info) {
  info->version_word = out.version;
  info->out_flags = out.out_flags;
  info->out_flags2 = out.out_flags2;
  info->version = versionText(out.version);
  info->uses_extent_hint = (out.out_flags & OUT_FLAG_USES_EXTENT_HINT) != 0;
  info->sets_output_size = (out.out_flags & OUT_FLAG_SETS_OUTPUT_SIZE) != 0;
  info->renders_16_bit = (out.out_flags & OUT_FLAG_16BIT_WORLDS) != 0;
  info->renders_float = (out.out_flags2 & OUT_FLAG2_FLOAT_WORLDS) != 0;
}

Result<void> setUp(ModuleState& module) {
  ModuleCall call(module);
  Result<void> done = call.run(CMD_GLOBAL_SETUP, nullptr, nullptr, nullptr);
  // Even if checking mode found a misuse, a setup that succeeded needs a set-down.
  module.is_set_up = done || done.error().code == ERR_NONE;
  module.global_data = module.is_set_up ? call.out.global_data : nullptr;
  describeModule(call.out, &module.info);
  return done;
}

Result<void> declareParameters(ModuleState& module) {
  ModuleCall call(module);
  call.context.declared = &module.info.parameters;
  return call.run(CMD_PARAMS_SETUP, nullptr, nullptr, nullptr);
}

Result<void> readAbout(ModuleState& module) {
  ModuleCall call(module);
  Result<void> done = call.run(CMD_ABOUT, nullptr, nullptr, nullptr);
  module.info.about = withLineBreaks({call.out.return_msg, strnlen(call.out.return_msg, PF_RETURN_MSG_CAPACITY)});
  return done;
}

// Returns the first error, but always carries out every step.
Result<void> setDown(const ModuleState& module) {
  Result<void> done;
  if (module.is_set_up) {
    ModuleCall call(module);
    done = call.run(CMD_GLOBAL_SETDOWN, nullptr, nullptr, nullptr);
  }
  const std::size_t handles = module.resources.handles.count();
  if (done && module.checking && handles != 0) {
    done = failure(ErrorKind::Misuse, "global set-down", std::to_string(handles) + " handles are still allocated");
  }
  return done.map_error([&](Error error) { return aboutModule(module.info.path, std::move(error)); });
}

}  // namespace

Result<std::shared_ptr<const Module>> Module::load(const std::string& path, ModuleOptions options) {
  return withMemoryErrors("module", [&]() -> Result<std::shared_ptr<const Module>> {
    Result<SharedLibrary> library = SharedLibrary::open(path);
    if (!library) {
      return tl::unexpected(std::move(library).error());
    }
    auto state = std::make_unique<ModuleState>();
    state->entry = reinterpret_cast<EffectEntry>(library->symbol(PF_EFFECT_ENTRY));
    state->library = std::move(*library);
    if (state->entry == nullptr) {
      return failure(ErrorKind::ModuleUnusable, path,
                     "is not an effect module: it does not export " + std::string(PF_EFFECT_ENTRY));
    }
    return start(std::move(state), path, std::move(options));
  });
}

Result<std::shared_ptr<const Module>> Module::fromEntry(EffectEntry entry, const std::string& name,
                                                        ModuleOptions options) {
  return withMemoryErrors("module", [&] {
    auto state = std::make_unique<ModuleState>();
    state->entry = entry;
    return start(std::move(state), name, std::move(options));
  });
}

Result<std::shared_ptr<const Module>> Module::start(std::unique_ptr<ModuleState> state, const std::string& name,
                                                    ModuleOptions options) {
  if (Result<void> simd = checkSimdChoice(); !simd) {
    return tl::unexpected(std::move(simd).error());
  }
  state->resources.translations = std::move(options.translations);
  state->checking = options.checking;
  state->on_setdown_failure = std::move(options.on_setdown_failure);
  state->info.path = name;

  // From here on the destructor sets the module down on failure, if its global setup succeeded.
  const std::shared_ptr<const Module> module(new Module(std::move(state)));
  ModuleState& started = *module->state_;
  Result<void> done =
      setUp(started).and_then([&] { return declareParameters(started); }).and_then([&] { return readAbout(started); });
  if (!done) {
    return tl::unexpected(aboutModule(name, std::move(done).error()));
  }
  return module;
}

Module::Module(std::unique_ptr<ModuleState> state) : state_(std::move(state)) {}

Module::~Module() {
  Result<void> done = withMemoryErrors("module", [this] { return setDown(*state_); });
  if (!done && state_->on_setdown_failure) {
    state_->on_setdown_failure(done.error());
  }
}

const ModuleInfo& Module::info() const {
  return state_->info;
}

bool Module::checking() const {
  return state_->checking;
}

}  // namespace vantorel::host
