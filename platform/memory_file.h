// A stdio stream over bytes held in memory, for the files of a line that
// lives in memory (tests, fuzzing): code that works through a FILE* serves
// them unchanged, and what it writes lands in the caller's bytes.
#ifndef VELMIO_PLATFORM_MEMORY_FILE_H
#define VELMIO_PLATFORM_MEMORY_FILE_H

#include <cstdio>
#include <vector>

namespace velmio::platform {

// Opens bytes at position 0, unbuffered (so that the stream never holds
// bytes that other views of the vector have changed since). mode is "rb" or
// "rb+"; the bytes must outlive the stream. Null where the C library cannot
// make such a stream.
std::FILE *openMemoryFile(std::vector<unsigned char> &bytes, const char *mode);

}  // namespace velmio::platform

#endif
