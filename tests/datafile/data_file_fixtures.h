// Byte builders for hand-written attribute data files.
#ifndef VELMIO_TESTS_DATAFILE_FIXTURES_H
#define VELMIO_TESTS_DATAFILE_FIXTURES_H

#include <velmio/data_file.hpp>

#include "support/test_support.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace velmio::test {

inline void pad(Bytes &out) {
    while (out.size() % 4) out.push_back(0);
}

// A double as this system writes it: low-order word first.
inline void xdouble(Bytes &out, double d) {
    std::uint64_t bits;
    std::memcpy(&bits, &d, 8);
    be32(out, static_cast<std::uint32_t>(bits));
    be32(out, static_cast<std::uint32_t>(bits >> 32));
}

inline std::uint32_t floatBits(float f) {
    std::uint32_t bits;
    std::memcpy(&bits, &f, 4);
    return bits;
}

// The array form: count, then byte length and the elements in memory order.
inline void xarray(Bytes &out, const void *elements, int count, std::size_t elementSize) {
    be32(out, static_cast<std::uint32_t>(count));
    if (count == 0) return;
    be32(out, static_cast<std::uint32_t>(count * elementSize));
    const auto *p = static_cast<const std::uint8_t *>(elements);
    out.insert(out.end(), p, p + count * elementSize);
    pad(out);
}

inline dataValue intValue(std::int32_t i) {
    dataValue v;
    v.d = 0;
    v.i = i;
    return v;
}

inline dataValue ptrValue(const void *p) {
    dataValue v;
    v.ptr = const_cast<void *>(p);
    return v;
}

// The code of reading record n; the values read are freed.
inline int readCode(VELMDataFile &f, int n) {
    double t;
    unsigned int s;
    std::vector<dataValue> v;
    const int rc = f.ReadRecord(t, s, v, n);
    f.FreeRecordValues(v);
    return rc;
}

}  // namespace velmio::test

#endif
