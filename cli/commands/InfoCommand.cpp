#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/base/Console.h"
#include "cli/base/Text.h"
#include "cli/commands/Commands.h"
#include "cli/commands/Listing.h"
#include "cli/shots/ModuleLocation.h"
#include "host/Simd.h"

namespace vantorel::cli {

namespace {

std::vector<const char*> capabilities(const host::ModuleInfo& info) {
  std::vector<const char*> texts;
  const auto list = [&](bool has, const char* text) {
    if (has) {
      texts.push_back(text);
    }
  };
  list(info.uses_extent_hint, "renders only the requested part");
  list(info.sets_output_size, "sets the size of its output");
  list(info.renders_16_bit, "16 bits per channel");
  list(info.renders_float, "32-bit float");
  return texts;
}

std::string asJson(const host::ModuleInfo& info) {
  nlohmann::ordered_json object;
  object["module"] = info.path;
  object["about"] = info.about;
  object["version"] = info.version;
  object["version_word"] = fmt::format("0x{:08x}", info.version_word);
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
  object["simd"] = nlohmann::ordered_json::array();
  for (const host::SimdVariant& variant : host::simdVariants()) {
    object["simd"].push_back({{"name", variant.name}, {"available", variant.available}, {"active", variant.active}});
  }
  return object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

std::string asText(const host::ModuleInfo& info) {
  Listing listing;
  listing.add("module", escaped(info.path));
  listing.add("version", info.version);
  listing.add("shapes", "convex quadrilaterals in perspective, all others by a bilinear mapping");
  for (const char* capability : capabilities(info)) {
    listing.add("capabilities", capability);
  }
  for (const host::ParameterInfo& parameter : info.parameters) {
    listing.add("parameters", fmt::format("{}  {} (default {}%, {}%)", parameter.index, parameter.name,
                                          parameter.default_percent.x, parameter.default_percent.y));
  }
  for (const host::SimdVariant& variant : host::simdVariants()) {
    listing.add("SIMD", fmt::format("{:8} {}", variant.name,
                                    variant.active ? "in use" : (variant.available ? "available" : "not available")));
  }
  return info.about + "\n\n" + listing.text();
}

}  // namespace

ExitCode runInfo(const InfoOptions& options) {
  if (!options.file.empty()) {
    return runDescribe(options);
  }
  const auto module = loadModule(options.module);
  printOut(options.json ? asJson(module->info()) : asText(module->info()));
  return ExitCode::Done;
}

}  // namespace vantorel::cli
