#include <fmt/format.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/CommandError.h"
#include "cli/Commands.h"
#include "cli/ModuleLocation.h"

namespace vantorel::cli {

namespace {

struct Capability {
  std::uint32_t flag;
  bool second;  // in the second word of flags
  const char* text;
};

constexpr Capability kCapabilities[] = {
    {0x40, false, "renders only the part that is asked for"},
    {0x200, false, "sets the size of its output"},
    {0x2000000, false, "16 bits per channel"},
    {0x1000, true, "32-bit float"},
};

std::vector<std::string> capabilities(const host::ModuleInfo& info) {
  std::vector<std::string> texts;
  for (const Capability& capability : kCapabilities) {
    if (((capability.second ? info.out_flags2 : info.out_flags) & capability.flag) != 0) {
      texts.emplace_back(capability.text);
    }
  }
  return texts;
}

std::string asJson(const host::ModuleInfo& info) {
  nlohmann::ordered_json object;
  object["module"] = info.path;
  object["about"] = info.about;
  object["version"] = fmt::format("0x{:08x}", info.version_word);
  object["flags"] = fmt::format("0x{:08x}", info.out_flags);
  object["flags2"] = fmt::format("0x{:08x}", info.out_flags2);
  object["capabilities"] = capabilities(info);
  object["parameters"] = nlohmann::ordered_json::array();
  for (const host::ParameterInfo& parameter : info.parameters) {
    object["parameters"].push_back({{"index", parameter.index},
                                    {"type", parameter.type},
                                    {"name", parameter.name},
                                    {"default_percent", {parameter.default_percent.x, parameter.default_percent.y}}});
  }
  return object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

std::string asText(const host::ModuleInfo& info) {
  std::string text = fmt::format("{}\n\nmodule        {}\nversion       0x{:08x}\nflags         0x{:08x} 0x{:08x}\n",
                                 info.about, info.path, info.version_word, info.out_flags, info.out_flags2);
  const char* label = "capabilities";
  for (const std::string& capability : capabilities(info)) {
    text += fmt::format("{:13} {}\n", label, capability);
    label = "";
  }
  label = "parameters";
  for (const host::ParameterInfo& parameter : info.parameters) {
    text += fmt::format("{:13} {}  {} (default {}%, {}%)\n", label, parameter.index, parameter.name,
                        parameter.default_percent.x, parameter.default_percent.y);
    label = "";
  }
  return text;
}

}  // namespace

ExitCode runInfo(const InfoOptions& options) {
  const auto module = loadModule(options.module);
  const std::string text = options.json ? asJson(module->info()) : asText(module->info());
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    throw fileFailure("standard output", "cannot be written to; check the pipe or the disk that it goes to");
  }
  return ExitCode::Done;
}

}  // namespace vantorel::cli
