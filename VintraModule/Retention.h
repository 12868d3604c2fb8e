// Retention: the date mode's files are removed once they have reached their age.
#ifndef VINTRA_VINTRAMODULE_RETENTION_H
#define VINTRA_VINTRAMODULE_RETENTION_H

#include <ctime>

#include "VintraModule/VintraLinuxFunc.h"

// Removes the listed files of the handle that are RentDate days old or older, today's being 0 days old. Owns
// the list from the call on and releases it. An entry whose path exceeds 259 characters is skipped.
//
// Returns 0, 12 when the clock could not be read, or -1 when a file could not be removed; the pass ends
// there.
sint32 DeleteLogFile(FileList* list_head, uint32 RentDate, const LogHandleRec* log_handle);

// Whole days from one local time to a later one, rounded towards 0.
sint32 GetDiffDay(std::tm later, std::tm earlier);

namespace vintra {

// Runs a pass over the log folder where the handle keeps its files for a time.
void RemoveExpiredFiles(const LogHandleRec& handle);

}  // namespace vintra

#endif
