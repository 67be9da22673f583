// Checks that a translation keeps a text's printf placeholders.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/Module.h"

namespace vantorel::host {

// The printf conversions of a text in order, without their flags, widths and precisions: "ld" for "%-5ld", with a '*'
// for every width or precision that is an argument. "%%" is not a conversion.
std::vector<std::string> printfPlaceholders(std::string_view text);

}  // namespace vantorel::host
