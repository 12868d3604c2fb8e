// Scrambling: every byte XORed with one mask. Done twice, it gives the bytes back.
#ifndef VINTRA_VINTRAMODULE_SCRAMBLING_H
#define VINTRA_VINTRAMODULE_SCRAMBLING_H

#include <cstddef>
#include <span>

#include "Common/BaseTypes.h"

namespace vintra {

void Scramble(std::span<sint8> bytes);

// Scrambles length bytes of source into dest, as if byte by byte from the last to the first, however the two
// overlap.
void ScrambleInto(sint8* dest, const sint8* source, std::size_t length);

// Scrambles a whole file into another one, as FileConvert documents it. write_error receives the errno of a
// write that failed, which the result does not tell of.
sint32 ScrambleFile(const sint8* old_path, const sint8* new_path, int& write_error);

}  // namespace vintra

#endif
