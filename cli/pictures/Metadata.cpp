#include "cli/pictures/Metadata.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace vantorel::cli {

namespace {

bool sameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

template <typename Number>
Attribute numeric(std::string name, const char* type, Number value) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&value);
  return {std::move(name), type, {}, {bytes, bytes + sizeof value}};
}

template <typename Number>
double firstNumber(const std::vector<std::byte>& bytes) {
  Number value{};
  std::memcpy(&value, bytes.data(), std::min(sizeof value, bytes.size()));
  return static_cast<double>(value);
}

}  // namespace

Attribute textAttribute(std::string name, std::string text) {
  return {std::move(name), "string", std::move(text), {}};
}

Attribute numberAttribute(std::string name, int value) {
  return numeric(std::move(name), "int", value);
}

Attribute numberAttribute(std::string name, float value) {
  return numeric(std::move(name), "float", value);
}

const Attribute* Metadata::find(std::string_view name) const {
  const auto found = std::ranges::find_if(attributes_, [&](const Attribute& a) { return sameName(a.name, name); });
  return found == attributes_.end() ? nullptr : &*found;
}

std::string Metadata::text(std::string_view name) const {
  const Attribute* found = find(name);
  return found != nullptr ? found->text : "";
}

std::optional<double> Metadata::number(std::string_view name) const {
  const Attribute* found = find(name);
  if (found == nullptr || found->bytes.empty()) {
    return std::nullopt;
  }
  const std::string element = found->type.substr(0, found->type.find('['));
  const std::vector<std::byte>& bytes = found->bytes;
  if (element == "float") {
    return firstNumber<float>(bytes);
  }
  if (element == "double") {
    return firstNumber<double>(bytes);
  }
  if (element == "int") {
    return firstNumber<std::int32_t>(bytes);
  }
  if (element == "uint") {
    return firstNumber<std::uint32_t>(bytes);
  }
  if (element == "int16") {
    return firstNumber<std::int16_t>(bytes);
  }
  if (element == "uint16") {
    return firstNumber<std::uint16_t>(bytes);
  }
  return std::nullopt;
}

std::vector<float> Metadata::floats(std::string_view name) const {
  const Attribute* found = find(name);
  if (found == nullptr || found->type.rfind("float", 0) != 0) {
    return {};
  }
  std::vector<float> values(found->bytes.size() / sizeof(float));
  std::memcpy(values.data(), found->bytes.data(), values.size() * sizeof(float));
  return values;
}

void Metadata::set(Attribute attribute) {
  const auto found =
      std::ranges::find_if(attributes_, [&](const Attribute& a) { return sameName(a.name, attribute.name); });
  if (found == attributes_.end()) {
    attributes_.push_back(std::move(attribute));
  } else {
    *found = std::move(attribute);
  }
}

void Metadata::remove(std::string_view name) {
  std::erase_if(attributes_, [&](const Attribute& a) { return sameName(a.name, name); });
}

}  // namespace vantorel::cli
