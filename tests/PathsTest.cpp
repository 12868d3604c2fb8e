// Paths and folder chains.
#include <gtest/gtest.h>

#include "FolderModule/FolderModule.h"

namespace {

TEST(PathsTest, Split) {
  // clang-format off
  constexpr const char* kRows[][5] = {  // path, drive, dir, fname, ext
      {"/var/log/app/run.log", "/", "var/log/app/", "run", ".log"}, {"logs/app.log", "", "logs/", "app", ".log"},
      {"app.log", "", "", "app", ".log"}, {"/app.log", "/", "", "/app", ".log"}, {"/", "/", "", "/", ""},
      {"logs/", "", "logs/", "", ""}, {"/var/log/", "/", "var/log/", "", ""}, {"a.b/c", "", "a.b/", "c", ""},
      {"a.b.c", "", "", "a.b", ".c"}, {".hidden", "", "", "", ".hidden"}, {"file.", "", "", "file", "."},
      {"d/.hidden", "", "d/", "", ".hidden"}, {"..", "", "", ".", "."}, {"//x//y.z", "/", "/x//", "y", ".z"},
      {"a\\b\\c.txt", "", "a\\b\\", "c", ".txt"}, {"\\a", "", "\\", "a", ""}};
  // clang-format on
  char drive[2], dir[32], fname[32], ext[32];
  for (const auto& [path, drive_part, dir_part, fname_part, ext_part] : kRows) {
    SCOPED_TRACE(path);
    SplitPath(path, drive, dir, fname, ext);
    EXPECT_STREQ(drive, drive_part);
    EXPECT_STREQ(dir, dir_part);
    EXPECT_STREQ(fname, fname_part);
    EXPECT_STREQ(ext, ext_part);
    SplitPath(path, nullptr, nullptr, nullptr, nullptr);
  }
  SplitPath("", drive, dir, fname, ext);
  SplitPath(nullptr, drive, dir, fname, ext);
  EXPECT_STREQ(fname, "a") << "left as it was";
}

TEST(PathsTest, Join) {
  // clang-format off
  constexpr const char* kRows[][5] = {  // drive, dir, fname, ext, path
      {nullptr, "/var/log/", "app", ".log", "/var/log/app.log"}, {nullptr, "logs", "app", "", "logs/app"},
      {nullptr, "/var/log", "app", ".log", "/var/log/app.log"}, {nullptr, nullptr, "run", ".log", "run.log"},
      {nullptr, "logs/", "app", "log", "logs/applog"}, {nullptr, "a\\", "f", nullptr, "a\\f"},
      {"C", "dir", "f", ".x", "C:/dir/f.x"}, {"C:", "/dir/", "f", nullptr, "C:/dir/f"},
      {"D", nullptr, "f", ".x", "D:f.x"}, {"D", "", "f", ".x", "D:/f.x"}, {"", "", "f", ".x", "f.x"},
      {"/", "var/log/", "app", ".log", "/:/var/log/app.log"}};
  // clang-format on
  for (const auto& [drive, dir, fname, ext, expected] : kRows) {
    char path[32];
    MakePath(path, drive, dir, fname, ext);
    EXPECT_STREQ(path, expected);
  }
  MakePath(nullptr, "a", "b", "c", "d");
}

}  // namespace
