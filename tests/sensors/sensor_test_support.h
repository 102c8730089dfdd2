// Helpers of the sensor tests: words as XDR bytes, file tampering, opening a
// line, the Gyro line that several tests write and the profile handle's state.
#ifndef VELMIO_TESTS_SENSORS_SENSOR_TEST_SUPPORT_H
#define VELMIO_TESTS_SENSORS_SENSOR_TEST_SUPPORT_H

#include <velmio/simple_sensor.h>

#include "support/test_support.h"

#include "linestore/sensor.h"
#include "sensors/profile_cursor.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace velmio::test {

constexpr std::uint32_t kTovo = 0x544F564F;

// Big-endian words; negative values travel as their 32-bit patterns.
inline Bytes words(std::initializer_list<long long> values) {
    Bytes out;
    for (long long v : values) be32(out, static_cast<std::uint32_t>(v));
    return out;
}

inline Bytes cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes &p : parts) append(out, p);
    return out;
}

// An XDR string of 8-bit characters: length, bytes, zero pad.
inline Bytes xdrString(const std::string &text) {
    Bytes out = cat({words({static_cast<long long>(text.size())}), ascii(text)});
    while (out.size() % 4) out.push_back(0);
    return out;
}

// Bytes with the four bytes at offset replaced by a big-endian word.
inline Bytes patched(Bytes bytes, std::size_t offset, long long word) {
    const Bytes w = words({word});
    for (int i = 0; i < 4; ++i) bytes.at(offset + i) = w[i];
    return bytes;
}

// Bytes with several words replaced: {offset, word} pairs.
inline Bytes patched(Bytes bytes, std::initializer_list<std::pair<std::size_t, long long>> edits) {
    for (const auto &e : edits) bytes = patched(bytes, e.first, e.second);
    return bytes;
}

inline void patchWord(const std::string &path, std::size_t offset, long long value) {
    writeFile(path, patched(readFile(path), offset, value));
}

// Opens a line directory with a family's OpenDir, expecting no error.
template <class OpenDir>
TOVO_Sensor *openLine(OpenDir openDir, const TempDir &dir, const wchar_t *mode) {
    int error = -1;
    TOVO_Sensor *h = openDir(dir.wpath().c_str(), mode, &error);
    EXPECT_EQ(error, 0);
    return h;
}

// Three gyro records in one segment "raw1.dat" (GyroData in the tests).
inline void writeGyroLine(const TempDir &dir) {
    TOVO_Sensor *h = openLine(GyroOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    // Braced lists are evaluated in order: the calling order of a write.
    for (int rc : {GyroBgnSeqWriteSummary(h), GyroBgnSeqWriteLineSegment(h, L"raw1.dat"),
                   GyroSeqWrite(h, 100.0, 0.5, 0x10), GyroSeqWrite(h, 100.5, -0.25, 0),
                   GyroSeqWrite(h, 101.0, 3.14159265358979, 7), GyroEndSeqWriteLineSegment(h, 0x20),
                   GyroEndSeqWriteSummary(h, 0x40), GyroClose(h)})
        ASSERT_EQ(rc, 0);
}

// Data file repositionings made by a profile family's handle so far.
inline unsigned long seeksOf(TOVO_Sensor *h) {
    auto *s = dynamic_cast<ProfileState *>(h->familyState);
    return s ? s->seekCount : 0;
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
