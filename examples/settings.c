/*
 * Reads, edits and lists an INI file, and finds files.
 *
 *   vintra_settings list INI_FILE
 *   vintra_settings get INI_FILE SECTION KEY
 *   vintra_settings set INI_FILE SECTION KEY VALUE
 *   vintra_settings find FOLDER [NAME]
 */
#include <ConfigFileINI/ConfigFileINI.h>
#include <FolderModule/FolderModule.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* A buffer that holds every list of a file, whose size goes to *list_size. Null when there is none. */
static char* NewList(const char* file, sint32* list_size) {
  char byte;
  int file_size = 0;
  /* With no room but for the NUL, the call tells of the size, and an empty file fits. */
  if (CustomReadFile(file, &byte, 0, &file_size) == 0 || file_size > INT_MAX - 2) return NULL;
  *list_size = file_size + 2;
  return (char*)malloc((size_t)*list_size);
}

static int List(const char* file) {
  sint32 list_size;
  sint32 sections_end;
  char* sections = NewList(file, &list_size);
  char* keys = NewList(file, &list_size);
  if (sections != NULL && keys != NULL) {
    const char* section;
    sections_end = GetConfigFileSections(sections, list_size, file);
    for (section = sections; section < sections + sections_end; section += strlen(section) + 1) {
      const char* key;
      const sint32 keys_end = GetConfigFileKeys(section, keys, list_size, file);
      printf("[%s]\n", section);
      for (key = keys; key < keys + keys_end; key += strlen(key) + 1) {
        char value[VINTRA_INI_LINE_SIZE];
        GetConfigFileString(section, key, "", value, sizeof value, file);
        printf("%s=%s\n", key, value);
      }
    }
  } else {
    fprintf(stderr, "%s: cannot be read\n", file);
  }
  free(keys);
  free(sections);
  return sections != NULL && keys != NULL ? 0 : 1;
}

static int Get(const char* file, const char* section, const char* key) {
  char value[VINTRA_INI_LINE_SIZE];
  /* A default that no value can be tells whether the key is there. */
  GetConfigFileString(section, key, "\n", value, sizeof value, file);
  if (strcmp(value, "\n") == 0) {
    fprintf(stderr, "%s: no key %s in [%s]\n", file, key, section);
    return 1;
  }
  printf("%s\n", value);
  return 0;
}

static int Set(const char* file, const char* section, const char* key, const char* value) {
  if (WriteConfigFileString(section, key, value, file) == 1) return 0;
  fprintf(stderr, "%s: %s could not be written to [%s]\n", file, key, section);
  return 1;
}

static int Walk(const char* folder, const char* name, char* files, int length, int* need, int* count) {
  *need = 0; /* a running total */
  if (name == NULL) return TraversalFolder(folder, files, length, need, count);
  return FindPathByFileName(folder, name, files, length, need, count);
}

static int Find(const char* folder, const char* name) {
  char* files = NULL;
  const char* file;
  int length;
  int need;
  int count;
  int result = Walk(folder, name, NULL, 0, &need, &count);
  do { /* again where the folder has grown since the size was asked for */
    free(files);
    length = need;
    files = (char*)malloc((size_t)length + 1);
    if (files == NULL) break;
    result = Walk(folder, name, files, length, &need, &count);
  } while (result == -1 && need > length);
  for (file = files; result == 1 && count > 0; --count, file += strlen(file) + 1) printf("%s\n", file);
  free(files);
  if (result != 1) fprintf(stderr, "%s: out of memory\n", folder);
  return result == 1 ? 0 : 1;
}

int main(int argc, char** argv) {
  if (argc == 3 && strcmp(argv[1], "list") == 0) return List(argv[2]);
  if (argc == 5 && strcmp(argv[1], "get") == 0) return Get(argv[2], argv[3], argv[4]);
  if (argc == 6 && strcmp(argv[1], "set") == 0) return Set(argv[2], argv[3], argv[4], argv[5]);
  if (argc == 3 && strcmp(argv[1], "find") == 0) return Find(argv[2], NULL);
  if (argc == 4 && strcmp(argv[1], "find") == 0) return Find(argv[2], argv[3]);
  fprintf(stderr,
          "usage: %s list INI_FILE | get INI_FILE SECTION KEY | set INI_FILE SECTION KEY VALUE |"
          " find FOLDER [NAME]\n",
          argv[0]);
  return 2;
}
