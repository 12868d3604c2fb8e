/*
 * Prints the path of everything below a folder, or of every file below it that has a name.
 *
 *   vintra_walk FOLDER [NAME]
 */
#include <FolderModule/FolderModule.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int Walk(const char* folder, const char* name, char* files, int length, int* need, int* count) {
  *need = 0; /* a running total */
  if (name == NULL) return TraversalFolder(folder, files, length, need, count);
  return FindPathByFileName(folder, name, files, length, need, count);
}

int main(int argc, char** argv) {
  const char* const name = argc == 3 ? argv[2] : NULL;
  const char* file;
  char* files = NULL;
  int length, need, count, result;

  if (argc != 2 && argc != 3) {
    fprintf(stderr, "usage: %s FOLDER [NAME]\n", argv[0]);
    return 2;
  }
  result = Walk(argv[1], name, NULL, 0, &need, &count);
  do { /* again where the folder has grown since the size was asked for */
    free(files);
    length = need;
    files = (char*)malloc((size_t)length + 1);
    if (files == NULL) break;
    result = Walk(argv[1], name, files, length, &need, &count);
  } while (result == -1 && need > length);
  for (file = files; result == 1 && count > 0; --count, file += strlen(file) + 1) printf("%s\n", file);
  free(files);
  if (result != 1) fprintf(stderr, "%s: out of memory\n", argv[1]);
  return result == 1 ? 0 : 1;
}
