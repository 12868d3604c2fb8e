// Log handles configured by a section of an INI file.
#include "TestSupport.h"
#include "VintraModule/LogConfig.h"

namespace {

using ConfigTest = LogTest;

// The messages, in the order in which the keys are read.
// clang-format off
const std::string kInit = "LOG_MODULE_INIT ", kDefault = " not set, use default ", kName = kInit + "log_file_name" + kDefault + "name default.log\n",
    kLevel = kInit + "log level" + kDefault + "level Log_Level_Disable\n", kMode = kInit + "log_mode" + kDefault + "mode Log_Mode_Simple\n",
    kSize = kInit + "max_file_size is 0 or" + kDefault + "size(20M)\n", kIndex = kInit + "max_backup_index is 0 or" + kDefault + "backup index 20\n",
    kFormat = kInit + "log format" + kDefault + "format %D%T%E%N\n", kSpan = kInit + "log_time_span is error value, use input right value\n",
    kTexts = kInit + "sysconf_format" + kDefault + "format %N\n" + kInit + "module_name" + kDefault + "module_name ''\n" +
             kInit + "PidandTid" + kDefault + "format %N\n";
// clang-format on

// Values at the edges of fields and names are those of CommandTest.
TEST_F(ConfigTest, KeysAndDefaults) {
  const std::string all =
      "file_name=/l/a.log\nlevel=log_level_INFO\nmode=log_mode_date\nmax_file_size=10M\nmax_backup_index=3\n"
      "flush_size=4096\nformat=%N\ntime_span=7\nSysConfFormat=%O\nmodule_name=net\nPidAndTid=%P\nencrypt=0\n";
  const std::string sized = kName + kLevel + kMode + kSize, wrong = Repeat("Info", 20);
  // clang-format off
  const struct { std::string keys, fields, messages; const char* section = "log"; } cases[] = {  // the first of two keys counts
      {all, "/l/a.log|3|3|10|3|4096|7|0|%N|%O|net|%P", ""}, {"", "default.log|9|1|20971520|0|0|0|1|%D%T%E%N|%N||%N", sized + kFormat + kTexts},
      {"mode=Log_Mode_Rollback\nlevel=log_level_disable\n" + all, "/l/a.log|9|2|10|3|4096|0|0|%N|%O|net|%P", ""},
      {"file_name=" + std::string(247, 'x') + ":\n" + all, "default.log|3|3|10|3|4096|7|0|%N|%O|net|%P", kName},  // no room behind them
      {"file_name=" + std::string(248, 'x') + "/\n" + all, "default.log|3|3|10|3|4096|7|0|%N|%O|net|%P", kName},
      {"time_span=0\nmax_backup_index=x\nmax_file_size=-5\n" + all, "/l/a.log|3|3|20971520|20|4096|0|0|%N|%O|net|%P", kSize + kIndex + kSpan},
      {"format=null\nSysConfFormat=\nPidAndTid=\nmodule_name=\nlevel=\nmode=\n" + all, "/l/a.log|9|1|10|0|4096|0|0|%D%T%E%N|%N||%N",
       kLevel + kMode + kFormat + kTexts},
      {"level=" + wrong + "\nmode=Log_Mode_Dates\nflush_size=-1\nformat=\nencrypt=-1\n" + all, "/l/a.log|9|1|10|0|0|0|1||%O|net|%P",
       kInit + "log level(" + wrong + ") is invalid, use default level Log_Level_Disable\n" + kInit +
       "log mode(Log_Mode_Dates) is invalid, use default mode Log_Mode_Simple\n"},
      {all, "default.log|9|1|20971520|0|0|0|1||%N||%N", sized + kTexts, ""}};
  // clang-format on
  for (const auto& [keys, fields, messages, section] : cases) {
    WriteFile("x.ini", "[log]\n" + keys);
    LogConfigRecEx record{};
    CheckValueFromConfig(&record, "x.ini", section);
    EXPECT_EQ(Bars(record.log_file_name, record.log_level, record.log_mode, record.max_file_size,
                   record.max_backup_index, record.file_flush_size, record.log_time_span, record.log_encrypt,
                   record.log_format, record.sysconf_format, record.module_name, record.PidandTid),
              fields);
    EXPECT_EQ(Errors(), messages);
  }
}

TEST_F(ConfigTest, HandlesOfASection) {
  const std::string longest(263, 's'), longer(264, 's'), level = "\nlevel=Log_Level_Info\n";
  WriteFile("log.ini", "[log]\nfile_name=logs/app.log\nmodule_name=net\nencrypt=0" + level +
                           "[dir]\nfile_name=.log\n" + "[no]\nfile_name=log.ini/x/y" + level +
                           "[far]\nfile_name=" + Repeat("d/", 125) + "x.log\n");
  WriteFile("null", "[null]\nfile_name=null.log" + level + "[" + longest + "]\nlevel=Log_Level_Warn");
  // clang-format off
  const struct { const char *file, *section; sint32 code; uint32 level = 9; } cases[] = {
      {"log.ini", "dir", 9}, {"log.ini", "far", 9}, {"log.ini", "no", 4},  // no base name, no room, no folder
      {"null", longer.c_str(), 9}, {longer.c_str(), "null", 9}, {nullptr, nullptr, 0, 3}, {"null", longest.c_str(), 0, 5}, {"log.ini", "log", 0, 3}};
  // clang-format on
  for (const auto& row : cases) {
    Close();
    EXPECT_EQ(LOG_MODULE_INIT(row.file, row.section, &handle_), row.code);
    EXPECT_EQ(LOG_LEVEL(handle_), row.level);
  }
  EXPECT_EQ(LOG_INFO(handle_, "hello"), 0);
  EXPECT_EQ(ReadFile("logs/app.log"), "2026-11-16 13:24:14.007 [INFO]  net  hello");
  EXPECT_TRUE(fs::exists("null.log"));
  Errors();
  LogConfigRecEx record{};
  EXPECT_EQ(GetMaxFileSizeFromConfig(&record, "log.ini", "log"), 9);
  EXPECT_EQ(GetModuleNameFromConfig(&record, "log.ini", "log"), 0);
  EXPECT_EQ(LOG_MODULE_INIT("log.ini", "log", nullptr), 1);
  EXPECT_EQ(LOG_MODULE_INIT("null", longer.c_str(), &handle_), 9);
  EXPECT_EQ(Errors(), kSize + kInit + "Invalid param:a_log_handle is null\n" + kInit +
                          "config_file or section has more than 263 characters.\n");
}

}  // namespace
