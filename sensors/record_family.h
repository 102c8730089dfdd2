// The fixed-size-record layout of the record engine (the simple sensor and
// navigation): reading and writing a record at its offset, the status
// shadow and saving statuses. Each family describes its layout, codes and
// messages as a RecordFamily; only the record's own fields are encoded by
// the family.
#ifndef VELMIO_SENSORS_RECORD_FAMILY_H
#define VELMIO_SENSORS_RECORD_FAMILY_H

#include "sensors/record_engine.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace velmio {

// Messages printed while loading the status shadow (null prints nothing).
struct ShadowMessages {
    const char *noMemory, *notMapped, *seekFailed, *readFailed, *notDecodable;
};

struct RecordFamily : EngineFamily {
    ShadowMessages shadow;
    std::uint32_t recordSize() const { return geometry.headerBytes; }
};

// The state of a record family's handle; the families derive their own.
// Records are read with one positioned read each (random), through a
// read-ahead window (sequential and ranged), and written through an append
// buffer.
struct RecordState : EngineState {
    explicit RecordState(const RecordFamily &f) : EngineState(f), records(f) {}

    const RecordFamily &records;
    std::uint64_t nextOffset = 0;  // where ReadSeq reads: behind the last record read
    bool statusChanged = false;    // update: the status shadow holds edits
};

// The tables of the families, for salvaging their lines.
const RecordFamily &simpleSensorRecords();
const RecordFamily &navigationRecords();

// Completes a handle fresh from SensorOpenDir (see openEngine) and, in
// update mode, loads the status shadow. On failure the handle is released
// and the code is returned.
int openRecordFamily(TOVO_Sensor *h, RecordState *state);

// True when records first .. first + count - 1 (count > 0) all exist.
inline bool inRange(const TOVO_Sensor &h, std::uint32_t first, std::uint32_t count) {
    return first >= 1 && std::uint64_t{first} + count - 1 <= h.recordCount;
}

// The byte offset of record n, checked to name a whole record of the data area.
int mapRecord(TOVO_Sensor &h, const RecordFamily &f, std::uint32_t n, std::uint32_t &offset);

// Reads record n into the record buffer with one positioned read.
int readRecordAt(TOVO_Sensor &h, RecordState &s, std::uint32_t n);
// The record behind the last one read (after open: the first), or null with
// *rc set.
const unsigned char *readNextRecord(TOVO_Sensor &h, RecordState &s, int *rc);
// Records first .. first + count - 1 (in range) through the window:
// visit(i, bytes, n) for each run of n records from record first + i
// (readRecords: visit(i, bytes) for each record), stopping at the first
// nonzero return.
template <class VisitBatch>
int readRecordBatches(TOVO_Sensor &h, RecordState &s, std::uint32_t first, std::uint32_t count, VisitBatch visit);
template <class Visit>
int readRecords(TOVO_Sensor &h, RecordState &s, std::uint32_t first, std::uint32_t count, Visit visit);

// Starts a record of the encoded time: its time index entry at the offset
// the record will have, and the room for its bytes at the end of the append
// buffer (filled by the caller, kept with s.appender.commit), or null with
// *rc set.
inline unsigned char *beginRecord(TOVO_Sensor &h, RecordState &s, std::int32_t encodedTime, int *rc) {
    if ((*rc = appendIndexEntry(h, s, encodedTime)) != 0) return nullptr;
    unsigned char *bytes = s.appender.room(s.records.recordSize());
    if (!bytes) *rc = s.family.code(kWriteFailed);
    return bytes;
}

// Widens the summary and the current segment's extents by the raw values.
template <int Count>
void widenExtents(TOVO_Sensor &h, const double (&values)[Count]) {
    _TOVO_LnSeg *segment = h.lastSegment;
    for (int k = 0; k < Count; ++k) {
        h.extents[k].widen(values[k]);
        if (segment) segment->extents[k].widen(values[k]);
    }
}

// A bulk write of records 0 .. count - 1, encoded straight into the append
// buffer a buffer's worth at a time with their time index entries added in
// one go. encode(first, n, bytes, times) writes records first .. first + n - 1
// and their encoded times;
// fields are the raw values widening the extents, in extent order.
// writeOne(i) is the per-record write: it takes the first record of a line
// (which fixes the references) and every record the batch path cannot
// (a failing flush, offsets near 4 GiB), so that codes and counts on
// failure are those of the per-record path.
template <int Fields, class Encode, class WriteOne>
int appendRecords(TOVO_Sensor &h, RecordState &s, std::uint32_t count, const double *const (&fields)[Fields],
                  Encode encode, WriteOne writeOne) {
    const std::uint32_t size = s.records.recordSize();
    constexpr std::uint32_t kMostPerBatch = kWindowBytes / 12;  // the smallest record is 12 bytes
    const std::uint32_t perBatch = std::min<std::uint32_t>(kMostPerBatch, kWindowBytes / size);
    std::int32_t times[kMostPerBatch];
    std::uint32_t i = 0;
    while (i < count) {
        const std::uint32_t batch = std::min(perBatch, count - i);
        const std::uint64_t at = s.appender.offset();
        unsigned char *p = nullptr;
        if (!s.firstRecordPending && at + std::uint64_t{batch - 1} * size <= 0xFFFFFFFFu)
            p = s.appender.room(std::size_t{batch} * size);
        if (!p) {
            if (int rc = writeOne(i)) return rc;
            ++i;
            continue;
        }
        encode(i, batch, p, times);
        const std::uint32_t kept =
            h.timeIndex.appendRun(times, batch, static_cast<std::uint32_t>(at), size);
        s.appender.commit(std::size_t{kept} * size);
        h.recordCount += kept;
        s.written += kept;
        _TOVO_LnSeg *segment = h.lastSegment;
        for (int k = 0; k < Fields; ++k) {
            Extent e;
            for (std::uint32_t j = 0; j < kept; ++j) e.widen(fields[k][i + j]);
            h.extents[k].widen(e);
            if (segment) segment->extents[k].widen(e);
        }
        i += kept;
        // The index ran out of memory: the next record fails as it would alone.
        if (kept < batch) return writeOne(i);
    }
    return 0;
}

int saveStatusToDisk(TOVO_Sensor &h, RecordState &s);
// Finishes and releases the handle whatever happens; the first failure's code.
int closeRecordFamily(TOVO_Sensor *h, RecordState &s);

// Where record first + i of a range starts. The index maps the first and the
// last; records in between are contiguous in any file the index agrees
// with, and any other range is mapped record by record.
int rangeStart(TOVO_Sensor &h, const RecordFamily &f, std::uint32_t first, std::uint32_t count,
               std::uint32_t &offset, bool &contiguous);

template <class VisitBatch>
int readRecordBatches(TOVO_Sensor &h, RecordState &s, std::uint32_t first, std::uint32_t count, VisitBatch visit) {
    const RecordFamily &f = s.records;
    const std::uint32_t size = f.recordSize();
    // Each call reads afresh: what another process or this handle changed
    // since is seen.
    s.window.invalidate();
    std::uint32_t offset = 0;
    bool contiguous = false;
    if (int rc = rangeStart(h, f, first, count, offset, contiguous)) return rc;
    // Contiguous records come a large window at a time; others one by one.
    const std::uint32_t perWindow = contiguous ? static_cast<std::uint32_t>(kBulkWindowBytes / size) : 1;
    std::uint64_t at = offset;
    for (std::uint32_t i = 0; i < count;) {
        if (!contiguous && i > 0) {
            std::uint32_t mapped = 0;
            if (int rc = mapRecord(h, f, first + i, mapped)) return rc;
            at = mapped;
        }
        const std::uint32_t batch = std::min(perWindow, count - i);
        const std::size_t bytes = std::size_t{batch} * size;
        const unsigned char *p = s.window.at(*s.source, at, bytes, bytes);
        if (!p) return f.code(kReadFailed);
        if (int rc = visit(i, p, batch)) return rc;
        i += batch;
        at += bytes;
        s.nextOffset = at;
    }
    return 0;
}

template <class Visit>
int readRecords(TOVO_Sensor &h, RecordState &s, std::uint32_t first, std::uint32_t count, Visit visit) {
    const std::uint32_t size = s.records.recordSize();
    return readRecordBatches(h, s, first, count, [&](std::uint32_t i, const unsigned char *p, std::uint32_t n) {
        for (std::uint32_t j = 0; j < n; ++j, p += size)
            if (int rc = visit(i + j, p)) return rc;
        return 0;
    });
}

// The arithmetic of TOVO_DecodeTime and TOVO_DecodePosition inline, for the
// record loops: the same operations in the same order give the same values.
inline double decodeTime(const TOVO_Sensor &h, std::int32_t unit) {
    return static_cast<double>(unit) / h.timeScale + h.referenceTime * 60.0;
}
// TOVO_EncodePosition against a reference of the handle, inline likewise.
inline std::int32_t encodePosition(const TOVO_Sensor &h, double position, std::int32_t reference) {
    return nint((position - reference * 1e-7) / (h.positionScale * 1e-9));
}
inline double decodePosition(std::int32_t reference, std::int32_t scale, std::int32_t unit) {
    return static_cast<double>(unit) * scale * 1e-9 + reference * 1e-7;
}

int beginLineSegment(TOVO_Sensor &h, const RecordFamily &f, const wchar_t *sourceName);
int endLineSegment(TOVO_Sensor &h, const RecordFamily &f, unsigned int status);
int setLineSegmentStatus(TOVO_Sensor &h, const RecordFamily &f, int segmentNumber, unsigned int status);
int setRecordStatus(TOVO_Sensor &h, RecordState &s, unsigned int recordNumber, unsigned int status);

}  // namespace velmio

#endif
