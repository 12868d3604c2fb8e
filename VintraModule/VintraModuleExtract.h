// Start-up: from a configuration record to a live handle.
#ifndef VINTRA_VINTRAMODULE_VINTRAMODULEEXTRACT_H
#define VINTRA_VINTRAMODULE_VINTRAMODULEEXTRACT_H

#include "VintraModule/LogHandle.h"

namespace vintra {

// Releases whatever a handle holds, live or half started.
struct HandleCloser {
  void operator()(LogHandleRec* handle) const;
};

}  // namespace vintra

// The common start-up. The caller's variable is written only when the handle is live, and cleared when it
// then fails over a banner.
sint32 LogModuleInitExtract(const LogConfigRecEx* a_log_config, LOGHANDLE* a_log_handle);

// Makes the log folder, runs the mode's start placement and then the size check, which appends to the file or
// empties it. file_name is scratch of 256 bytes; log_file_name (260) receives the full path of the opened
// file.
sint32 SetLogFilesize(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                      sint8* log_file_name);

// The start placements of the modes. The simple mode has one file. The rollback mode goes on with the first
// file of the ring that is not full, the date mode with the first such file of the day, after removing
// expired ones.
sint32 SetVintraFileName(LogHandleRec* log_handle, sint8* log_file_name);
sint32 SetRollbackLogFileName(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                              sint8* log_file_name);
sint32 SetDateLogFileName(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                          sint8* log_file_name);

// Set the switches that the three formats ask for. Switches are never cleared.
void AnalysisLogFormat(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle);
void AnalysisSysFormat(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle);
void AnalysisPidFormat(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle);

// Write the system banner and the process banner through the live handle, as records of the level Trace.
sint32 RecordSystemInfo(LOGHANDLE log_handle, LogHandleRec* log_handleRec);
sint32 GetPidAndTid(LOGHANDLE log_handle, LogHandleRec* log_handleRec);

#endif
