// Any bytes as formats, without a terminator: a switch is set for a letter behind a '%' and for no other.
#include <cstring>
#include <regex>

#include "VintraModule/LogHandle.h"
#include "VintraModule/VintraModuleExtract.h"
#include "tests/fuzz/FuzzFile.h"

void Try(std::string_view input) {
  LogConfigRecEx config{};
  for (sint8* const field : {config.log_format, config.sysconf_format, config.PidandTid})
    input.copy(field, VINTRA_TEXT_SIZE);
  const std::string format(config.log_format, strnlen(config.log_format, VINTRA_TEXT_SIZE));
  // From left to right, each '%' with the first byte behind its blanks, another '%' included.
  static const std::regex kDirective("% *([^ ])");
  std::string asked = format.empty() ? "N" : "";
  for (std::sregex_iterator found(format.begin(), format.end(), kDirective), end; found != end; ++found)
    asked += (*found)[1];
  LogHandleRec handle{};
  AnalysisLogFormat(&config, &handle);
  AnalysisSysFormat(&config, &handle);
  AnalysisPidFormat(&config, &handle);

  // clang-format off
  const std::pair<char, uint32> switches[] = {
      {'D', handle.log_date}, {'T', handle.log_time}, {'E', handle.log_level_info}, {'F', handle.log_src_file}, {'L', handle.log_src_line},
      {'N', handle.log_new_line}, {'C', handle.log_swith}, {'N', handle.sys_none}, {'O', handle.sys_os}, {'C', handle.sys_cpu},
      {'M', handle.sys_memory}, {'N', handle.log_none}, {'P', handle.log_pid}, {'T', handle.log_tid}};
  // clang-format on
  for (const auto& [letter, flag] : switches)
    Require(flag == uint32{asked.find(letter) != std::string::npos});
}
