// Fields of consecutive records decoded from the read window into a
// caller's arrays, one array at a time: the bulk reads keep the scales in
// locals, so that no store into an array forces a reload of the handle, and
// a missing array costs nothing.
#ifndef VELMIO_SENSORS_COLUMN_DECODE_H
#define VELMIO_SENSORS_COLUMN_DECODE_H

#include "linestore/byte_source.h"

#include <cstdint>

namespace velmio {

constexpr std::uint32_t kColumnRun = 256;

// The first Words 32-bit words of n records of stride bytes, gathered a run
// at a time in one pass over the bytes: visit(done, run, words) with
// words[w][j] word w of record done + j. Contiguous words let the compiler
// scale (divide) several values per instruction.
template <unsigned Words, class Visit>
inline void forEachRun(const unsigned char *bytes, std::uint32_t n, unsigned stride, Visit visit) {
    std::uint32_t words[Words][kColumnRun];
    for (std::uint32_t done = 0; done < n;) {
        const std::uint32_t run = n - done < kColumnRun ? n - done : kColumnRun;
        for (std::uint32_t j = 0; j < run; ++j, bytes += stride)
            for (unsigned w = 0; w < Words; ++w) words[w][j] = loadBe32(bytes + 4 * w);
        visit(done, run, words);
        done += run;
    }
}

// out[j] = field(words[j]) for a run; nothing when out is null.
template <class T, class Field>
inline void fillColumn(T *out, std::uint32_t run, const std::uint32_t *words, Field field) {
    if (!out) return;
    for (std::uint32_t j = 0; j < run; ++j) out[j] = field(words[j]);
}

}  // namespace velmio

#endif
