// The callbacks about a module's string table: registering it and looking its texts up.
#pragma once

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Enters the three callbacks into the record.
void installStringServices(PF_InData* in_data);

}  // namespace vantorel::host
