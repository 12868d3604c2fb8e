// The internal error log: where the library describes its own failures.
#ifndef VINTRA_VINTRAMODULE_ERRLOG_H
#define VINTRA_VINTRAMODULE_ERRLOG_H

#include "Common/BaseTypes.h"

// Appends one line to LogModuleErrMsg.log in the folder of the library's file: time stamp, base name of
// file_name, line, message. The line goes out in one write, so lines of several threads and processes stay
// whole. May be called with a handle's mutex held: it takes no lock of the library's, but waits for the
// loader while another thread loads a library.
//
// Returns the number of characters appended: 0 when the report could not be stored, which nobody is told of;
// or 12 when the clock could not be read.
sint32 PrintErrLog(const sint8* file_name, uint32 line, const sint8* format, ...) VINTRA_PRINTF(3, 4);

// Reports from the place where a failure happens. Never changes the result that is being returned.
#define REPORT_ERROR(...) static_cast<void>(PrintErrLog(__FILE__, __LINE__, __VA_ARGS__))

#endif
