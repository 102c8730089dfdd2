// stdio operations at the file system boundary. Each asks the fault seam
// first and fails as the C runtime would (errno set), so that tests can walk
// every failure path of a writer; unarmed they cost one atomic load.
#ifndef VELMIO_PLATFORM_STDIO_FILE_H
#define VELMIO_PLATFORM_STDIO_FILE_H

#include <cstddef>
#include <cstdio>

namespace velmio::platform {

std::size_t readFile(void *data, std::size_t size, std::size_t count, std::FILE *file);
// One character, as getc; EOF at the end and on failure, when failed is set.
int readChar(std::FILE *file, bool &failed);
std::size_t writeFile(const void *data, std::size_t size, std::size_t count, std::FILE *file);
// 0 or -1, as fseek.
int seekFile(std::FILE *file, long offset, int whence);
// 0 or EOF, as fflush.
int flushFile(std::FILE *file);
// Closes the stream in every case (a failed close must not leak it); 0 or EOF.
int closeFile(std::FILE *file);
// Pushes what was written to the disk: the stdio buffer, then the
// descriptor's data. 0 or -1 with errno.
int syncFile(std::FILE *file);

}  // namespace velmio::platform

#endif
