// Log handles configured by a section of an INI file.
#include "TestSupport.h"
#include "VintraModule/LogConfig.h"
#include "VintraModule/LogLevels.h"

namespace {

class ConfigTest : public LogTest {
 protected:
  // What a section with these keys makes of a record, field by field.
  static std::string Fields(const std::string& keys, const char* file = "x.ini",
                            const char* section = "log") {
    WriteFile("x.ini", "[log]\n" + keys);
    LogConfigRecEx record{};
    CheckValueFromConfig(&record, file, section);
    return Bars(record.log_file_name, record.log_level, record.log_mode, record.max_file_size,
                record.max_backup_index, record.file_flush_size, record.log_time_span, record.log_encrypt,
                record.log_format, record.sysconf_format, record.module_name, record.PidandTid);
  }
};

// The messages, in the order in which the keys are read.
const std::string kName = "LOG_MODULE_INIT log_file_name not set, use default name default.log\n";
const std::string kLevel = "LOG_MODULE_INIT log level not set, use default level Log_Level_Disable\n";
const std::string kMode = "LOG_MODULE_INIT log_mode not set, use default mode Log_Mode_Simple\n";
const std::string kSize = "LOG_MODULE_INIT max_file_size is 0 or not set, use default size(20M)\n";
const std::string kIndex = "LOG_MODULE_INIT max_backup_index is 0 or not set, use default backup index 20\n";
const std::string kFormat = "LOG_MODULE_INIT log format not set, use default format %D%T%E%N\n";
const std::string kSpan = "LOG_MODULE_INIT log_time_span is error value, use input right value\n";
const std::string kSystem = "LOG_MODULE_INIT sysconf_format not set, use default format %N\n";
const std::string kModule = "LOG_MODULE_INIT module_name not set, use default module_name ''\n";
const std::string kProcess = "LOG_MODULE_INIT PidandTid not set, use default format %N\n";

TEST_F(ConfigTest, KeysAndDefaults) {
  const std::string all =
      "file_name=/l/a.log\nlevel=log_level_INFO\nmode=log_mode_date\nmax_file_size=10M\nmax_backup_index=3\n"
      "flush_size=4096\nformat=%N\ntime_span=7\nSysConfFormat=%O\nmodule_name=net\nPidAndTid=%P\nencrypt=0\n";
  const std::string texts = kSystem + kModule + kProcess, sized = kName + kLevel + kMode + kSize;
  const std::string nothing = "default.log|9|1|20971520|0|0|0|1|";
  // clang-format off
  const struct { std::string keys, fields, messages; const char *file = "x.ini", *section = "log"; } cases[] = {  // the first of two keys counts
      {all, "/l/a.log|3|3|10|3|4096|7|0|%N|%O|net|%P", ""}, {"", nothing + "%D%T%E%N|%N||%N", sized + kFormat + texts},
      {"mode=Log_Mode_Rollback\nlevel=log_level_disable\n" + all, "/l/a.log|9|2|10|3|4096|0|0|%N|%O|net|%P", ""},
      {"mode=LOG_MODE_SIMPLE\n" + all, "/l/a.log|3|1|10|0|4096|0|0|%N|%O|net|%P", ""},
      {"time_span=0\nmax_backup_index=x\nmax_file_size=-5\n" + all, "/l/a.log|3|3|20971520|20|4096|0|0|%N|%O|net|%P", kSize + kIndex + kSpan},
      {"format=null\nSysConfFormat=\nPidAndTid=\nmodule_name=\nlevel=\nmode=\n" + all, "/l/a.log|9|1|10|0|4096|0|0|%D%T%E%N|%N||%N",
       kLevel + kMode + kFormat + texts},
      {"level=" + Repeat("Info", 20) + "\nmode=Log_Mode_Dates\nflush_size=-1\nformat=\nencrypt=-1\n" + all, "/l/a.log|9|1|10|0|0|0|1||%O|net|%P",
       "LOG_MODULE_INIT log level(" + Repeat("Info", 20) + ") is invalid, use default level Log_Level_Disable\n"
       "LOG_MODULE_INIT log mode(Log_Mode_Dates) is invalid, use default mode Log_Mode_Simple\n"},
      {all, nothing + "|%N||%N", sized + texts, ""}, {all, nothing + "|%N||%N", sized + texts, "x.ini", ""}};
  // clang-format on
  for (const auto& [keys, fields, messages, file, section] : cases) {
    EXPECT_EQ(Fields(keys, file, section), fields);
    EXPECT_EQ(Errors(), messages);
  }
  for (const auto& [level, word, tag, name] : vintra::kLevels)
    EXPECT_EQ(Fields("level=Log_Level_"s + word + "\n" + all).substr(9, 1), std::to_string(level));
}

TEST_F(ConfigTest, TextsAtTheirWidths) {
  const std::string x259(259, 'x'), x64(64, 'x'), x63(63, 'x');
  // clang-format off
  const std::pair<std::string, std::string> file_names[] = {  // as set, as taken
      {x259, x259}, {x259 + "x", "default.log"}, {"logs:", "logs:/default.log"}, {"a\\", "a\\default.log"},
      {x259.substr(12) + "/", x259.substr(12) + "/default.log"}, {x259.substr(11) + "/", "default.log"},
      {x259.substr(13) + ":", x259.substr(13) + ":/default.log"}, {x259.substr(12) + ":", "default.log"}};
  // clang-format on
  for (const auto& [set, taken] : file_names) {
    EXPECT_TRUE(Fields("file_name=" + set).starts_with(taken + "|")) << set;
    EXPECT_EQ(Errors().starts_with(kName), set != taken) << set;
  }
  EXPECT_TRUE(Fields("module_name=" + x63).ends_with("|" + x63 + "|%N"));
  EXPECT_TRUE(Fields("module_name=" + x64).ends_with("|%N||%N"));
  EXPECT_NE(Errors().find(kModule), std::string::npos);
  const std::string formats = "format=" + x64 + "\nSysConfFormat=" + x64 + "\nPidAndTid=" + x64;
  EXPECT_TRUE(Fields(formats).ends_with("|" + x63 + "|" + x63 + "||" + x63));
}

TEST_F(ConfigTest, HandlesOfASection) {
  const std::string longest(263, 's');
  WriteFile("log.ini",
            "[log]\nfile_name=logs/app.log\nlevel=Log_Level_Info\nmodule_name=net\nencrypt=0\n"
            "[dir]\nfile_name=.log\n[blocked]\nfile_name=log.ini/x/y\nlevel=Log_Level_Info\n"
            "[system]\nfile_name=s.log\nlevel=Log_Level_Trace\nSysConfFormat=%O\n[far]\nfile_name=" +
                Repeat("d/", 125) + "x.log\n");
  const auto start = [this](const char* file, const char* section) {
    Close();
    return LOG_MODULE_INIT(file, section, &handle_);
  };
  EXPECT_EQ(start("log.ini", "log"), 0);
  EXPECT_EQ(LOG_INFO(handle_, "hello"), 0);
  EXPECT_EQ(ReadFile("logs/app.log"), "2026-11-16 13:24:14.007 [INFO]  net  hello");
  EXPECT_EQ(start(nullptr, nullptr), 0);
  EXPECT_EQ(LOG_LEVEL(handle_), Log_Level_Disable);
  EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 3) << "log.ini, logs and the error log";
  EXPECT_EQ(start("log.ini", "dir"), 9) << "no base name";
  EXPECT_EQ(start("log.ini", "far"), 9) << "too long behind the library's folder";
  EXPECT_EQ(start("log.ini", "blocked"), 4);
  fake.host = "";
  EXPECT_EQ(start("log.ini", "system"), 13);
  LogConfigRecEx record{};
  EXPECT_EQ(GetMaxFileSizeFromConfig(&record, "log.ini", "log"), 9);
  EXPECT_EQ(GetModuleNameFromConfig(&record, "log.ini", "log"), 0);
  EXPECT_EQ(LOG_MODULE_INIT("log.ini", "log", nullptr), 1);
  EXPECT_TRUE(Errors().ends_with("\nLOG_MODULE_INIT Invalid param:a_log_handle is null\n"));
  WriteFile("null",
            "[null]\nfile_name=null.log\nlevel=Log_Level_Trace\n[" + longest + "]\nlevel=Log_Level_Warn");
  EXPECT_EQ(start(nullptr, nullptr), 0);
  EXPECT_TRUE(fs::exists("null.log"));
  EXPECT_EQ(start("null", longest.c_str()), 0);
  EXPECT_EQ(LOG_LEVEL(handle_), Log_Level_Warn);
  Errors();
  EXPECT_EQ(start("null", (longest + "s").c_str()) + start(Repeat("/", 264).c_str(), "null"), 18);
  EXPECT_EQ(Errors(), Repeat("LOG_MODULE_INIT config_file or section has more than 263 characters.\n", 2));
}

}  // namespace
