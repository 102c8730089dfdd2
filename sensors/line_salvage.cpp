#include "sensors/line_salvage.h"

#include <velmio/linestore.h>

#include "platform/files.h"
#include "platform/stdio_file.h"
#include "sensors/salvage_steps.h"
#include "sensors/simple_families.h"

#include <cwchar>
#include <new>

namespace velmio {
namespace {

constexpr int kNoMemory = 5000009;
constexpr int kNotFound = 5000046;
constexpr int kCloseFailed = 5029107;

// The handle the salvage works through: SensorOpenDir's paths and data
// file, without a family state; closed and freed however the salvage ends.
struct Handle {
    TOVO_Sensor *h = nullptr;
    ~Handle() {
        if (!h) return;
        if (h->dataFile) platform::closeFile(h->dataFile);
        h->dataFile = nullptr;
        SensorFree(h);
    }
};

bool coversExactly(const TOVO_Sensor &h, std::uint32_t records) {
    std::uint32_t next = 1;
    for (const _TOVO_LnSeg *s = h.firstSegment; s; s = s->next) {
        if (s->firstRecord != next || s->lastRecord + 1 < s->firstRecord) return false;
        next = s->lastRecord + 1;
    }
    return next == records + 1;
}

void dropSegments(TOVO_Sensor &h) {
    for (_TOVO_LnSeg *s = h.firstSegment; s;) {
        _TOVO_LnSeg *next = s->next;
        delete s;
        s = next;
    }
    h.firstSegment = h.lastSegment = nullptr;
    h.segmentCount = 0;
}

void widenBy(Extent &e, const Extent &by) {
    if (by.min < e.min) e.min = by.min;
    if (by.max > e.max) e.max = by.max;
}

}  // namespace

void loadSegments(TOVO_Sensor &h, const SegmentFileFormat &format, const SalvageOptions &options,
                  SalvageReport &report) {
    int rc = kNotFound;
    if (platform::pathExists(h.segmentPath.c_str())) {
        try {
            rc = readLineSegmentFile(h, format);
        } catch (const std::bad_alloc &) {
            rc = kNoMemory;
        }
    }
    report.segmentsValid = rc == 0 && coversExactly(h, report.wholeRecords);
    report.segmentsKept = report.segmentsValid && options.keepIntactSegments;
    if (!report.segmentsKept) dropSegments(h);
}

SegmentCursor::SegmentCursor(TOVO_Sensor &h) : h_(h), at_(h.firstSegment) {
    for (_TOVO_LnSeg *s = h.firstSegment; s; s = s->next)
        for (Extent &e : s->extents) e = Extent{};
    for (Extent &e : h.extents) e = Extent{};
}

void SegmentCursor::widen(std::uint32_t record, const Extent *bounds) {
    while (at_ && at_->lastRecord < record) at_ = at_->next;
    for (int k = 0; k < kMaxExtents; ++k) {
        widenBy(h_.extents[k], bounds[k]);
        if (at_) widenBy(at_->extents[k], bounds[k]);
    }
}

IndexComparison::IndexComparison(TOVO_Sensor &h)
    : h_(h), same_(platform::pathExists(h.timeIndexPath.c_str()) &&
                   h.timeIndex.read(h.timeIndexPath.c_str(), h.typeId) == 0) {}

void IndexComparison::record(std::uint32_t n, std::int32_t time, std::uint32_t offset) {
    if (!same_) return;
    const TOVO_TmIdxEntry *e = h_.timeIndex.entry(n);
    same_ = e && e->encodedTime == time && e->byteOffset == offset;
}

bool IndexComparison::intact(std::uint32_t records) const {
    return same_ && h_.timeIndex.entryCount() == records;
}

int writeSalvage(TOVO_Sensor &h, const SegmentFileFormat &format, TimeIndex &index, const SalvageOptions &options,
                 SalvageReport &report, int writeFailed, const std::function<int()> &writeSummary) {
    if (report.droppedBytes && !platform::truncateFile(h.dataFile, report.wholeBytes)) return writeFailed;
    if (int rc = writeSummary()) return rc;
    if (platform::syncFile(h.dataFile) != 0) return writeFailed;
    // One segment stands for every record when the segment file is lost.
    if (!report.segmentsKept && report.wholeRecords > 0) {
        dropSegments(h);
        if (int rc = beginSegment(h, options.recoveredSegmentName, 1)) return rc;
        h.lastSegment->lastRecord = report.wholeRecords;
        for (int k = 0; k < kMaxExtents; ++k) h.lastSegment->extents[k] = h.extents[k];
    }
    report.segmentsWritten = h.segmentCount;
    try {
        if (int rc = writeLineSegmentFile(h, format)) return rc;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    h.timeIndex = std::move(index);
    return h.timeIndex.write(h.timeIndexPath.c_str(), h.typeId, h.formatVersion);
}

bool canSalvage(std::uint32_t typeId) { return hasRecordLayout(typeId) || hasProfileLayout(typeId); }

const std::uint32_t *salvageTypeIds(std::size_t &count) {
#define VELMIO_SIMPLE_ID(P, ID, KIND) ID,
    static const std::uint32_t ids[] = {VELMIO_SIMPLE_FAMILIES(VELMIO_SIMPLE_ID) 3, 12, 4, 53, 30, 52};
#undef VELMIO_SIMPLE_ID
    count = sizeof ids / sizeof ids[0];
    return ids;
}

std::uint32_t salvageTypeId(const wchar_t *name) {
    std::size_t count = 0;
    const std::uint32_t *ids = salvageTypeIds(count);
    for (std::size_t i = 0; name && i < count; ++i)
        if (std::wcscmp(sensorName(ids[i]), name) == 0) return ids[i];
    return 0;
}

int salvageLine(const wchar_t *lineDirectory, std::uint32_t typeId, const SalvageOptions &options,
                SalvageReport &report) {
    report = SalvageReport{};
    report.typeId = typeId;
    if (!canSalvage(typeId)) return kSalvageUnknownFamily;
    int rc = 0;
    Handle handle;
    handle.h = SensorOpenDir(lineDirectory, typeId, options.dryRun || options.tailOnly ? L"query" : L"update", &rc);
    if (!handle.h) return rc;
    TOVO_Sensor &h = *handle.h;
    const std::int64_t size = platform::fileSize(h.dataFile);
    if (size < 0) return kSalvageNoReferences;
    report.dataBytes = static_cast<std::uint64_t>(size);
    try {
        rc = hasRecordLayout(typeId) ? salvageRecords(h, typeId, options, report)
                                     : salvageProfiles(h, typeId, options, report);
    } catch (const std::bad_alloc &) {
        rc = kNoMemory;
    }
    if (platform::closeFile(h.dataFile) != 0 && rc == 0) rc = kCloseFailed;
    h.dataFile = nullptr;
    return rc;
}

}  // namespace velmio
