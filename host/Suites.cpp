#include "host/Suites.h"

#include <cstring>

#include "host/AreaSampler.h"
#include "host/CallContext.h"
#include "host/Iteration.h"

namespace vantorel::host {

namespace {

std::int32_t newWorld(void* effect_ref, std::int32_t width, std::int32_t height, bool clear, std::int32_t pixel_format,
                      PF_LayerDef* world) {
  CallContext* const context = contextOf(effect_ref);
  const std::optional<Depth> depth = depthOfPixelFormat(pixel_format);
  if (context == nullptr || context->frame == nullptr || !depth || world == nullptr || width <= 0 || height <= 0) {
    return kCodeBadArgument;
  }
  return guarded([&] { return context->frame->worlds.create({width, height}, *depth, clear, world); });
}

std::int32_t getPixelFormat(PF_LayerDef* world, std::int32_t* pixel_format) {
  const CallContext* const context = currentCall();
  if (context == nullptr || world == nullptr || pixel_format == nullptr) {
    return kCodeBadArgument;
  }
  const std::optional<Depth> depth = depthOfWorld(*context, *world);
  if (!depth) {
    return kCodeBadArgument;
  }
  *pixel_format = pixelFormatOfDepth(*depth);
  return ERR_NONE;
}

const void* findSuite(const char* name, std::int32_t version) {
  static constexpr PF_WorldSuite2 kWorldSuite{newWorld, nullptr, getPixelFormat};
  static const PF_SamplingFloatSuite1 kSamplingFloatSuite{nullptr, nullptr, areaSamplers().sample_float};
  const auto is = [&](const char* suite, std::int32_t suite_version) {
    return version == suite_version && std::strcmp(name, suite) == 0;
  };
  if (is(PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION)) {
    return &kWorldSuite;
  }
  if (is(PF_ITERATE_FLOAT_SUITE, PF_ITERATE_FLOAT_SUITE_VERSION)) {
    return iterateFloatSuite();
  }
  if (is(PF_SAMPLING_FLOAT_SUITE, PF_SAMPLING_FLOAT_SUITE_VERSION)) {
    return &kSamplingFloatSuite;
  }
  return nullptr;
}

std::int32_t acquire(const char* name, std::int32_t version, const void** suite) {
  if (name == nullptr || suite == nullptr) {
    return kCodeBadArgument;
  }
  *suite = findSuite(name, version);
  if (*suite == nullptr) {
    return ERR_SUITE_UNAVAILABLE;
  }
  CallContext* const context = currentCall();
  if (context != nullptr && context->ledger != nullptr) {
    return guarded([&] {
      context->ledger->suiteAcquired(name, version);
      return ERR_NONE;
    });
  }
  return ERR_NONE;
}

std::int32_t release(const char* name, std::int32_t version) {
  if (name == nullptr || findSuite(name, version) == nullptr) {
    return kCodeBadArgument;
  }
  CallContext* const context = currentCall();
  if (context != nullptr && context->ledger != nullptr) {
    return guarded([&] {
      context->ledger->suiteReleased(name, version);
      return ERR_NONE;
    });
  }
  return ERR_NONE;
}

}  // namespace

PF_SuiteProvider* suiteProvider() {
  static PF_SuiteProvider provider{acquire, release};
  return &provider;
}

std::optional<Depth> depthOfWorld(const CallContext& context, const PF_LayerDef& world) {
  if (context.frame == nullptr) {
    return std::nullopt;
  }
  const FrameState& frame = *context.frame;
  if (world.data == frame.input.data || world.data == frame.output.data) {
    return frame.depth;
  }
  return frame.worlds.depthOf(world);
}

}  // namespace vantorel::host
