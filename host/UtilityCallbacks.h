// The utility-callback table and the string callbacks: what a module reaches without acquiring anything.
#pragma once

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// The table; it holds no state and lives as long as the program.
PF_UtilityCallbacks* utilityCallbacks();

}  // namespace vantorel::host
