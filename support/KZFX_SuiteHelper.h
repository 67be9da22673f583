// Access to the host's named suites: a pair of functions that report failure by a code and a message, and a scoped
// holder that throws.
#pragma once

#include <cstdint>

#include "PF_HostRecords.h"

// Acquires the suite `name` at `version` into *suite_out, which is null on failure whatever the host returns. Returns
// ERR_FAILED, with a message for the user, if the host has no suite service or no such suite; `error_message`, if not
// null, replaces the default text. Release the suite with KZFX_ReleaseSuite before the command returns.
std::int32_t KZFX_AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, std::int32_t version,
                               const char* error_message, const void** suite_out);

// Releases a suite from KZFX_AcquireSuite. Returns ERR_FAILED, with a message, if the host has no suite service.
std::int32_t KZFX_ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, std::int32_t version,
                               const char* error_message);

// The four drawing suites, in the order draw, supplier, surface, path. Acquisition stops at the first failure and
// returns its code, leaving the suites before it acquired; `suites` has four slots. The release always returns
// ERR_NONE.
std::int32_t KZFX_AcquirePentaroSuites(PF_InData* in_data, PF_OutData* out_data, const void** suites);
std::int32_t KZFX_ReleasePentaroSuites(PF_InData* in_data, PF_OutData* out_data);

// Sets OUT_FLAG_SHOW_MESSAGE and writes `message`, or `fallback` when it is null, into return_msg.
void KZFX_ReportSuiteFailure(const PF_InData* in_data, PF_OutData* out_data, const char* message, const char* fallback);

constexpr const char* KZFX_ACQUIRE_FAILED = "Not able to acquire KZFX Suite.";
constexpr const char* KZFX_RELEASE_FAILED = "Not able to release KZFX Suite.";

// Holds a suite, with function table S, for the duration of a scope. The name must outlive the holder.
template <typename S>
class KZFX_SuiteScoper {
 public:
  // Throws ERR_SUITE_UNAVAILABLE as an int32 when there is no suite service or its acquire entry returns an error;
  // with `out_data` the failure is also reported to the user, with `error_message` or the default text.
  KZFX_SuiteScoper(const PF_InData* in_data, const char* name, std::int32_t version, PF_OutData* out_data,
                   const char* error_message)
      : provider_(in_data->suite_provider), name_(name), version_(version) {
    const void* acquired = nullptr;
    if (provider_ != nullptr && provider_->acquire(name, version, &acquired) == ERR_NONE) {
      suite_ = static_cast<const S*>(acquired);
      return;
    }
    if (out_data != nullptr) {
      KZFX_ReportSuiteFailure(in_data, out_data, error_message, KZFX_ACQUIRE_FAILED);
    }
    throw static_cast<std::int32_t>(ERR_SUITE_UNAVAILABLE);
  }

  ~KZFX_SuiteScoper() {
    if (suite_ != nullptr) {
      provider_->release(name_, version_);
    }
  }

  KZFX_SuiteScoper(const KZFX_SuiteScoper&) = delete;
  KZFX_SuiteScoper& operator=(const KZFX_SuiteScoper&) = delete;

  const S* operator->() const { return suite_; }

 private:
  const S* suite_ = nullptr;
  PF_SuiteProvider* provider_;
  const char* name_;
  std::int32_t version_;
};
