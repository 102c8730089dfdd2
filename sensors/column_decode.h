// One field of consecutive records decoded from the read window into a
// caller's array: the bulk reads fill each array in a loop of its own, with
// the scales in locals, so that no store into an array forces a reload of
// the handle and a missing array costs nothing.
#ifndef VELMIO_SENSORS_COLUMN_DECODE_H
#define VELMIO_SENSORS_COLUMN_DECODE_H

#include "linestore/byte_source.h"

#include <cstdint>

namespace velmio {

// out[j] = field(word) for the 32-bit word at byte `at` of each of n records
// of `stride` bytes from bytes; nothing when out is null.
// The words are gathered a run at a time into a contiguous array first, so
// that the compiler can scale (divide) several values per instruction.
template <class T, class Field>
inline void decodeColumn(T *out, const unsigned char *bytes, std::uint32_t n, unsigned stride, unsigned at,
                         Field field) {
    if (!out) return;
    constexpr std::uint32_t kRun = 256;
    std::uint32_t words[kRun];
    bytes += at;
    for (std::uint32_t done = 0; done < n;) {
        const std::uint32_t run = n - done < kRun ? n - done : kRun;
        for (std::uint32_t j = 0; j < run; ++j, bytes += stride) words[j] = loadBe32(bytes);
        T *const to = out + done;
        for (std::uint32_t j = 0; j < run; ++j) to[j] = field(words[j]);
        done += run;
    }
}

}  // namespace velmio

#endif
