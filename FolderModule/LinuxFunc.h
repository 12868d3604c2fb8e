// The platform side of the folder utilities: the only place that asks the loader, makes folders and reads
// them.
#ifndef VINTRA_FOLDERMODULE_LINUXFUNC_H
#define VINTRA_FOLDERMODULE_LINUXFUNC_H

#include "Common/BaseTypes.h"
#include "FolderModule/PathList.h"

namespace vintra {

constexpr char kSeparators[] = "/\\";
constexpr int kDllPathSize = 260;     // of the library's own file name, terminator included
constexpr int kLongestChain = 248;    // characters of a folder chain
constexpr int kLongestLevel = 259;    // characters of a root part, and of a parent with one component
constexpr int kFoundPathSize = 1024;  // of a path that a walk finds
constexpr int kChainBufferSize = kLongestLevel + 2;  // one level, a '/' behind it, the terminator

// What became of one level of a chain. Only a level that the call made itself may be removed again.
enum class Level { kFailed, kFound, kMade };

// Makes the first level of a chain, whose name has back_size characters. A drive designation, which ends in
// ':', is never made. On failure parent_dir is cut to front_size characters.
Level EnsureRootLevel(char* parent_dir, int back_size, int front_size);

// Makes one level further down. On failure parent_dir is cut to front_size characters.
Level EnsureLevel(char* parent_dir, int front_size);

// True when the chain that path names is all there, which one look tells where nearly every chain is. False
// is no answer: a '\' separates levels and a ':' ends a drive for us, but not for the system.
bool ChainExists(const char* path);

// Copies the root part of path, its first component with one leading separator at most, into root (261 bytes)
// and returns its length, or 0 when it is empty or over 259 characters. scan points into path, behind what is
// already known to belong to the root part.
int CopyRootPart(const char* scan, const char* path, char* root);

}  // namespace vintra

// Exported with C++ linkage, for hosts that know their signatures. Null texts are harmless and give 0;
// otherwise 1 is success and 0 failure. GetDLLPath is GetDLLDir without a result, for the same 260 bytes. The
// others are CopyRootPart, whose length SetRootDir returns, EnsureRootLevel and EnsureLevel above.
VINTRA_API void GetDLLPath(char* module_dir);
VINTRA_API int SetRootDir(char* a_dir, char* dir, char* parent_dir);
VINTRA_API int CheckAndCreateParentDir(char* parent_dir, int back_size, int front_size);
VINTRA_API int CreateDir(char* parent_dir, int front_size);

// Walk the folder path and all below it, and append to files the path of every entry, or of every entry
// called filename that is no folder. A folder's entry comes before those in it; otherwise they come as the
// file system has them. Links are not followed. The bytes of each path and its NUL are added to *realLen, up
// to INT_MAX. Paths of more than 1023 characters are left out, with what is below them.
//
// Return the size of the list; 0 when path cannot be opened. A list that becomes incomplete ends the walk.
int TraversalFolderFiles(const char* path, vintra::PathList& files, int* realLen);
int FindDirByFileName(const char* path, const char* filename, vintra::PathList& files, int* realLen);

#endif
