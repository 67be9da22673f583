// Notes the failed calls to the system that libtiff reports, which not every caller between it and the command passes
// on.
#pragma once

namespace vantorel::cli {

// The errno of the first fault that libtiff has reported in this thread since the last call, EIO if it had none; 0 if
// there was no fault. The first call in the process begins to notice.
int takeTiffFault();

}  // namespace vantorel::cli
