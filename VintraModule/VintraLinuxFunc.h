// What the log module asks of the platform.
#ifndef VINTRA_VINTRAMODULE_VINTRALINUXFUNC_H
#define VINTRA_VINTRAMODULE_VINTRALINUXFUNC_H

#include "VintraModule/LogHandle.h"

// Size of the open file in bytes. A file above 2147483647 bytes counts as that large, which is at or above
// every limit. Reports and returns -1 when the status cannot be read.
sint32 getFileSize(LogHandleRec* log_handle);

#endif
