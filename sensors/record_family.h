// What the fixed-size-record families (the simple sensor and navigation)
// share: the summary block behind the validation record, reading and writing
// a record at its offset, the status shadow, saving statuses and the close
// sequence. Each family describes its layout, codes and messages as a
// RecordFamily; only the record's own fields are encoded by the family.
#ifndef VELMIO_SENSORS_RECORD_FAMILY_H
#define VELMIO_SENSORS_RECORD_FAMILY_H

#include "linestore/byte_source.h"
#include "linestore/line_segment_file.h"
#include "linestore/sensor.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace velmio {

// Reason digits of a family's codes: 5000000 + 100 x block + reason.
enum Reason {
    kSegmentNotWritten = 2,
    kSegmentInvalid = 3,
    kSummaryNotWritten = 5,
    kSummaryInvalid = 6,
    kNotMapped = 8,
    kShadowNotLoaded = 9,
    kStatusNotSaved = 10,
    kSummaryNotReserved = 11,
    kTimeIndexNotWritten = 14,
    kSeekFailed = 15,
    kFreeFailed = 16,
    kNoSegment = 17,
    kWrongMode = 18,
    kOutOfRange = 19,
    kNotDecodable = 21,
    kNotEncodable = 22,
    kTimeIndexEntry = 23,
    kWriteFailed = 24,
    kReadFailed = 25,
    kCloseFailed = 26,
};

constexpr int kNoMemory = 5000009;
constexpr int kMissingOutput = -1;  // also: a handle without the family's state

// One word of a summary block, in file order.
enum class SummaryWord {
    Status,
    RecordCount,
    TimeScale,
    ReferenceTime,
    FamilyWord0,  // navigation: the coordinate type
    PositionScale,
    ReferenceLatitude,
    ReferenceLongitude,
    ExtentMin,  // of extents[extent], encoded as the segment format's kinds say
    ExtentMax,
};

struct SummaryField {
    SummaryWord word;
    int extent;
};

// Messages printed while loading the status shadow (null prints nothing).
struct ShadowMessages {
    const char *noMemory, *notMapped, *seekFailed, *readFailed, *notDecodable;
};

struct RecordFamily {
    int block;                    // 12 simple sensor, 1 navigation
    std::uint32_t recordSize;     // bytes per record
    int summaryWordCount;
    const SummaryField *summary;  // summaryWordCount words
    // One per word, printed when it cannot be decoded or is not valid
    // (null: the family prints nothing).
    const char *const *summaryMessages;
    SegmentFileFormat segments;   // also gives the kinds of the summary extents
    // A data validation record that does not match: its own code (0 passes
    // the validation record's code through) and message.
    int headerInvalidCode;
    const char *headerInvalidMessage;
    const char *summaryShortMessage;  // the summary block is short
    ShadowMessages shadow;

    int code(int reason) const { return 5000000 + 100 * block + reason; }
    std::uint32_t dataStart() const { return 16 + 4 * static_cast<std::uint32_t>(summaryWordCount); }
};

// The state every record family hangs on its handle; the families derive
// their own from it so that a handle of another family is recognised.
// Records are read with one positioned read each (random), through a
// read-ahead window (sequential and ranged), and written through an append
// buffer at offsets the engine keeps itself: the data file's stream only
// writes the validation record and the summary.
struct RecordState : FamilyState {
    explicit RecordState(const RecordFamily &f) : family(f) {}

    static constexpr std::uint32_t kMaxRecordBytes = 20;
    const RecordFamily &family;
    unsigned char record[kMaxRecordBytes] = {};  // the record in hand
    std::uint32_t written = 0;     // records written through this handle
    std::unique_ptr<ByteSource> source;
    ReadWindow window;
    AppendBuffer appender;         // create mode
    std::uint64_t nextOffset = 0;  // where ReadSeq reads: behind the last record read
    bool summaryOnDisk = false;    // create mode: the first record's references are written
};

// Modes other than query and update are treated as create, as the open does.
inline bool isCreate(const TOVO_Sensor &h) {
    return h.accessMode != 2 && h.accessMode != 3;
}
inline bool isUpdate(const TOVO_Sensor &h) { return h.accessMode == 3; }

// Completes a handle fresh from SensorOpenDir: installs the state, then
// writes the validation record and reserves the summary (create), or reads
// the summary, the line segments, the time index and, in update mode, the
// status shadow. On failure the files are closed, the handle is released
// and the code is returned.
int openRecordFamily(TOVO_Sensor *h, RecordState *state);

// True when records first .. first + count - 1 (count > 0) all exist.
inline bool inRange(const TOVO_Sensor &h, std::uint32_t first, std::uint32_t count) {
    return first >= 1 && std::uint64_t{first} + count - 1 <= h.recordCount;
}

// Reads record n into the record buffer with one positioned read.
int readRecordAt(TOVO_Sensor &h, RecordState &s, std::uint32_t n);
// The record behind the last one read (after open: the first), or null with
// *rc set.
const unsigned char *readNextRecord(TOVO_Sensor &h, RecordState &s, int *rc);
// Records first .. first + count - 1 (in range) one by one through the
// window: visit(i, bytes) for each, stopping at the first nonzero return.
template <class Visit>
int readRecords(TOVO_Sensor &h, RecordState &s, std::uint32_t first, std::uint32_t count, Visit visit);

// Starts a record of the encoded time: its time index entry at the offset
// the record will have.
int beginRecord(TOVO_Sensor &h, RecordState &s, std::int32_t encodedTime);
// Appends the filled record buffer.
int finishRecord(TOVO_Sensor &h, RecordState &s);

// Widens the summary and the current segment's extents by the raw values.
void widenExtents(TOVO_Sensor &h, const double *values, int count);

int writeSummary(TOVO_Sensor &h, RecordState &s);
// Decodes the validation record and the summary block of an open data file
// into the handle; 0 or the family's code (the words read stay set).
int readSummary(TOVO_Sensor &h, const RecordFamily &f);
int saveStatusToDisk(TOVO_Sensor &h, RecordState &s);
// Finishes and releases the handle whatever happens; the first failure's code.
int closeRecordFamily(TOVO_Sensor *h, RecordState &s);

// The tables of the families, for salvaging their lines.
const RecordFamily &simpleSensorRecords();
const RecordFamily &navigationRecords();

// The operations both families perform alike once the handle is checked.
int mapRecord(TOVO_Sensor &h, const RecordFamily &f, std::uint32_t n, std::uint32_t &offset);

template <class Visit>
int readRecords(TOVO_Sensor &h, RecordState &s, std::uint32_t first, std::uint32_t count, Visit visit) {
    const RecordFamily &f = s.family;
    // Each call reads afresh: what another process or this handle changed
    // since is seen.
    s.window.invalidate();
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t offset = 0;
        if (int rc = mapRecord(h, f, first + i, offset)) return rc;
        const std::size_t ahead = static_cast<std::size_t>(
            std::min<std::uint64_t>(kWindowBytes, std::uint64_t{count - i} * f.recordSize));
        const unsigned char *bytes = s.window.at(*s.source, offset, f.recordSize, ahead);
        if (!bytes) return f.code(kReadFailed);
        s.nextOffset = std::uint64_t{offset} + f.recordSize;
        if (int rc = visit(i, bytes)) return rc;
    }
    return 0;
}

int beginLineSegment(TOVO_Sensor &h, const RecordFamily &f, const wchar_t *sourceName);
int endLineSegment(TOVO_Sensor &h, const RecordFamily &f, unsigned int status);
int setLineSegmentStatus(TOVO_Sensor &h, const RecordFamily &f, int segmentNumber, unsigned int status);
int setRecordStatus(TOVO_Sensor &h, const RecordFamily &f, unsigned int recordNumber, unsigned int status);

}  // namespace velmio

#endif
