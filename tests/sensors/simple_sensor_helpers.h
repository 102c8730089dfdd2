// Helpers of the simple sensor and navigation tests: signed words as XDR
// bytes, the Gyro line that several tests write, and file tampering.
#ifndef VELMIO_TESTS_SENSORS_SIMPLE_SENSOR_HELPERS_H
#define VELMIO_TESTS_SENSORS_SIMPLE_SENSOR_HELPERS_H

#include <velmio/simple_sensor.h>

#include "support/test_support.h"

#include <cstdlib>
#include <string>

namespace velmio::test {

constexpr long long kTOVO = 0x544F564F;

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

// Overwrites the 32-bit word at byte offset with value.
inline void patchWord(const std::string &path, std::size_t offset, long long value) {
    Bytes b = readFile(path);
    Bytes w = words({value});
    for (int i = 0; i < 4; ++i) b.at(offset + i) = w[i];
    writeFile(path, b);
}

// Three gyro records in one segment "raw1.dat" (see GyroFiles in the tests).
inline void writeGyroLine(const TempDir &dir) {
    int error = -1;
    TOVO_Sensor *h = GyroOpenDir(dir.wpath().c_str(), L"create", &error);
    ASSERT_NE(h, nullptr) << error;
    // Braced lists are evaluated in order: the calling order of a write.
    for (int rc : {GyroBgnSeqWriteSummary(h), GyroBgnSeqWriteLineSegment(h, L"raw1.dat"),
                   GyroSeqWrite(h, 100.0, 0.5, 0x10), GyroSeqWrite(h, 100.5, -0.25, 0),
                   GyroSeqWrite(h, 101.0, 3.14159265358979, 7), GyroEndSeqWriteLineSegment(h, 0x20),
                   GyroEndSeqWriteSummary(h, 0x40), GyroClose(h)})
        ASSERT_EQ(rc, 0);
}

}  // namespace velmio::test

#endif
