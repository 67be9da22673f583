// A host of the tests' own, which serves the interface's suites, logs every call and can refuse any of them.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

using Value = std::variant<int, double, std::string, void*>;

// What the interface's handles point to.
struct PropertySetRecord {
  std::map<std::string, std::vector<Value>> values;
  std::vector<std::byte> pixels;  // of an image

  PropertySet handle() { return this; }
  template <typename... Values>
  void put(const std::string& name, const Values&... items) {
    values[name] = {Value(items)...};
  }
  template <typename T>
  T get(const std::string& name, std::size_t index = 0) const {
    return std::get<T>(values.at(name).at(index));
  }
};

struct ParamRecord {
  std::string type;
  PropertySetRecord properties;
  std::vector<double> value;
};

struct ParamSetRecord {
  std::map<std::string, ParamRecord> params;
};

// A picture in memory as a host may lay it out.
struct Layout {
  RectI bounds;
  RectI full_frame = {};
  const char* depth = "OfxBitDepthFloat";
  const char* components = "OfxImageComponentRGBA";
  const char* premultiplication = "OfxImageAlphaPremultiplied";
  int spare_bytes = 0;       // beyond each row
  bool upper_first = false;  // in memory: a negative stride
  double pixel_aspect = 1.0;
  const char* field = "OfxFieldNone";
};

// Pixels with the interface's properties.
std::unique_ptr<PropertySetRecord> makeImage(const Layout& layout);
// The bytes of pixel (x, y), y up.
std::byte* pixelOf(PropertySetRecord& image, int x, int y);

struct ClipRecord {
  PropertySetRecord properties;
  RectD region;
  std::unique_ptr<PropertySetRecord> image;
};

struct EffectRecord {
  PropertySetRecord properties;
  ParamSetRecord params;
  std::map<std::string, ClipRecord> clips;
};

struct InteractRecord {
  PropertySetRecord properties;
};

struct DrawContextRecord {
  std::vector<std::string> calls;
};

class TestHost {
 public:
  TestHost();
  ~TestHost();
  TestHost(const TestHost&) = delete;

  Host record;
  std::set<std::string> absent_suites;
  // A suite in which one function is null, and its place.
  std::pair<std::string, std::size_t> null_function;

  // Refuses call number `refused_call` (from 0), or from it on, with this status; with Ok, it does nothing.
  int refused_call = -1;
  bool refuses_all_after = false;
  Status refusal = Status::Failed;

  unsigned processors = 2;
  std::atomic<int> calls = 0;
  std::atomic<int> images_out = 0;  // fetched and not yet released
  std::atomic<bool> aborts = false;
  std::function<void()> on_abort;  // what else happens while the plug-in asks whether to stop
  Time now = 0.0;
  std::atomic<int> calls_at_other_times = 0;
  int edits_open = 0;
  std::string message;           // the persistent one
  std::vector<std::string> log;  // the names of the calls
  std::mutex mutex;              // of the parameters and the message

  // Counts a call; true where it is to be refused.
  bool refuses(const char* call);
  // The same for a call about a time.
  bool refuses(const char* call, Time time);

 private:
  PropertySetRecord properties_;
};

}  // namespace vantorel::ofx
