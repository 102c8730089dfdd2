// Helpers of the sensor tests: opening a line, the Gyro line that several
// tests write and the profile handle's state.
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
