// A host written by hand: its records hold what a test puts there, every callback leaves a line in a log and can be
// made to fail at its n-th call, and its images are guarded worlds. Callbacks carry no host pointer, so one scripted
// host is alive at a time.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "effect/perspective/PerspectiveInfo.h"
#include "tests/effect/GuardedWorld.h"

using Log = std::vector<std::string>;

// Logs are compared whole: a test states every call in its order.
Log operator+(Log a, const Log& b);

// One call of an area sampler.
struct Sample {
  std::int32_t x, y, x_radius, y_radius, area;
  PF_LayerDef* source;
  bool operator==(const Sample&) const = default;
};

// A pixel whose channels are the four bytes of `code`, so that every pixel of a picture can be told from every other.
template <typename Pixel>
Pixel pixelFromCode(std::uint32_t code) {
  using Channel = decltype(Pixel::alpha);
  return {Channel(code & 255), Channel(code >> 8 & 255), Channel(code >> 16 & 255), Channel(code >> 24)};
}

template <typename Pixel>
bool samePixel(const Pixel& a, const Pixel& b) {
  return std::memcmp(&a, &b, sizeof(Pixel)) == 0;
}

class ScriptedHost {
 public:
  explicit ScriptedHost(int depth = 8, const WorldShape& layer = {8, 6}, const WorldShape& output = {8, 6});
  ~ScriptedHost();
  ScriptedHost(const ScriptedHost&) = delete;

  // Sets the values of the four point parameters, in pixels, given once round the quadrilateral.
  void setCorners(const double (&corners_in_pixels)[4][2]);

  // The nth call (from 1 on) of the named callback gives `code`; with `ever`, so do all after it.
  void fail(const std::string& callback, int nth, std::int32_t code, bool ever = false);

  // Sends one command with the records below.
  std::int32_t run(std::int32_t command);

  // True when PF_OutData is, byte for byte, what it was at the construction, with `change` applied.
  bool outIs(const std::function<void(PF_OutData&)>& change = [](PF_OutData&) {}) const;

  // The same where messages alone were given, one written over the other.
  bool outHasMessages(const Log& messages) const;

  PF_EffectMain entry;
  PF_InData in{};
  PF_OutData out;
  PF_UtilityCallbacks utilities{};
  PF_SuiteProvider provider{};
  PF_ParamDef values[5]{};  // the layer and the four points: `params`, and what checkout_param delivers
  GuardedWorld input, output;
  PF_RenderRequest request{};
  PF_CheckoutResult checkout{};
  PF_PreRenderResult result{};

  std::vector<std::string> strings{"About %ld.%ld", "Upper Left",  "Upper Right",
                                   "Lower Left",    "Lower Right", "Limit %d"};
  void* registered_table = nullptr;           // what the effect registered
  void* replacement_table;                    // what the host leaves in the reference instead
  std::map<std::string, const void*> suites;  // by "name/version"
  std::int32_t pixel_format;
  void* block[1];  // the effect's global block: a string-table reference
  void* handle;
  double square_root_factor = 1.0;
  std::function<void(void*)> on_iterate = [](void*) {};  // sees the iteration's reference value
  std::function<void()> on_failure = [] {};              // called when a callback begins to fail
  bool sampler_writes = true;
  bool failed_acquire_hands_over = false;  // the suite, together with the code
  bool hands_back_input = true;
  bool hands_back_output = true;

  Log log;                                   // every call except those of ceil and sqrt
  std::map<const void*, std::string> names;  // how pointers are called in the log
  int parameters_out = 0;                    // checked out and not in
  int suites_out = 0;                        // acquired and not released
  std::vector<Sample> samples;               // a sample's pixel has the code of its number, from 1 on

  std::int32_t called(const std::string& callback, const std::string& line);

 private:
  std::map<std::string, int> calls_;
  std::map<std::string, std::function<std::int32_t(int)>> failures_;
  std::string out_at_first_;
};

// What the row samplers need of this host, with a reject box that rejects nothing; the map and its scale are left open.
KZFX_PerspectiveInfo perspectiveInfo(ScriptedHost& host, int width, int height);

// What reading the four corner parameters, and asking for the output's depth, leave in the log.
extern const Log kReadCorners;
extern const Log kAskDepth;
