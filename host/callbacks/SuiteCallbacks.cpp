#include <array>
#include <cstring>

#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"
#include "host/callbacks/Iteration.h"
#include "host/sampling/AreaSampler.h"

namespace vantorel::host {

namespace {

// Notes the call in the running command's ledger, if there is one.
template <typename Note>
std::int32_t noted(Note note) {
  const CallContext* const context = currentCall();
  if (context == nullptr || context->ledger == nullptr) {
    return ERR_NONE;
  }
  return guarded([&] {
    note(*context->ledger);
    return ERR_NONE;
  });
}

// The sampling suite for the running command's sample space.
const PF_SamplingFloatSuite1* samplingFloatSuite() {
  const auto suite = [](SampleSpace space) {
    return PF_SamplingFloatSuite1{nullptr, nullptr, areaSamplers(activeInstructionSet(), space).sample_float};
  };
  static const std::array<PF_SamplingFloatSuite1, kSampleSpaces> kSuites{
      suite(SampleSpace::Centres), suite(SampleSpace::Outline), suite(SampleSpace::OutlineExtended)};
  const CallContext* const context = currentCall();
  const bool has_frame = context != nullptr && context->frame != nullptr;
  return &kSuites[static_cast<std::size_t>(has_frame ? context->frame->space : SampleSpace::Centres)];
}

const void* findSuite(const char* name, std::int32_t version) {
  const auto is = [&](const char* suite, std::int32_t suite_version) {
    return version == suite_version && std::strcmp(name, suite) == 0;
  };
  if (is(PF_WORLD_SUITE, PF_WORLD_SUITE_VERSION)) {
    return worldSuite();
  }
  if (is(PF_ITERATE_FLOAT_SUITE, PF_ITERATE_FLOAT_SUITE_VERSION)) {
    return iterateFloatSuite();
  }
  if (is(PF_SAMPLING_FLOAT_SUITE, PF_SAMPLING_FLOAT_SUITE_VERSION)) {
    return samplingFloatSuite();
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
  return noted([&](CallLedger& ledger) { ledger.suiteAcquired(name, version); });
}

std::int32_t release(const char* name, std::int32_t version) {
  if (name == nullptr || findSuite(name, version) == nullptr) {
    return kCodeBadArgument;
  }
  return noted([&](CallLedger& ledger) { ledger.suiteReleased(name, version); });
}

}  // namespace

PF_SuiteProvider* suiteProvider() {
  static PF_SuiteProvider provider{acquire, release};
  return &provider;
}

}  // namespace vantorel::host
