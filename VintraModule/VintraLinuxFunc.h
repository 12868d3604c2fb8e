// What the log module asks of the platform.
#ifndef VINTRA_VINTRAMODULE_VINTRALINUXFUNC_H
#define VINTRA_VINTRAMODULE_VINTRALINUXFUNC_H

#include <memory>

#include "VintraModule/LogHandle.h"

// One entry of a folder, without the folder.
struct FileList {
  sint8 file_name[vintra::kFileNameSize];
  FileList* next;  // null at the end
};

namespace vintra {

constexpr std::size_t kBannerSize = 1024;  // bytes of a banner's text, terminator included

struct FreeFileList {
  void operator()(FileList* list) const;
};

// A whole list.
using FileListPtr = std::unique_ptr<FileList, FreeFileList>;

}  // namespace vintra

// Size of the open file in bytes. A file above 2147483647 bytes counts as that large, which is at or above
// every limit. Reports and returns -1 when the status cannot be read.
sint32 getFileSize(LogHandleRec* log_handle);

// Lists the entries of a folder, "." and ".." included, in the folder's order, behind a first node that is
// empty. The caller owns the list. A folder that cannot be opened gives the first node alone; where memory
// runs out the list ends, and without any it is null. The handle is not used.
FileList* ListFileName(const sint8* FilePath, const LogHandleRec* log_handle);

// Writes the system banner's text, with the pieces that the handle asks for, into buf, which has 1024 bytes.
// What cannot be read is left out; a host name of more than the 64 characters that Linux allows is cut where
// the text would not fit. Returns 0, 1 for handle 0, or 13 when the host name or the system identification
// cannot be read.
sint32 SystemInfo(LOGHANDLE log_handle, LogHandleRec* log_handleRec, sint8* buf);

// Writes the process banner's text, with the identifiers of the process and the calling thread that the
// handle asks for, into buf, which has 1024 bytes. Returns buf.
sint8* PidAndTidInfo(LogHandleRec* log_handleRec, sint8* buf);

#endif
