// The sensor handle and the line segment, as every family sees them.
#ifndef VELMIO_LINESTORE_SENSOR_H
#define VELMIO_LINESTORE_SENSOR_H

#include <velmio/export.h>

#include "encoding/xdr.h"
#include "linestore/time_index.h"

#include <cstdint>
#include <cstdio>
#include <string>

namespace velmio {

class ByteSource;
struct MemoryLine;

// Extents are (minimum, maximum) pairs of doubles; the families use up to
// three (navigation: time, latitude, longitude).
constexpr int kMaxExtents = 4;
constexpr double kEmptyMin = 1.7976931348623157e308;
constexpr double kEmptyMax = -1.7976931348623157e308;
constexpr std::size_t kNameArrayLength = 64;

// Base of every family's own state hung on the handle.
struct FamilyState {
    virtual ~FamilyState() = default;
    const void *owner = nullptr;  // the family's description: recognises a handle without a cast
};

using ValueEncoder = int (*)(double);
using ValueDecoder = double (*)(int);

struct Extent {
    double min = kEmptyMin;
    double max = kEmptyMax;
    // Strict comparisons: a value equal to a bound changes nothing.
    void widen(double v) {
        if (v > max) max = v;
        if (v < min) min = v;
    }
    // As widening by every value other was widened by.
    void widen(const Extent &other) {
        if (other.max > max) max = other.max;
        if (other.min < min) min = other.min;
    }
};

}  // namespace velmio

struct _TOVO_LnSeg {
    std::uint32_t nameLength = 0;  // characters
    std::wstring name;
    std::uint32_t firstRecord = 0;  // counted from 1, inclusive
    std::uint32_t lastRecord = 0;
    velmio::Extent extents[velmio::kMaxExtents];
    std::uint32_t status = 0;
    _TOVO_LnSeg *next = nullptr;
    _TOVO_LnSeg *prev = nullptr;
};

struct TOVO_Sensor {
    std::uint32_t typeId = 0;         // after the substitutions of 53 and 32787
    std::uint32_t formatVersion = 1;  // of the data file
    std::uint32_t accessMode = 0;     // 1 create, 2 query, 3 update (or a refused token's code)
    wchar_t project[velmio::kNameArrayLength] = {};
    wchar_t vessel[velmio::kNameArrayLength] = {};
    wchar_t day[velmio::kNameArrayLength] = {};
    wchar_t line[velmio::kNameArrayLength] = {};
    std::wstring lineDirectory;
    velmio::FamilyState *familyState = nullptr;  // owned
    std::wstring dataPath;
    std::FILE *dataFile = nullptr;
    char *dataBuffer = nullptr;  // the data file's 64 KiB stdio buffer; freed after the file is closed
    std::wstring tracePath;  // ids 9 and 10 only
    std::FILE *traceFile = nullptr;
    velmio::MemoryLine *memory = nullptr;      // the files held in memory, when mounted (memory_line.h)
    velmio::ByteSource *dataSource = nullptr;  // the data file's bytes, once the family opened it
    // Summary words every family has: status and record (or profile) count.
    std::uint32_t summaryStatus = 0;
    std::uint32_t recordCount = 0;
    // Summary extents; the simple sensor uses [0] time and [1] value.
    velmio::Extent extents[velmio::kMaxExtents];
    std::wstring segmentPath;
    std::uint32_t segmentCount = 0;
    _TOVO_LnSeg *firstSegment = nullptr;
    _TOVO_LnSeg *lastSegment = nullptr;
    std::wstring timeIndexPath;
    velmio::TimeIndex timeIndex;
    std::int32_t timeScale = 1000;      // counts per second
    std::int32_t positionScale = 1;
    std::int32_t referenceTime = 0;     // minutes
    std::int32_t referenceLatitude = 0; // 1e-7 rad
    std::int32_t referenceLongitude = 0;
    std::uint8_t *shadowChanged = nullptr;  // update mode: record n uses [n]
    std::uint32_t *shadowStatus = nullptr;
    velmio::ValueEncoder encodeValue = nullptr;
    velmio::ValueDecoder decodeValue = nullptr;
};

namespace velmio {

// The sensor name of a type id (after the 32787 substitution), or null.
const wchar_t *sensorName(std::uint32_t typeId);

// Checks a data file's 16-byte validation record against the handle's type
// and takes its format version: 0 or 5000027.
int checkDataValidationRecord(TOVO_Sensor &h, const unsigned char *bytes);

}  // namespace velmio

#endif
