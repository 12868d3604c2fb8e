#include "VintraModule/VintraLinuxFunc.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include "VintraModule/ErrLog.h"

sint32 getFileSize(LogHandleRec* log_handle) {
  struct stat status {};
  if (fstat(fileno(log_handle->file_out), &status) != 0) {
    const int error = errno;
    REPORT_ERROR("errno = %d", error);
    return -1;
  }
  return static_cast<sint32>(std::min<off_t>(status.st_size, INT32_MAX));
}
