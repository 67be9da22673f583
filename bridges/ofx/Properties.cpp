#include "bridges/ofx/Properties.h"

#include <array>
#include <cstddef>

namespace vantorel::ofx {
namespace {

// Nothing if the host refuses, or if there is no set.
template <typename Value, typename Get>
std::optional<Value> got(Get get, PropertySet set, const char* name, int index) {
  Value value{};
  if (set == nullptr || get(set, name, index, &value) != Status::Ok) {
    return std::nullopt;
  }
  return value;
}

// All values at once, or one by one in hosts that refuse that.
template <std::size_t kCount, typename Value>
std::optional<std::array<Value, kCount>> gotAll(Status (*get_all)(PropertySet, const char*, int, Value*),
                                                Status (*get)(PropertySet, const char*, int, Value*), PropertySet set,
                                                const char* name) {
  std::array<Value, kCount> values{};
  if (set == nullptr) {
    return std::nullopt;
  }
  if (get_all(set, name, static_cast<int>(kCount), values.data()) == Status::Ok) {
    return values;
  }
  for (std::size_t i = 0; i < kCount; ++i) {
    if (get(set, name, static_cast<int>(i), &values[i]) != Status::Ok) {
      return std::nullopt;
    }
  }
  return values;
}

}  // namespace

PropertySet Properties::writable(const char* name) const {
  checkNotNull(set_, name);
  return set_;
}

void Properties::set(const char* name, int value) const {
  check(suites().property->set_int(writable(name), name, 0, value), name);
}

void Properties::set(const char* name, double value) const {
  check(suites().property->set_double(writable(name), name, 0, value), name);
}

void Properties::set(const char* name, const char* value) const {
  check(suites().property->set_string(writable(name), name, 0, value), name);
}

void Properties::set(const char* name, void* value) const {
  check(suites().property->set_pointer(writable(name), name, 0, value), name);
}

void Properties::set(const char* name, std::initializer_list<const char*> values) const {
  int index = 0;
  for (const char* value : values) {
    check(suites().property->set_string(writable(name), name, index++, value), name);
  }
}

void Properties::set(const char* name, std::initializer_list<double> values) const {
  check(suites().property->set_doubles(writable(name), name, static_cast<int>(values.size()), values.begin()), name);
}

void Properties::offerAt(const char* name, int index, const char* value) const {
  if (set_ != nullptr) {
    suites().property->set_string(set_, name, index, value);
  }
}

std::optional<int> Properties::integer(const char* name, int index) const {
  return got<int>(suites().property->get_int, set_, name, index);
}

std::optional<double> Properties::number(const char* name, int index) const {
  return got<double>(suites().property->get_double, set_, name, index);
}

std::optional<std::string> Properties::text(const char* name, int index) const {
  const std::optional<char*> text = got<char*>(suites().property->get_string, set_, name, index);
  return text && *text != nullptr ? std::optional<std::string>(*text) : std::nullopt;
}

void* Properties::pointer(const char* name) const {
  return got<void*>(suites().property->get_pointer, set_, name, 0).value_or(nullptr);
}

std::optional<RectI> Properties::rectangle(const char* name) const {
  const auto values = gotAll<4>(suites().property->get_ints, suites().property->get_int, set_, name);
  return values ? std::optional(RectI{(*values)[0], (*values)[1], (*values)[2], (*values)[3]}) : std::nullopt;
}

std::optional<RectD> Properties::region(const char* name) const {
  const auto values = gotAll<4>(suites().property->get_doubles, suites().property->get_double, set_, name);
  return values ? std::optional(RectD{(*values)[0], (*values)[1], (*values)[2], (*values)[3]}) : std::nullopt;
}

std::optional<PointD> Properties::point(const char* name) const {
  const auto values = gotAll<2>(suites().property->get_doubles, suites().property->get_double, set_, name);
  return values ? std::optional(PointD{(*values)[0], (*values)[1]}) : std::nullopt;
}

}  // namespace vantorel::ofx
