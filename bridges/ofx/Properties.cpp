#include "bridges/ofx/Properties.h"

#include <array>

namespace vantorel::ofx {
namespace {

// A number that is not set by the host is none, whatever the status says.
template <typename Value, typename Get>
std::optional<Value> got(Get get, PropertySet set, const char* name, int index) {
  Value value{};
  if (set == nullptr || get(set, name, index, &value) != Status::Ok) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

void Properties::set(const char* name, int value) const {
  check(suites().property->set_int(set_, name, 0, value), name);
}

void Properties::set(const char* name, double value) const {
  check(suites().property->set_double(set_, name, 0, value), name);
}

void Properties::set(const char* name, const char* value) const {
  check(suites().property->set_string(set_, name, 0, value), name);
}

void Properties::set(const char* name, void* value) const {
  check(suites().property->set_pointer(set_, name, 0, value), name);
}

void Properties::set(const char* name, std::initializer_list<const char*> values) const {
  int index = 0;
  for (const char* value : values) {
    check(suites().property->set_string(set_, name, index++, value), name);
  }
}

void Properties::set(const char* name, std::initializer_list<double> values) const {
  check(suites().property->set_doubles(set_, name, static_cast<int>(values.size()), values.begin()), name);
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
  std::array<int, 4> values{};
  if (set_ == nullptr || suites().property->get_ints(set_, name, 4, values.data()) != Status::Ok) {
    return std::nullopt;
  }
  return RectI{values[0], values[1], values[2], values[3]};
}

std::optional<PointD> Properties::point(const char* name) const {
  std::array<double, 2> values{};
  if (set_ == nullptr || suites().property->get_doubles(set_, name, 2, values.data()) != Status::Ok) {
    return std::nullopt;
  }
  return PointD{values[0], values[1]};
}

}  // namespace vantorel::ofx
