// The names of numbered files, without folder and extension:
//
//   ring   <log_file_name><number>              app007
//   dated  <log_file_name>_<yyyymmdd>_<number>  app_20261116_007
//
// A number has at least three digits. What composes a dated name and what recognises one stand together here.
#ifndef VINTRA_VINTRAMODULE_LOGNAMES_H
#define VINTRA_VINTRAMODULE_LOGNAMES_H

#include <ctime>
#include <optional>
#include <string_view>

#include "VintraModule/LogHandle.h"

namespace vintra {

// A file's number in a ring, in which it wraps. 0 means no ring: numbers never wrap.
uint32 RingNumber(uint32 number, uint32 ring_size);

// Compose the name of a file; name has 256 bytes. The day of a dated one is the handle's.
void RollbackName(const LogHandleRec& handle, uint32 number, sint8* name);
void DateName(const LogHandleRec& handle, uint32 number, sint8* name);

// The first second of the day of a folder's entry, in standard time, when the entry is a dated file of the
// handle's base name and extension with a number of three characters.
std::optional<std::tm> DayOfEntry(const LogHandleRec& handle, std::string_view entry);

}  // namespace vintra

#endif
