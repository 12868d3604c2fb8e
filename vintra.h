/*
 * All of Vintra: logs, INI files, and folders. Each of the three headers also stands alone.
 *
 * C99 and C++11 or later.
 */
#ifndef VINTRA_VINTRA_H
#define VINTRA_VINTRA_H

#include "ConfigFileINI/ConfigFileINI.h"
#include "FolderModule/FolderModule.h"
#include "VintraModule/VintraModule.h"

#endif
