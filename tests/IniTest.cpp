// INI files: the syntax, lookups, rewriting, listings.
#include "ConfigFileINI/ConfigFileINIInter.h"
#include "TestSupport.h"

namespace {

// Works on one file, "x.ini". The signs are the default ones again after each test.
class IniTest : public LogTest {
 protected:
  ~IniTest() override { SetConfigINISign(0, 0, 0, 0, 0); }

  static std::string Content() { return ReadFile("x.ini"); }
  static void Content(const std::string& bytes) { WriteFile("x.ini", bytes); }

  // "value|section_line|key_line|key_lines", or the code instead of the value.
  static std::string Lookup(const std::string& section, const std::string& key) {
    INIFileRec cursor = null_ini_file;
    cursor.file_name = "x.ini";
    sint8 value[vintra::kLineSize] = "untouched";
    const sint32 code = GetConfigFileKey(&cursor, section.c_str(), key.c_str(), value);
    EXPECT_TRUE(code == 0 || value == "untouched"s);
    return Bars(code == 0 ? value : std::to_string(code), cursor.Ini_section_line_no, cursor.Ini_key_line_no,
                cursor.Ini_key_lines);
  }
  static sint32 Set(const std::string& file, const char* value, const char* section = "a") {
    INIFileRec cursor = null_ini_file;
    cursor.file_name = file.c_str();
    return SetConfigFileKey(&cursor, section, "k", value);
  }
  // A list of the names in "x.ini", of its sections or of a section's keys, with its NULs as '|'.
  static std::string List(sint32 size, const char* section = nullptr) {
    std::string list(30, '~');
    const sint32 used = section == nullptr ? GetConfigFileSections(list.data(), size, "x.ini")
                                           : GetConfigFileKeys(section, list.data(), size, "x.ini");
    std::replace(list.begin(), list.end(), '\0', '|');
    return std::to_string(used) + " " + list.substr(0, list.find('~'));
  }
};

TEST_F(IniTest, Lookups) {
  const std::string most(4092, 'x'), full = "k=" + most + "+\n", comment = "[a]\n#" + most;
  // clang-format off
  const struct { std::string file, section, key, expected; } cases[] = {
      {"[a]\nx=1\n[b]\ny=2", "b", "y", "2|3|4|1"}, {"[a]\nx=1\n[b]\ny=2", "a", "y", "-2|1|3|1"}, {"[a]", "b", "y", "-1|0|0|0"}, {"[a]\ny=", "a", "y", "|1|2|1"},
      {"  y=0\n\t[a] \n # y=1\n#y=2\n Y=3\n yy=4\n\ty  = 4 = 5 \n", "a", "y", "4 = 5|2|7|1"}, {"[a]\n[b]\ny=1", "a", "y", "-2|1|2|1"},
      {"[a]\nk=abc+\n  def+\nghi \nz=1\n", "a", "k", "abcdefghi |1|2|3"}, {"[a]\nk=a +\n#b", "a", "k", "a #b|1|2|2"}, {"[a]\nk=a+", "a", "k", "a|1|2|1"},
      {"[a]\nk=a+\n[b]\nz=1", "a", "z", "1|1|4|1"}, {"[a]\nk=a+\n \nb=c", "a", "k", "a|1|2|2"}, {"[a]\nk+\n=v", "a", "k", "v|1|2|2"},
      {"[a]\nk=a+\r\nb=c\r\n", "a", "b", "c|1|4|1"}, {"[a]\nk=a+\nb+ \nc=1", "a", "k", "ab+ |1|2|2"}, {"[a]\nk+\n[b]=1", "a", "k[b]", "1|1|2|2"},
      {"[a]\njunk\nk=1", "a", "k", "-14|1|2|1"}, {"[a]\n=1\nk=1", "a", "k", "-14|1|2|1"}, {"[a]\n+\n\nk=1", "a", "k", "-14|1|2|2"},
      {"[oops\n[a]\nk=1", "a", "k", "-14|0|0|0"}, {"[a]\f\n[a]\nk=1", "a", "k", "-14|0|0|0"}, {"[a]\n[oops\nk=1", "a", "k", "-2|1|2|1"},
      {"[\n[]\n[x\n[a]\nk=1\njunk\n[a]\nk=2", "a", "k", "1|4|5|1"}, {"[ a ]\nk=1", " a ", "k", "1|1|2|1"}, {"[A]\n[a\0b]\n[aa]"s, "a", "k", "-1|0|0|0"},
      {"[a]\rx=1\0y=2\fz=3\x1a\nw=4\r\n"s, "a", "y", "2\f|1|3|1"}, {"[a]\rx=1\0y=2\fz=3\x1a\nw=4\r\n"s, "a", "w", "4|1|6|1"},
      {comment + "xx\nk=1", "a", "k", "1|1|3|1"}, {comment + "xxx\nk=1", "a", "k", "1|1|4|1"}, {comment + "xxxk=1", "a", "k", "1|1|3|1"},
      {"[a]\n" + full + "yz", "a", "k", most + "yz|1|2|2"}, {"[a]\n" + full + "xyz", "a", "k", "-22|1|2|2"}};
  // clang-format on
  for (const auto& [file, section, key, expected] : cases) {
    Content(file);
    EXPECT_EQ(Lookup(section, key), expected) << file;
  }
  fs::remove("x.ini");
  fs::create_directory("x.ini");
  EXPECT_EQ(Lookup("a", "k"), "-12|0|0|0");
  EXPECT_EQ(GetConfigFileKey(nullptr, "a", "k", folder_.data()), vintra::kNullArgument);
  EXPECT_EQ(string_trim_right(string_trim_left(nullptr)), nullptr);
}

TEST_F(IniTest, SignsAreReplaced) {
  Content("<net>\nport: 80\n;x\nl:1&\n2\n[a]\nport=1");
  SetConfigINISign('<', '>', ':', ';', '&');
  EXPECT_EQ(Lookup("net", "port") + Lookup("net", "l"), "80|1|2|112|1|4|2");
  EXPECT_EQ(List(30), "4 net||");
  for (const char* key : {"k[", "k:"})
    EXPECT_EQ(WriteConfigFileString("s", key, "v", "x.ini"), key[1] == '[');
  EXPECT_TRUE(Content().ends_with("1\n<s>\nk[:v\n"));
  NoteLineSign = '<';  // as a host may do; also that of sections
  EXPECT_EQ(Lookup("net", "port"), "-1|0|0|0");
  NoteLineSign = 'p';
  EXPECT_EQ(Lookup("net", "port"), "-14|1|3|1");
  sint8 signs[6] = "";
  GetConfigINISign(signs, signs + 1, signs + 2, signs + 3, signs + 4);
  EXPECT_STREQ(signs, "<>:p&");
  SetConfigINISign(0, 0, 0, 0, 0);
  EXPECT_EQ(GetConfigINISign(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(Lookup("a", "port"), "1|6|7|1");
}

TEST_F(IniTest, ValuesAndDefaults) {
  Content("[a]\nk=abcdef\ne=\n");
  // clang-format off
  const std::tuple<const char*, const char*, const char*, uint32, const char*, uint32> texts[] = {  // section, key, fallback, size, text, length
      {"a", "k", "none", 6, "abcde", 5}, {"a", "k", "none", 7, "abcdef", 6}, {"a", "e", "none", 9, "", 0}, {"a", "x", "none", 3, "no", 2},
      {"a", "x", nullptr, 9, "", 0}, {"a", "k", "none", 0, "before", 0}, {nullptr, "k", "none", 9, "before", 0}, {"a", "", "none", 9, "before", 0}};
  const std::pair<const char*, uint32> numbers[] = {
      {"42abc", 42}, {"abc", 0}, {"-5", 7}, {"+7", 7}, {"2147483648", 7}, {"4294967296", 0}, {"", 7}, {"0x10", 0}};
  // clang-format on
  for (const auto& [section, key, fallback, size, text, length] : texts) {
    sint8 buffer[16] = "before";
    EXPECT_EQ(GetConfigFileString(section, key, fallback, buffer, size, "x.ini"), length);
    EXPECT_STREQ(buffer, text);
  }
  sint8 own[] = "default";
  EXPECT_EQ(GetConfigFileString("a", "x", own + 2, own, sizeof own, "x.ini"), 5);
  EXPECT_EQ(GetConfigFileString("a", "k", "", own, 8, ""), 0);
  EXPECT_EQ(GetConfigFileString("a", "k", "", nullptr, 8, "x.ini"), 0);
  EXPECT_STREQ(own, "fault");
  for (const auto& [text, number] : numbers) {
    Content("[a]\nk="s + text);
    EXPECT_EQ(GetConfigFileInt("a", "k", 7, "x.ini"), number) << text;
  }
  EXPECT_EQ(GetConfigFileInt("", "k", 7, "x.ini") + GetConfigFileInt("a", "", 7, "x.ini"), 14);
}

TEST_F(IniTest, Lists) {
  // clang-format off
  const struct { const char *file, *section; sint32 size; const char* list; } cases[] = {  // null: the sections
      {"[a]\nx=1\n[bb]", nullptr, 7, "5 a|bb||"}, {"[a]\nx=1\n[bb]", nullptr, 6, "2 a||"}, {"[a]", nullptr, 3, "0 "}, {"[", nullptr, 3, "1 ||"},
      {"[a]\n[]\n[b]", nullptr, 30, "5 a||b||"}, {"[a]\n[broken\n[b]", nullptr, 30, "2 a||"}, {"[a]\nk=+\n[x]\n#[y]\n[a]", nullptr, 30, "6 a|x|a||"},
      {"[a]\nx=1\n# c\ny =2+\n3\n[b]\nz=1", "a", 30, "4 x|y||"}, {"[a]\nx=1\njunk\ny=2", "a", 30, "2 x||"}, {"[a]\nx=\nx=", "a", 30, "4 x|x||"},
      {"[a]\nx=1\nyy=2", "a", 6, "2 x||"}, {"[a]\nx=1", "b", 30, "0 "}, {"[a]\nx=1", "", 30, "0 "}, {"[a]", nullptr, 0, "0 "}, {"[a]\nx=1", "a", 0, "0 "}};
  // clang-format on
  for (const auto& [file, section, size, list] : cases) {
    Content(file);
    EXPECT_EQ(List(size, section), list) << file;
  }
  sint8* const list = folder_.data();
  EXPECT_EQ(GetConfigFileSections(nullptr, 9, "x.ini") + GetConfigFileKeys("a", nullptr, 9, "x.ini"), 0);
  EXPECT_EQ(GetConfigFileKeys(nullptr, list, 9, "x.ini") + GetConfigFileKeys("a", list, 9, ""), 0);
}

TEST_F(IniTest, Rewriting) {
  const std::string full(4096, 'x'), comment = "#" + full.substr(1), blanks(4093, ' ');
  // clang-format off
  const struct { std::string before; const char* key; std::string value, after; } cases[] = {  // in the section "a"
      {"[a]\nk=abc+\ndef\nz=1\n", "k", "v", "[a]\nk=v\nz=1\n"}, {"[a]\nk=1\n[a]\nk=2\n", "m l", "5", "[a]\nm l=5\nk=1\n[a]\nk=2\n"},
      {"[b]\n k = 1\n [a] \n\tk =\t1", "k", "2", "[b]\n k = 1\n [a] \nk=2\n"}, {"[a]\r\nx=1\r\nk=1\r\n", "k", "2", "[a]\n\nx=1\n\nk=2\n\n"},
      {"[a]\nx=1\fy=\0z=\x1A"s, "y", "2", "[a]\nx=1\f\ny=2\nz=\x1A\n"}, {"[a]\nk=1+", "k", "2", "[a]\nk=2\n"}, {"[a]\nk=1+\n\n\nx=1", "k", "2", "[a]\nk=2\n\nx=1\n"},
      {"", "k", "v", "\n[a]\nk=v\n"}, {"[b]\r\n", "k", "v", "[b]\r\n\n[a]\nk=v\n"}, {"[b]\nx=1+ ", "k", "v", "[b]\nx=1+ \n\n[a]\nk=v\n"},
      // Lines of 4096 characters and more, before and behind the key, as the key, as the section.
      {comment + "\n[a]\nk=1\n" + full + "=\n" + comment, "k", "2", comment + "\n[a]\nk=2\n" + full + "=\n" + comment + "\n"},
      {"[a]\n" + comment + "k=1\nz=1", "k", "2", "[a]\n" + comment + "k=2\nz=1\n"}, {"[a]\nk=" + full.substr(2), "k", "2", "[a]\nk=2\n"},
      {"[a]\nk=" + full.substr(2) + "\nz=1", "k", "2", "[a]\nk=2\nz=1\n"}, {"[a]\nk=" + full + "=\nz=1", "k", "2", "[a]\nk=2\nxx=\nz=1\n"},
      {"[a]" + blanks, "k", "2", "[a]" + blanks + "\nk=2\n"}, {"[a]" + blanks + "\nz=1", "k", "2", "[a]" + blanks + "\nk=2\nz=1\n"},
      {"[a]\nk=" + full.substr(3) + "\f\nz=1", "k", "2", "[a]\nk=2\n\nz=1\n"}, {"[a]\n", "k", full.substr(2), "[a]\nk=" + full.substr(2) + "\n"}};
  const std::tuple<std::string, const char*, std::string> refused[] = {  // section, key, value
      {"a", "k", full.substr(1)}, {"c", "k", full.substr(1)}, {full.substr(1), "k", "v"}, {"", "k", "v"}, {"a", "", "v"}, {"a", "k", ""},
      {"b", "k", "v"}, {"c", "k+", "v"}, {"a", "k=", "v"}, {"a", "[", "v"}, {"a", "x]", "v"}, {"a", "#k", "v"}, {"a", " k", "v"}, {"a", "k\t", "v"},
      {"a", "k\nl", "v"}, {"a", "k\rl", "v"}, {"a", "k\f", "v"}, {"a", "k\x1A", "v"}};
  // clang-format on
  for (const auto& [before, key, value, after] : cases) {
    Content(before);
    EXPECT_EQ(WriteConfigFileString("a", key, value.c_str(), "x.ini"), 1) << before;
    EXPECT_EQ(Content(), after);
  }
  Content("[a]\nx=1\n[b]\njunk\n");
  for (const auto& [section, key, value] : refused)
    EXPECT_EQ(WriteConfigFileString(section.c_str(), key, value.c_str(), "x.ini"), 0) << section << key;
  EXPECT_EQ(Content(), "[a]\nx=1\n[b]\njunk\n");
  EXPECT_EQ(WriteConfigFileString(full.substr(2).c_str(), "k", "v", "x.ini"), 1) << "the longest section";
  EXPECT_EQ(WriteConfigFileString("a", "k", "v", "") + WriteConfigFileInt(nullptr, "k", 1, "x.ini"), 0);
  EXPECT_EQ(WriteConfigFileInt("a", "n", -5, "new.ini"), 1);
  EXPECT_EQ(ReadFile("new.ini"), "\n[a]\nn=-5\n");
  EXPECT_EQ(WriteConfigFileInt("a", "n", 5, "new.ini"), 1);
  EXPECT_EQ(fs::status("new.ini").permissions(), fs::perms{0600}) << "the copy's";
}

TEST_F(IniTest, ResolvedNames) {
  const std::string deep = std::string(120, 'd') + "/", n135(135, 'n');  // 256
  const std::string path259 = folder_ + deep + std::string(259 - folder_.size() - deep.size(), 'n');
  // clang-format off
  const std::pair<std::string, bool> kNames[] = {
      {"a/b/c.ini", true}, {"f/", false}, {"f/.ini", false}, {"g\\c.ini", true}, {"x", true}, {"x/y.ini", false}, {std::string(300, 'x'), false},
      {deep + n135 + "n", true}, {"h/" + deep + n135, false}, {path259, true}, {path259 + "n", false}};
  // clang-format on
  for (const auto& [path, is_good] : kNames) {
    EXPECT_EQ(WriteConfigFileInt("a", "k", 3, path.c_str()), is_good ? 1 : 0) << path;
    EXPECT_EQ((GetConfigFileInt("a", "k", 7, path.c_str()) == 3), is_good) << path;
  }
  EXPECT_FALSE(fs::exists("h")) << "a name that does not fit makes no folder";
  // The folder of the temporary file, up to 1008 characters.
  for (const char* value : {"1", "2"}) EXPECT_EQ(Set(Repeat("./", 504) + "t.ini", value), 0);
  EXPECT_EQ(Set(Repeat("./", 504) + "/t.ini", "3"), vintra::kNoTarget);
  EXPECT_EQ(ReadFile("t.ini"), "\n[a]\nk=2\n");
}

// Where the file changes or cannot be read any further the old one stays, and the copy beside it. The copy is
// on the disk before it has the name, and a new name is as well.
TEST_F(IniTest, RewritesKeepTheFileUntilTheCopyIsStored) {
  const std::string before = "[a]\nk=1\nz=1\n";
  Content(before);
  WriteFile("head.ini", "[a]\n");
  const auto set = [](const char* section, const char* file) {
    fake.NoteCalls(*file == '\0' ? "" : "fopen2");
    fake.other_file = file;
    return Set("x.ini", "2", section);
  };
  for (const char* const file : {".", "/dev/null", "head.ini", "[a]\nk=1\nz=1"}) {  // what is read instead
    EXPECT_EQ(set("a", file), vintra::kLineUnreadable) << file;
    EXPECT_EQ(Content(), before) << file;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2 + 4);
  EXPECT_EQ(set("a", ""), 0);
  EXPECT_EQ(fake.calls,
            "fopen fclose mkostemp fdopen setvbuf fopen2 fwrite fwrite2 fwrite3 fwrite4 fflush fsync fclose2 "
            "rename open fsync2 close fclose3 ");
  EXPECT_EQ(fake.synced_size, 12) << "all of the copy";
  EXPECT_EQ(set("b", ""), 0);
  EXPECT_EQ(fake.calls, "fopen fclose open fstat pread write fsync close ");
  fs::remove("x.ini");
  EXPECT_EQ(set("b", ""), 0);
  EXPECT_EQ(fake.calls, "fopen open fstat pread write fsync open2 fsync2 close close2 ");
}

}  // namespace
