/*
 * Vintra's folder utilities: taking paths apart, putting them together, naming folders, making folder chains,
 * walking folders, reading and writing whole files.
 *
 * Paths are NUL-terminated byte strings. Both '/' and '\' separate components when a path is read; '/' is
 * what is written. The "drive" of an absolute path is the one character '/'.
 *
 * All buffers belong to the caller, who keeps to the sizes named here, in bytes with the terminator. Output
 * buffers must not overlap input texts. Nothing is kept between calls, so every function may run in any
 * number of threads at once. Only the walks allocate memory, for the length of a call.
 *
 * The functions that make folders return 1 when something of the folder's name is there at the end of the
 * call, and 0 when it is not. Nothing here writes a message.
 */
#ifndef VINTRA_FOLDERMODULE_FOLDERMODULE_H
#define VINTRA_FOLDERMODULE_FOLDERMODULE_H

#include "../Common/BaseTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Splits path into its four parts. A null output is not wanted. drive needs 2 bytes; dir, fname and ext each
 * need the length of path plus 1 in the worst case.
 *
 *   drive  "/" for a path that begins with '/', else ""
 *   dir    from behind the drive up to and including the last separator, or "" when there is none there
 *   fname  the last component up to its last '.'; without a dir it keeps a leading '/'
 *   ext    from the last '.' of the last component on, the '.' included, or ""
 *
 * "/var/log/app/run.log" gives "/", "var/log/app/", "run", ".log"; "/app.log" gives "/", "", "/app", ".log";
 * ".hidden" gives "", "", "", ".hidden". A null or empty path leaves the outputs as they are.
 */
VINTRA_API void SplitPath(const char* path, char* drive, char* dir, char* fname, char* ext);

/*
 * Joins the parts that are not null into path, which needs the length of all parts together plus 4 bytes. A
 * ':' is put behind a drive that does not end in one, a '/' between a drive and a dir that does not begin
 * with a separator, and a '/' behind a dir that does not end in one. Nothing is put between fname and ext. An
 * empty drive, and an empty dir without a drive, add nothing. A null path is harmless.
 *
 * Not the inverse of SplitPath where a drive is given: "/" as drive gives "/:".
 */
VINTRA_API void MakePath(char* path, const char* drive, const char* dir, const char* fname, const char* ext);

/* Writes "./" into module_dir (3 bytes) and returns module_dir. Null is returned as it is. */
VINTRA_API char* GetModuleDir(char* module_dir);

/*
 * Writes the folder of this library's own file, with its last '/', into module_dir (260 bytes) and returns
 * module_dir. The folder reads as the loader was given it, and so may be relative. module_dir is left
 * untouched when the loader cannot name the file, when the name has no '/' behind its first character, and
 * when it is 260 characters or longer; clear the buffer first to tell. Null is returned as it is.
 */
VINTRA_API char* GetDLLDir(char* module_dir);

/*
 * Makes every missing folder of path, from the top down, with mode 0777 less the umask. path has 1 to 248
 * characters, with a '/' counted behind a ':' that ends the first component; runs of separators count as one,
 * and one at the end is harmless. Anything of a level's name that exists counts as the level, and so does one
 * that another process makes meanwhile.
 *
 * Returns 1, or 0 for a null, empty or over-long path, for a first component that ends in ':' and is not
 * there, and when a level cannot be made. A failed call removes the levels that it made itself, and only
 * those; a call in another process that relied on one of them meanwhile fails too. A '\' in front of the
 * whole path stays part of the first name.
 */
VINTRA_API int CreateMulDir(const char* path);

/*
 * Makes subdir, a chain of one or more components, below parent_dir: a buffer of 261 bytes whose text ends in
 * '/'. The first component of subdir is appended to that text in place. A subdir that begins with a separator
 * makes parent_dir itself where that is missing.
 *
 * Returns 1, or 0 with parent_dir unchanged for a null or empty argument, for texts of more than 248
 * characters together, and when the first component cannot be made. When a level further down cannot be made
 * the result is 0 too; the levels that the call made are removed, and parent_dir keeps the first component
 * only where that one was there before.
 */
VINTRA_API int CreateChildDir(char* parent_dir, const char* subdir);

/*
 * Lists every entry of the folder path and of all folders below it, or every entry whose whole name is
 * filename, byte by byte, and that is no folder. files, of length bytes, receives the paths: path, '/', and
 * what lies below it ("a//b" for a path "a/"), each with a NUL behind it, one after the other, and NULs up to
 * its end. *count receives their number.
 *
 * *realLen is a running total, to which the call adds the bytes that the paths take, NULs included, up to
 * INT_MAX; set it to 0 before each call. A caller who does not know the size calls with files null first, and
 * then with a buffer of *realLen bytes, with *realLen at 0 again; where the folder has grown meanwhile, that
 * gives -1 once more.
 *
 * A folder comes before what is in it; otherwise the order is the file system's. "." and ".." are left out,
 * and so are paths of more than 1023 characters with everything below them. A link is an entry like a file
 * and is not followed, unless it is path. Where the file system does not tell kinds of entries apart, folders
 * count as files; block devices and sockets count as folders. A folder that cannot be opened is listed
 * without what is in it, also for want of a descriptor, of which each level takes one; where it is path,
 * nothing is found.
 *
 * Returns
 *    1  files holds the paths
 *    0  path, filename, realLen or count is null, there is no memory, or a folder could not be read to its
 *       end, as errno says: nothing was written
 *   -1  files is null, or *realLen or what the paths take exceeds length: *count and *realLen are set, and
 *       files is as it was
 */
VINTRA_API int TraversalFolder(const char* path, char* files, int length, int* realLen, int* count);
VINTRA_API int FindPathByFileName(const char* path, const char* filename, char* files, int length,
                                  int* realLen, int* count);

/*
 * Writes length bytes of msg into the file filename, opened with fopen's mode: "w" replaces what is there,
 * "a" adds to it. Returns 1 when all bytes were handed to the system, else 0: for a null argument, a mode of
 * more than 62 characters and a length below 0, before anything is opened; when the file cannot be opened;
 * and when not all bytes could be written, or length is 0, with the file then created or emptied as mode
 * says. With a length of 0 msg may be null.
 */
VINTRA_API int CustomWriteFile(const char* filename, const char* mode, const char* msg, int length);

/*
 * Reads a whole file of up to length bytes into msg, which has length + 1 bytes, and puts a NUL behind them;
 * bytes of any value come through. *realLen receives their number. A caller who does not know the size calls
 * with msg null first, and then with a buffer of *realLen + 1 bytes; where the file has grown meanwhile, that
 * gives -1 once more.
 *
 * Returns
 *    1  read. Of a file that grows meanwhile, or does not tell its size, the first length bytes. When reading
 *       fails on the way, what came before: errno then says why, and is left alone otherwise.
 *    0  filename or realLen is null, or the file is not there, cannot be opened, is a folder or does not tell
 *       its status: msg and *realLen are as they were
 *   -1  msg is null, whatever length is, or the file has more than length bytes: *realLen says how many.
 *       That is 0 where it does not tell its size, and INT_MAX where it has 2 GiB or more, which cannot be
 *       read with one call. msg is as it was.
 */
VINTRA_API int CustomReadFile(const char* filename, char* msg, int length, int* realLen);

#ifdef __cplusplus
}

/*
 * For C++ hosts: makes the chain a_dir below the folder parent_dir, whose length, up to 259, is back_size.
 * Neither text is changed. Returns 1, also when a_dir is empty or holds separators only; or 0 for a null
 * text, for a back_size that is not the length of parent_dir, and where CreateChildDir would.
 */
VINTRA_API int RecursiveCreateDir(char* a_dir, char* parent_dir, int back_size);
#endif

#endif
