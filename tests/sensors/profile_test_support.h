// Helpers of the profile family tests: hand-written file parts and a look at
// the handle's positioning state.
#ifndef VELMIO_TESTS_SENSORS_PROFILE_TEST_SUPPORT_H
#define VELMIO_TESTS_SENSORS_PROFILE_TEST_SUPPORT_H

#include "support/test_support.h"

#include "linestore/sensor.h"
#include "sensors/profile_cursor.h"

#include <cstdlib>
#include <string>

namespace velmio::test {

constexpr std::uint32_t kTovo = 0x544F564F;

// Data file repositionings made by the handle so far.
inline unsigned long seeksOf(TOVO_Sensor *h) {
    auto *s = dynamic_cast<ProfileState *>(h->familyState);
    return s ? s->seekCount : 0;
}

// An XDR string of 8-bit characters: length, bytes, zero pad.
inline Bytes xdrString(const std::string &text) {
    Bytes out = be32s({static_cast<std::uint32_t>(text.size())});
    append(out, ascii(text));
    while (out.size() % 4) out.push_back(0);
    return out;
}

// Bytes with the four bytes at offset replaced by a big-endian word.
inline Bytes patched(Bytes bytes, std::size_t offset, std::uint32_t word) {
    const Bytes w = be32s({word});
    for (int i = 0; i < 4; ++i) bytes.at(offset + i) = w[i];
    return bytes;
}

// Sets or clears VelmIOCacheSize for the scope.
class CacheSizeSetting {
public:
    explicit CacheSizeSetting(const char *value) {
        if (value)
            ::setenv("VelmIOCacheSize", value, 1);
        else
            ::unsetenv("VelmIOCacheSize");
    }
    ~CacheSizeSetting() { ::unsetenv("VelmIOCacheSize"); }
};

}  // namespace velmio::test

#endif
