/*
 * Lists, reads and changes the keys of an INI file.
 *
 *   vintra_edit_ini list INI_FILE
 *   vintra_edit_ini get INI_FILE SECTION KEY
 *   vintra_edit_ini set INI_FILE SECTION KEY VALUE
 */
#include <ConfigFileINI/ConfigFileINI.h>
#include <FolderModule/FolderModule.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int Fail(const char* file, const char* what, const char* key) {
  fprintf(stderr, "%s: %s%s\n", file, what, key);
  return 1;
}

static int List(const char* file) {
  char byte, value[VINTRA_INI_LINE_SIZE];
  char *lists, *section, *keys, *key;
  sint32 sections_end, keys_end;
  int size = 0;
  /* Asked with no room, the call tells of the file's size, and a buffer of two bytes more holds every list.
   */
  if (CustomReadFile(file, &byte, 0, &size) == 0 || size > INT_MAX - 2)
    return Fail(file, "cannot be read", "");
  size += 2;
  lists = (char*)malloc(2 * (size_t)size);
  if (lists == NULL) return Fail(file, "is too large", "");
  keys = lists + size;
  sections_end = GetConfigFileSections(lists, size, file);
  for (section = lists; section < lists + sections_end; section += strlen(section) + 1) {
    printf("[%s]\n", section);
    keys_end = GetConfigFileKeys(section, keys, size, file);
    for (key = keys; key < keys + keys_end; key += strlen(key) + 1) {
      GetConfigFileString(section, key, "", value, sizeof value, file);
      printf("%s=%s\n", key, value);
    }
  }
  free(lists);
  return 0;
}

static int Get(const char* file, const char* section, const char* key) {
  char value[VINTRA_INI_LINE_SIZE];
  /* A default that no value can be tells whether the key is there. */
  GetConfigFileString(section, key, "\n", value, sizeof value, file);
  if (strcmp(value, "\n") == 0) return Fail(file, "no such key: ", key);
  printf("%s\n", value);
  return 0;
}

int main(int argc, char** argv) {
  if (argc == 3 && strcmp(argv[1], "list") == 0) return List(argv[2]);
  if (argc == 5 && strcmp(argv[1], "get") == 0) return Get(argv[2], argv[3], argv[4]);
  if (argc == 6 && strcmp(argv[1], "set") == 0) {
    if (WriteConfigFileString(argv[3], argv[4], argv[5], argv[2])) return 0;
    return Fail(argv[2], "could not be written: ", argv[4]);
  }
  fprintf(stderr, "usage: %s list INI_FILE | get INI_FILE SECTION KEY | set INI_FILE SECTION KEY VALUE\n",
          argv[0]);
  return 2;
}
