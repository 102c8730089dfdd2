// Buffers of tens of megabytes filled once and read many times (a long
// line's time index): backed by huge pages where the system offers them, so
// that filling one costs a fault per 2 MiB rather than one per 4 KiB.
#ifndef VELMIO_PLATFORM_LARGE_BUFFER_H
#define VELMIO_PLATFORM_LARGE_BUFFER_H

#include <cstddef>

namespace velmio::platform {

// n bytes (uninitialised), or null; released with freeLargeBuffer.
unsigned char *allocLargeBuffer(std::size_t n) noexcept;
void freeLargeBuffer(unsigned char *p) noexcept;

}  // namespace velmio::platform

#endif
