// The date that is put into output files.
#pragma once

#include <string>

namespace vantorel::cli {

// SOURCE_DATE_EPOCH (seconds since 1970) as "2026:11:25 10:00:00", or nothing without it: the same call writes the same
// bytes.
std::string fileDate();

}  // namespace vantorel::cli
