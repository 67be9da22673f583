// An effect module, loaded once and shared by any number of instances.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/Animation.h"
#include "host/Error.h"

// The records of the host interface, defined in support/PF_HostRecords.h.
struct PF_InData;
struct PF_LayerDef;
struct PF_OutData;
struct PF_ParamDef;

namespace vantorel::host {

// The entry point of an effect module: the function that it exports as EffectMainExtra.
using EffectEntry = std::int32_t (*)(std::int32_t command, PF_InData* in_data, PF_OutData* out_data,
                                     PF_ParamDef** params, PF_LayerDef* output, void* extra);

// Texts that replace rows of a module's string table, by key ("$$$/.../LStr/0001").
using Translations = std::map<std::string, std::string, std::less<>>;

// Reads `key=text` lines: '#' starts a comment line, blank lines are skipped, and of two lines with the same key the
// later one wins. Errors are InvalidArgument and name `name` and the line.
Result<Translations> parseTranslations(const std::string& text, const std::string& name);

struct ModuleOptions {
  Translations translations{};
  // Reports every misuse of the interface (ErrorKind::Misuse): parameters left checked out, suites not released, writes
  // outside a row. Renders serially and slowly; for tests.
  bool checking = false;
  // Called when global set-down fails, since no caller is left to return the error to: the command failed or, in
  // checking mode, blocks are still allocated. Called on the thread that releases the module; must not throw.
  std::function<void(const Error&)> on_setdown_failure = nullptr;
};

// One parameter as the module declared it.
struct ParameterInfo {
  int index = 0;  // 1 and up; 0 is the input layer
  int type = 0;   // PARAM_TYPE_POINT
  std::string name;
  Point default_percent;  // percent of the layer's width and height
};

// What a module declares about itself.
struct ModuleInfo {
  std::string path;               // the module's file, or the name given with its entry point
  std::string about;              // with line breaks in place of the table's tokens
  std::string version;            // "2.0"; with a third number if that is not 0
  bool uses_extent_hint = false;  // renders only the requested part of its output
  bool sets_output_size = false;  // sets its output's size and origin at frame setup
  bool renders_16_bit = false;    // 16 bits per channel
  bool renders_float = false;     // 32-bit float channels
  std::vector<ParameterInfo> parameters;
  std::uint32_t version_word = 0;  // as declared by the module, like the two words of flags
  std::uint32_t out_flags = 0;
  std::uint32_t out_flags2 = 0;
};

struct ModuleState;

// A loaded module, set up: global setup, parameter setup and About have been called. It is set down and unloaded when
// the last owner releases it. Safe to use from several threads.
class Module {
 public:
  // Loads the file at `path`; a name without a slash is in the current folder. Errors: ModuleUnusable if it does not
  // load, lacks the entry point or fails its setup; InvalidArgument for a translation whose printf placeholders differ
  // from those of the text that it replaces, and for an invalid VANTOREL_SIMD (Simd.h); OutOfMemory; in checking mode
  // Misuse.
  static Result<std::shared_ptr<const Module>> load(const std::string& path, ModuleOptions options = {});

  // The same for an effect that is part of the program, given its entry point. `name` takes the place of the path in
  // ModuleInfo and in errors.
  static Result<std::shared_ptr<const Module>> fromEntry(EffectEntry entry, const std::string& name,
                                                         ModuleOptions options = {});

  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  const ModuleInfo& info() const;
  bool checking() const;

 private:
  friend class Instance;
  explicit Module(std::unique_ptr<ModuleState> state);
  static Result<std::shared_ptr<const Module>> start(std::unique_ptr<ModuleState> state, const std::string& name,
                                                     ModuleOptions options);
  std::unique_ptr<ModuleState> state_;
};

}  // namespace vantorel::host
