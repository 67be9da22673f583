#include "KZFX_SuiteHelper.h"

namespace {

constexpr const char* kDrawingSuites[4] = {"PENTARO Draw Suite", "PENTARO Supplier Suite", "PENTARO Surface Suite",
                                           "PENTARO Path Suite"};
constexpr std::int32_t kDrawingSuiteVersion = 1;

}  // namespace

void KZFX_ReportSuiteFailure(const PF_InData* in_data, PF_OutData* out_data, const char* message,
                             const char* fallback) {
  out_data->out_flags |= OUT_FLAG_SHOW_MESSAGE;
  in_data->utility_callbacks->sprintf(out_data->return_msg, message != nullptr ? message : fallback);
}

std::int32_t KZFX_AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, std::int32_t version,
                               const char* error_message, const void** suite_out) {
  *suite_out = nullptr;
  if (in_data->suite_provider != nullptr) {
    in_data->suite_provider->acquire(name, version, suite_out);
  }
  if (*suite_out != nullptr) {
    return ERR_NONE;
  }
  KZFX_ReportSuiteFailure(in_data, out_data, error_message, KZFX_ACQUIRE_FAILED);
  return ERR_FAILED;
}

std::int32_t KZFX_ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, std::int32_t version,
                               const char* error_message) {
  if (in_data->suite_provider != nullptr) {
    in_data->suite_provider->release(name, version);
    return ERR_NONE;
  }
  KZFX_ReportSuiteFailure(in_data, out_data, error_message, KZFX_RELEASE_FAILED);
  return ERR_FAILED;
}

std::int32_t KZFX_AcquirePentaroSuites(PF_InData* in_data, PF_OutData* out_data, const void** suites) {
  std::int32_t err = ERR_NONE;
  for (int i = 0; i < 4 && err == ERR_NONE; ++i) {
    err = KZFX_AcquireSuite(in_data, out_data, kDrawingSuites[i], kDrawingSuiteVersion, nullptr, &suites[i]);
  }
  return err;
}

std::int32_t KZFX_ReleasePentaroSuites(PF_InData* in_data, PF_OutData* out_data) {
  for (const char* name : kDrawingSuites) {
    KZFX_ReleaseSuite(in_data, out_data, name, kDrawingSuiteVersion, nullptr);
  }
  return ERR_NONE;
}
