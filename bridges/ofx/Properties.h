// Typed access to a property set of the host.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>

#include "bridges/ofx/Suites.h"

namespace vantorel::ofx {

class Properties {
 public:
  explicit Properties(PropertySet set) : set_(set) {}

  // `set` throws a Fault that names the property if the host refuses. `offer` ignores that, for properties that not
  // every host knows. Names and keywords must be static strings.
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

  // Like `offer`, for one value of a list.
  void offerAt(const char* name, int index, const char* value) const;

  // Nothing if the host has no such value.
  std::optional<int> integer(const char* name, int index = 0) const;
  std::optional<double> number(const char* name, int index = 0) const;
  std::optional<std::string> text(const char* name, int index = 0) const;
  void* pointer(const char* name) const;
  std::optional<RectI> rectangle(const char* name) const;
  std::optional<RectD> region(const char* name) const;
  std::optional<PointD> point(const char* name) const;

 private:
  // A Fault if there is no set.
  PropertySet writable(const char* name) const;

  PropertySet set_;
};

// The value, or a Fault that names the property.
template <typename Value>
Value required(const std::optional<Value>& value, const char* name) {
  if (!value) {
    throw Fault{Status::Failed, std::string("the host does not provide ") + name};
  }
  return *value;
}

}  // namespace vantorel::ofx
