#include "VintraModule/VintraLinuxFunc.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "Common/Handles.h"
#include "Common/Text.h"
#include "VintraModule/ErrLog.h"

void vintra::FreeFileList::operator()(FileList* list) const {
  while (list != nullptr) delete std::exchange(list, list->next);
}

sint32 getFileSize(LogHandleRec* log_handle) {
  struct stat status {};
  if (fstat(fileno(log_handle->file_out), &status) != 0) {
    const int error = errno;
    REPORT_ERROR("errno = %d", error);
    return -1;
  }
  return static_cast<sint32>(std::min<off_t>(status.st_size, INT32_MAX));
}

FileList* ListFileName(const sint8* FilePath, const LogHandleRec* /*log_handle*/) {
  vintra::FileListPtr list(new (std::nothrow) FileList{});
  const vintra::DirPtr folder(opendir(FilePath));
  FileList* last = list.get();
  while (folder && last != nullptr) {
    const dirent* const entry = readdir(folder.get());
    if (entry == nullptr) break;
    last->next = new (std::nothrow) FileList{};
    last = last->next;
    if (last != nullptr) static_cast<void>(vintra::CopyText(last->file_name, entry->d_name));
  }
  return list.release();
}
