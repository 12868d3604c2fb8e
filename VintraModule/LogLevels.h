// The levels, one row each: value, word, the tag of a line, and the name in a configuration file.
#ifndef VINTRA_VINTRAMODULE_LOGLEVELS_H
#define VINTRA_VINTRAMODULE_LOGLEVELS_H

#include <string_view>

#include "VintraModule/VintraModule.h"

namespace vintra {

struct LevelRow {
  LogLevel level;
  const sint8* word;
  std::string_view tag;
  const sint8* config_name;
};

constexpr LevelRow kLevels[] = {
    {Log_Level_Trace, "Trace", "[TRACE]  ", "Log_Level_Trace"},
    {Log_Level_Debug, "Debug", "[DEBUG]  ", "Log_Level_Debug"},
    {Log_Level_Info, "Info", "[INFO]  ", "Log_Level_Info"},
    {Log_Level_Notice, "Notice", "[NOTICE]  ", "Log_Level_Notice"},
    {Log_Level_Warn, "Warn", "[WARN]  ", "Log_Level_Warn"},
    {Log_Level_Error, "Error", "[ERROR]  ", "Log_Level_Error"},
    {Log_Level_Crit, "Crit", "[CRIT]  ", "Log_Level_Crit"},
    {Log_Level_Fatal, "Fatal", "[FATAL]  ", "Log_Level_Fatal"},
};

}  // namespace vintra

#endif
