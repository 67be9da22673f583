#include "effect/StringTable.h"

#include "effect/GlobalBlock.h"

namespace {

constexpr std::uint64_t kAllOnes = ~std::uint64_t{0};

}  // namespace

// Not constant, because hosts write to the working space of a row.
FX_StringRow FX_G_ztab[7] = {
    {"$$$/KZ/Vantorel/LStr/0000=Vantorel, v%ld.%ld#{cr}#{cr}Copyright the Vantorel authors.#{cr}#{cr}"
     "Distort an image to a convex quadrilateral.",
     {0, 0, 0}},
    {"$$$/KZ/Vantorel/LStr/0001=Upper Left", {0, 0, 0}},
    {"$$$/KZ/Vantorel/LStr/0002=Upper Right", {0, 0, 0}},
    {"$$$/KZ/Vantorel/LStr/0003=Lower Left", {0, 0, 0}},
    {"$$$/KZ/Vantorel/LStr/0004=Lower Right", {0, 0, 0}},
    {"$$$/KZ/Vantorel/LStr/0005=Vantorel cannot allocate a buffer larger than %d pixels in either dimension.",
     {0, 0, 0}},
    {nullptr, {kAllOnes, kAllOnes, 0}},
};
FX_StringHeader FX_G_zhdr = {"FX", 7, FX_G_ztab, 0};
FX_StringReference FX_G_zref = {&FX_G_zhdr, 0};

static_assert(sizeof(FX_StringRow) == 32 && sizeof(FX_StringHeader) == 32 && sizeof(FX_StringReference) == 16);

const char* LookupString(const PF_InData* in_data, std::int32_t row) {
  return in_data->lookup_string(stringTableReference(in_data), row, 0, nullptr);
}
