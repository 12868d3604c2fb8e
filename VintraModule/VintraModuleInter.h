// The road of one record: level filter, lock, rollover check, header, scrambling, writing, flush.
#ifndef VINTRA_VINTRAMODULE_VINTRAMODULEINTER_H
#define VINTRA_VINTRAMODULE_VINTRAMODULEINTER_H

#include <cstdarg>
#include <span>

#include "VintraModule/ErrLog.h"
#include "VintraModule/LogHandle.h"
#include "VintraModule/LogLevels.h"

namespace vintra {

// Formats a record that is known to be written, and writes it. What the eight level functions share.
sint32 FormatAndLog(LogHandleRec& handle, LogLevel level, const sint8* format, va_list args)
    __attribute__((format(printf, 3, 0)));

// Stores a source position as SourceInfo documents it.
void StoreSource(LogHandleRec& handle, const sint8* source_file_name, sint32 source_file_line);

}  // namespace vintra

// Writes the finished message msg as a record of the level that the word names. Another word passes every
// threshold and has an empty tag. format is checked for null only; msg is scrambled in place where the handle
// says so.
sint32 LogRecord(LOGHANDLE log_handle, const sint8* level, const sint8* format, sint8* msg);

// Looks a level word up. str receives the tag, 11 bytes at most.
void GetLogLevel(const sint8* level, sint8* str, LogLevel& log_level);

// Writes one record under the handle's lock, after the mode's rollover check. Log_Level_Disable has no tag.
// The message is scrambled in place where the handle says so.
sint32 LogMsg(LogHandleRec* log_handle, LogLevel log_level, std::span<sint8> msg);

// The rollover checks of the modes. Both texts are scratch of 260 bytes.
//
// The simple mode empties a file that has reached the limit.
sint32 SimpleMode(LogHandleRec* log_handle, sint8* log_file_name);

// The rollback mode moves on to the next file of the ring, emptied, from one that is past the limit.
sint32 RollbackMode(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name);

// The date mode starts the day's first file on a new day, and moves on to the day's next one from one that is
// past the limit, removing expired files each time.
sint32 DateMode(LogHandleRec* log_handle, sint8* file_name, sint8* log_file_name);

#endif
