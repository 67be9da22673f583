// The effect's localisable string table, in the host's format.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// The rows' indices.
enum FX_StringIndex : std::int32_t {
  FX_STRING_ABOUT = 0,
  FX_STRING_UPPER_LEFT = 1,
  FX_STRING_UPPER_RIGHT = 2,
  FX_STRING_LOWER_LEFT = 3,
  FX_STRING_LOWER_RIGHT = 4,
  FX_STRING_SIZE_LIMIT = 5,
};

extern FX_StringRow FX_G_ztab[7];
extern FX_StringHeader FX_G_zhdr;
extern FX_StringReference FX_G_zref;

// The text of a row in the host's language. It belongs to the host and is valid until the next call to the host.
const char* LookupString(const PF_InData* in_data, std::int32_t row);
