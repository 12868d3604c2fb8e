#include "VintraModule/ErrLog.h"

#include <fcntl.h>

#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "Common/Handles.h"
#include "FolderModule/FolderModule.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/LogClock.h"
#include "VintraModule/LogHandle.h"

namespace {

using vintra::HeapText;

constexpr std::size_t kErrLogPathSize = 256;
constexpr sint8 kErrLogName[] = "LogModuleErrMsg.log";

// Leaves path empty when the library's folder leaves no room for the name.
void ComposeErrLogPath(sint8 (&path)[kErrLogPathSize]) {
  sint8 folder[vintra::kPathSize] = {};
  GetDLLDir(folder);
  const int length = std::snprintf(path, sizeof path, "%s%s", folder, kErrLogName);
  if (length < 0 || static_cast<std::size_t>(length) >= sizeof path) path[0] = '\0';
}

// The whole line, or null when there is no memory for it. A message that cannot be formatted reads as empty.
HeapText ComposeLine(std::string_view stamp, const sint8* file_name, uint32 line, const sint8* format,
                     va_list args) __attribute__((format(printf, 4, 0)));

HeapText ComposeLine(std::string_view stamp, const sint8* file_name, uint32 line, const sint8* format,
                     va_list args) {
  sint8* message = nullptr;
  const HeapText message_owner(vasprintf(&message, format, args) < 0 ? nullptr : message);
  const vintra::PathParts source = vintra::SplitPathParts(file_name == nullptr ? "" : file_name);

  sint8* text = nullptr;
  const int length =
      asprintf(&text, "%.*s Errlog:%.*s%.*s(%d) %s\n", static_cast<int>(stamp.size()), stamp.data(),
               static_cast<int>(source.name.size()), source.name.data(), static_cast<int>(source.ext.size()),
               source.ext.data(), static_cast<int>(line), message_owner ? message_owner.get() : "");
  return HeapText(length < 0 ? nullptr : text);
}

}  // namespace

sint32 PrintErrLog(const sint8* file_name, uint32 line, const sint8* format, ...) {
  const vintra::CancellationPause pause;
  vintra::Stamp stamp{};
  stamp.shows_date = stamp.shows_time = true;
  vintra::ReadClock(stamp);
  sint8 path[kErrLogPathSize];
  ComposeErrLogPath(path);
  const vintra::StandardPlaces places;
  const vintra::FileDescriptor file(open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  if (!file) return 0;
  if (!stamp.is_valid) return vintra::kClockUnreadable;

  va_list args;
  va_start(args, format);
  const HeapText text = ComposeLine(stamp.View(false), file_name, line, format, args);
  va_end(args);
  if (!text) return 0;

  return static_cast<sint32>(file.WriteAll(text.get()));
}
