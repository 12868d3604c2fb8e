// Configuration from a section of an INI file: one reader for each key.
#ifndef VINTRA_VINTRAMODULE_LOGCONFIG_H
#define VINTRA_VINTRAMODULE_LOGCONFIG_H

#include "VintraModule/VintraModule.h"

// Reads all keys of a log section into a record that is all zero. A value that is missing or cannot be used
// is replaced by the key's default, with a message in the error log.
void CheckValueFromConfig(LogConfigRecEx* log_config, const sint8* file_name, const sint8* section_name);

// Read one key each. Return 0, or 9 when the default is used, which the error log then says.
sint32 GetLogFileNameFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name);
sint32 GetLogFileLevelFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                 const sint8* section_name);
sint32 GetLogFileModeFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name);
sint32 GetMaxFileSizeFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name);
sint32 GetMaxBackupIndexFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                   const sint8* section_name);
sint32 GetLogFormatFromConfig(LogConfigRecEx* log_config, const sint8* file_name, const sint8* section_name);
sint32 GetLogTimeSpanFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name);
sint32 GetSysConfInfoFormatFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                      const sint8* section_name);
sint32 GetModuleNameFromConfig(LogConfigRecEx* log_config, const sint8* file_name, const sint8* section_name);
sint32 GetPinAndTidFormatFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                    const sint8* section_name);

#endif
