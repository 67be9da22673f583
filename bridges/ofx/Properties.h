// Typed access to a set of the host's properties.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>

#include "bridges/ofx/Suites.h"

namespace vantorel::ofx {

class Properties {
 public:
  explicit Properties(PropertySet set) : set_(set) {}

  // Setting throws a Fault, naming the property, where the host refuses; `offer` leaves it at that, for what not every
  // host knows. Names and keywords must be static strings.
  void set(const char* name, int value) const;
  void set(const char* name, double value) const;
  void set(const char* name, const char* value) const;
  void set(const char* name, void* value) const;
  void set(const char* name, std::initializer_list<const char*> values) const;
  void set(const char* name, std::initializer_list<double> values) const;
  template <typename Value>
  bool offer(const char* name, const Value& value) const {
    try {
      set(name, value);
      return true;
    } catch (const Fault&) {
      return false;
    }
  }

  // The same for one value of a list.
  void offerAt(const char* name, int index, const char* value) const;

  // Nothing where the host has no such value.
  std::optional<int> integer(const char* name, int index = 0) const;
  std::optional<double> number(const char* name, int index = 0) const;
  std::optional<std::string> text(const char* name, int index = 0) const;
  void* pointer(const char* name) const;
  std::optional<RectI> rectangle(const char* name) const;
  std::optional<RectD> region(const char* name) const;
  std::optional<PointD> point(const char* name) const;

 private:
  // A Fault where there is no set to write to.
  PropertySet writable(const char* name) const;

  PropertySet set_;
};

// The value, or a Fault that names the property.
template <typename Value>
Value required(const std::optional<Value>& value, const char* name) {
  if (!value) {
    throw Fault{Status::Failed, std::string("the host gives no ") + name};
  }
  return *value;
}

}  // namespace vantorel::ofx
