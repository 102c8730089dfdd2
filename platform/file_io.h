// Descriptor-level file primitives for the record engine: positioned reads
// and writes that loop over partial transfers and EINTR, size and sync. Each
// asks the fault injection seam first and then fails as the real call would
// (false or -1 with errno set).
#ifndef VELMIO_PLATFORM_FILE_IO_H
#define VELMIO_PLATFORM_FILE_IO_H

#include <cstddef>
#include <cstdint>

namespace velmio::platform {

// Opens a wide path read-only: the descriptor, or -1.
int openForReading(const wchar_t *path);
// Reads up to n bytes at offset; fewer only at the end of the file. The
// byte count, or -1.
std::int64_t readAt(int fd, void *out, std::size_t n, std::uint64_t offset);
// Reads from the descriptor's position; as readAt otherwise.
std::int64_t readNext(int fd, void *out, std::size_t n);
// Writes all n bytes at offset.
bool writeAt(int fd, const void *in, std::size_t n, std::uint64_t offset);
// The file's size in bytes, or -1.
std::int64_t sizeOf(int fd);
bool syncFile(int fd);
bool closeFile(int fd);

}  // namespace velmio::platform

#endif
