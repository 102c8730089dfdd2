// The simple sensor: one value against time, the implementation of the
// fourteen families of simple_families.h.
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/simple_sensor.h>

#include "encoding/rounding.h"
#include "foundation/wide_copy.h"
#include "sensors/record_family.h"
#include "sensors/simple_families.h"

#include <new>

namespace velmio {
namespace {

constexpr int kNullHandleCode = 5000019;
constexpr int kUnknownType = 5000022;

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},        {SummaryWord::RecordCount},
    {SummaryWord::TimeScale},     {SummaryWord::ReferenceTime},
    {SummaryWord::ExtentMin, 0, ExtentKind::Time},  {SummaryWord::ExtentMax, 0, ExtentKind::Time},
    {SummaryWord::ExtentMin, 1, ExtentKind::Value}, {SummaryWord::ExtentMax, 1, ExtentKind::Value},
};

constexpr std::uint32_t kRecordBytes = 12;  // status, time, value
static_assert(kRecordBytes <= kMaxRecordBytes, "the record buffer holds a record");
static_assert(sizeof kSummary / sizeof kSummary[0] <= kMaxSummaryWords, "the summary buffer holds the summary");

// The simple sensor prints no messages of its own.
const RecordFamily kSimple = {
    {
        5001200,
        1,                               // format version written
        {kRecordBytes, 0, false},
        {0, 0, false},
        8,
        kSummary,
        nullptr,
        {2, {ExtentKind::Time, ExtentKind::Value}, 5028600, nullptr, 5001203, 5001202, 5001226, nullptr, nullptr,
         nullptr, nullptr},
        0,                               // a bad validation record reports the record's own code, 5000027
        nullptr,
        kReadFailed,
        nullptr,
        5001214,
        5001205,                         // a summary not written at close
    },
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

struct SimpleSensorState : RecordState {
    SimpleSensorState() : RecordState(kSimple) {}
    double valueDivisor = 1000.0;  // units per metre or radian, as TOVO_DecodeMeters or ..Radians divide
    bool radians = false;          // values encode as TOVO_EncodeRadians, else as ..Meters
};

bool isSimpleType(unsigned int typeId) {
#define VELMIO_SIMPLE_ID(P, ID, KIND) \
    if (typeId == ID) return true;
    VELMIO_SIMPLE_FAMILIES(VELMIO_SIMPLE_ID)
#undef VELMIO_SIMPLE_ID
    return false;
}

// The checks at the head of every operation: 0 and the state, or the code.
int check(TOVO_Sensor *h, SimpleSensorState *&state) {
    if (!h) return kNullHandleCode;
    state = stateOf<SimpleSensorState>(h, kSimple);
    return state ? 0 : kMissingOutput;
}

// A record's words: status, time, value.
void decodeRecord(const TOVO_Sensor &h, const SimpleSensorState &s, const unsigned char *bytes, double *time,
                  double *value, unsigned int *status) {
    if (time) *time = decodeTime(h, static_cast<std::int32_t>(loadBe32(bytes + 4)));
    if (value) *value = static_cast<std::int32_t>(loadBe32(bytes + 8)) / s.valueDivisor;
    if (status) *status = loadBe32(bytes);
}

// Appends one record; the per-record and the bulk write share it byte for byte.
int writeRecord(TOVO_Sensor &h, SimpleSensorState &s, double time, double value, unsigned int status) {
    const bool first = s.firstRecordPending;
    if (first) {
        h.referenceTime = TOVO_EncodeRefTime(time);
        s.firstRecordPending = false;
    }
    // Counted before anything can fail: a failed write still counts.
    ++h.recordCount;
    const std::int32_t t = encodeTime(h, time);
    const std::int32_t v = s.radians ? nint(value * 10000000.0) : encodeMetres(value);
    int rc = 0;
    unsigned char *bytes = beginRecord(h, s, t, &rc);
    if (!bytes) return rc;
    storeBe32(bytes, status);
    storeBe32(bytes + 4, static_cast<std::uint32_t>(t));
    storeBe32(bytes + 8, static_cast<std::uint32_t>(v));
    s.appender.commit(kRecordBytes);
    const double values[2] = {time, value};
    widenExtents(h, values);
    ++s.written;
    return first ? referencesFixed(h, s) : 0;
}

}  // namespace

const RecordFamily &simpleSensorRecords() { return kSimple; }

}  // namespace velmio

using namespace velmio;

extern "C" VELMIO_API TOVO_Sensor *SimpleSensorOpen(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                                    unsigned int typeId, int encodingKind, int *error) {
    int scratch = 0;
    int &rc = error ? *error : scratch;
    // Refused before the open, so that a create never truncates for nothing.
    if (!isSimpleType(typeId)) {
        rc = kUnknownType;
        return nullptr;
    }
    if (encodingKind != VELMIO_SIMPLE_SENSOR_METRES && encodingKind != VELMIO_SIMPLE_SENSOR_RADIANS) {
        rc = kMissingOutput;
        return nullptr;
    }
    TOVO_Sensor *h = SensorOpenDir(lineDirectory, typeId, accessToken, &rc);
    if (!h) return nullptr;
    if (encodingKind == VELMIO_SIMPLE_SENSOR_RADIANS) {
        h->encodeValue = TOVO_EncodeRadians;
        h->decodeValue = TOVO_DecodeRadians;
    } else {
        h->encodeValue = TOVO_EncodeMeters;
        h->decodeValue = TOVO_DecodeMeters;
    }
    auto *state = new (std::nothrow) SimpleSensorState;
    if (!state) {
        std::fclose(h->dataFile);
        h->dataFile = nullptr;
        SensorFree(h);
        rc = kNoMemory;
        return nullptr;
    }
    if (encodingKind == VELMIO_SIMPLE_SENSOR_RADIANS) {
        state->valueDivisor = 10000000.0;
        state->radians = true;
    }
    rc = openRecordFamily(h, state);
    return rc == 0 ? h : nullptr;
}

extern "C" VELMIO_API int SimpleSensorSummary(TOVO_Sensor *h, unsigned int *segmentCount, unsigned int *recordCount,
                                              double *minTime, double *maxTime, double *minValue, double *maxValue,
                                              unsigned int *summaryStatus) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (segmentCount) *segmentCount = h->segmentCount;
    if (recordCount) *recordCount = h->recordCount;
    if (minTime) *minTime = h->extents[0].min;
    if (maxTime) *maxTime = h->extents[0].max;
    if (minValue) *minValue = h->extents[1].min;
    if (maxValue) *maxValue = h->extents[1].max;
    if (summaryStatus) *summaryStatus = h->summaryStatus;
    return 0;
}

extern "C" VELMIO_API int SimpleSensorLineSegment(TOVO_Sensor *h, int n, wchar_t **name, unsigned int *firstRecord,
                                                  unsigned int *lastRecord, double *minTime, double *maxTime,
                                                  double *minValue, double *maxValue, unsigned int *status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (!name || !status) return kMissingOutput;
    const _TOVO_LnSeg *seg = LnSegIndexSearch(h, n);
    if (!seg) return kSimple.code(kNoSegment);
    wchar_t *copy = mallocWideCopy(seg->name);
    if (!copy) return kNoMemory;
    *name = copy;
    if (firstRecord) *firstRecord = seg->firstRecord;
    if (lastRecord) *lastRecord = seg->lastRecord;
    if (minTime) *minTime = seg->extents[0].min;
    if (maxTime) *maxTime = seg->extents[0].max;
    if (minValue) *minValue = seg->extents[1].min;
    if (maxValue) *maxValue = seg->extents[1].max;
    *status = seg->status;
    return 0;
}

extern "C" VELMIO_API int SimpleSensorRead(TOVO_Sensor *h, unsigned int n, double *time, double *value,
                                           unsigned int *status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (isCreate(*h)) return kSimple.code(kWrongMode);
    if (!status) return kMissingOutput;
    if (n < 1 || n > h->recordCount) return kSimple.code(kOutOfRange);
    if (int rc = readRecordAt(*h, *s, n)) return rc;
    decodeRecord(*h, *s, s->record, time, value, status);
    // Unsaved edits are what an editor must see.
    if (isUpdate(*h)) *status = h->shadowStatus[n];
    return 0;
}

extern "C" VELMIO_API int SimpleSensorReadRange(TOVO_Sensor *h, unsigned int firstRecord, unsigned int count,
                                                double *times, double *values, unsigned int *statuses) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (isCreate(*h)) return kSimple.code(kWrongMode);
    if (count == 0) return 0;
    if (!inRange(*h, firstRecord, count)) return kSimple.code(kOutOfRange);
    const bool edited = isUpdate(*h);
    return readRecords(*h, *s, firstRecord, count, [&](std::uint32_t i, const unsigned char *bytes) {
        decodeRecord(*h, *s, bytes, times ? times + i : nullptr, values ? values + i : nullptr,
                     statuses ? statuses + i : nullptr);
        if (statuses && edited) statuses[i] = h->shadowStatus[firstRecord + i];
        return 0;
    });
}

extern "C" VELMIO_API int SimpleSensorReadSeq(TOVO_Sensor *h, double *time, double *value, unsigned int *status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (h->accessMode != VELMIO_ACCESS_QUERY) return kSimple.code(kWrongMode);
    if (!status) return kMissingOutput;
    int rc = 0;
    const unsigned char *bytes = readNextRecord(*h, *s, &rc);
    if (!bytes) return rc;
    decodeRecord(*h, *s, bytes, time, value, status);
    return 0;
}

extern "C" VELMIO_API int SimpleSensorBgnSeqWriteSummary(TOVO_Sensor *h) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    return isCreate(*h) ? 0 : kSimple.code(kWrongMode);
}

extern "C" VELMIO_API int SimpleSensorBgnSeqWriteLineSegment(TOVO_Sensor *h, const wchar_t *sourceName) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    return beginLineSegment(*h, kSimple, sourceName);
}

extern "C" VELMIO_API int SimpleSensorSeqWrite(TOVO_Sensor *h, double time, double value, unsigned int status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (!isCreate(*h)) return kSimple.code(kWrongMode);
    return writeRecord(*h, *s, time, value, status);
}

extern "C" VELMIO_API int SimpleSensorSeqWriteRange(TOVO_Sensor *h, unsigned int count, const double *times,
                                                    const double *values, const unsigned int *statuses) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (!isCreate(*h)) return kSimple.code(kWrongMode);
    if (count == 0) return 0;
    if (!times || !values) return kMissingOutput;
    const double *const fields[2] = {times, values};
    const bool radians = s->radians;
    return appendRecords(
        *h, *s, count, fields,
        [&](std::uint32_t first, std::uint32_t n, unsigned char *bytes, std::int32_t *encodedTimes) {
            // The references are fixed by now.
            for (std::uint32_t i = first; i < first + n; ++i, bytes += kRecordBytes) {
                const std::int32_t t = encodeTime(*h, times[i]);
                const std::int32_t units = radians ? nint(values[i] * 10000000.0) : encodeMetres(values[i]);
                storeBe32(bytes, statuses ? statuses[i] : 0);
                storeBe32(bytes + 4, static_cast<std::uint32_t>(t));
                storeBe32(bytes + 8, static_cast<std::uint32_t>(units));
                *encodedTimes++ = t;
            }
        },
        [&](std::uint32_t i) { return writeRecord(*h, *s, times[i], values[i], statuses ? statuses[i] : 0); });
}

extern "C" VELMIO_API int SimpleSensorEndSeqWriteLineSegment(TOVO_Sensor *h, unsigned int status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    return endLineSegment(*h, kSimple, status);
}

extern "C" VELMIO_API int SimpleSensorEndSeqWriteSummary(TOVO_Sensor *h, unsigned int status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (!isCreate(*h)) return kSimple.code(kWrongMode);
    h->summaryStatus = status;
    return 0;
}

extern "C" VELMIO_API int SimpleSensorSetSummaryStatus(TOVO_Sensor *h, unsigned int status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    h->summaryStatus = status;
    return 0;
}

extern "C" VELMIO_API int SimpleSensorSetLineSegmentStatus(TOVO_Sensor *h, int n, unsigned int status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    return setLineSegmentStatus(*h, kSimple, n, status);
}

extern "C" VELMIO_API int SimpleSensorSetRecordStatus(TOVO_Sensor *h, unsigned int n, unsigned int status) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    return setRecordStatus(*h, *s, n, status);
}

extern "C" VELMIO_API int SimpleSensorSaveStatusToDisk(TOVO_Sensor *h) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    if (!isUpdate(*h)) return kSimple.code(kWrongMode);
    return saveStatusToDisk(*h, *s);
}

extern "C" VELMIO_API int SimpleSensorClose(TOVO_Sensor *h) {
    SimpleSensorState *s = nullptr;
    if (int rc = check(h, s)) return rc;
    return closeRecordFamily(h, *s);
}

extern "C" VELMIO_API int SimpleSensorRemoveDir(const wchar_t *lineDirectory, unsigned int typeId) {
    if (!isSimpleType(typeId)) return kUnknownType;
    return SensorRemoveDir(lineDirectory, sensorName(typeId));
}
