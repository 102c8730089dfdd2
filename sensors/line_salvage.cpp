#include "sensors/line_salvage.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "platform/files.h"
#include "platform/stdio_file.h"
#include "sensors/profile_cursor.h"
#include "sensors/profile_records.h"
#include "sensors/record_family.h"
#include "sensors/side_scan_records.h"
#include "sensors/side_scan_trace.h"
#include "sensors/simple_families.h"

#include <cstdio>
#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace velmio {
namespace {

constexpr int kNotFound = 5000046;
constexpr int kSalvageCloseFailed = 5029107;
// Room for the largest record, profile header or beam of any family.
constexpr unsigned kWords = kMaxProfileRecordWords > kMaxRecordWords ? kMaxProfileRecordWords : kMaxRecordWords;
constexpr std::uint64_t kTraceStart = 16;  // behind the trace file's validation record
constexpr std::uint64_t kTraceBytes = 4 * kSideScanTraceWords;

struct Layout {
    const EngineFamily *family = nullptr;
    const ProfileFamily *profiles = nullptr;  // null: fixed-size records
    int valueKind = 0;                        // simple sensor: 0 metres, 1 radians
};

bool lookUp(std::uint32_t id, Layout &out) {
#define VELMIO_SIMPLE_LAYOUT(P, ID, KIND)             \
    if (id == ID) {                                   \
        out = {&simpleSensorRecords(), nullptr, KIND}; \
        return true;                                  \
    }
    VELMIO_SIMPLE_FAMILIES(VELMIO_SIMPLE_LAYOUT)
#undef VELMIO_SIMPLE_LAYOUT
    const ProfileFamily *p = id == 4 || id == 53 ? &observedDepthsProfiles()
                             : id == 30          ? &slantRangeProfiles()
                             : id == 52          ? &tpeProfiles()
                             : id == 0           ? &processedDepthsProfiles()
                                                 : sideScanProfiles(id);
    if (p) out = {p, p, 0};
    else if (id == 3 || id == 12) out = {&navigationRecords(), nullptr, 0};  // navigation and its twin
    else return false;
    return true;
}

// The handle the salvage works through: SensorOpenDir's paths and data
// file, with no family state of its own; closed and freed however it ends.
struct Handle {
    TOVO_Sensor *h = nullptr;
    ~Handle() {
        if (!h) return;
        if (h->dataFile) platform::closeFile(h->dataFile);
        h->dataFile = nullptr;
        SensorFree(h);
    }
};

void dropSegments(TOVO_Sensor &h) {
    for (_TOVO_LnSeg *s = h.firstSegment; s;) {
        _TOVO_LnSeg *next = s->next;
        delete s;
        s = next;
    }
    h.firstSegment = h.lastSegment = nullptr;
    h.segmentCount = 0;
}

// A segment file is intact when it reads and its segments follow one
// another from record 1 to the last whole record.
void loadSegments(TOVO_Sensor &h, const SegmentFileFormat &format, const SalvageOptions &options, SalvageReport &r) {
    int rc = kNotFound;
    if (platform::pathExists(h.segmentPath.c_str())) {
        try {
            rc = readLineSegmentFile(h, format);
        } catch (const std::bad_alloc &) {
            rc = kNoMemory;
        }
    }
    std::uint32_t next = 1;
    for (const _TOVO_LnSeg *s = h.firstSegment; rc == 0 && s; s = s->next) {
        if (s->firstRecord != next || s->lastRecord + 1 < s->firstRecord) rc = kNotFound;
        next = s->lastRecord + 1;
    }
    r.segmentsValid = rc == 0 && next == r.wholeRecords + 1;
    r.segmentsKept = r.segmentsValid && options.keepIntactSegments;
    if (!r.segmentsKept) dropSegments(h);
}

void widenBy(Extent &e, const Extent &by) {
    if (by.min < e.min) e.min = by.min;
    if (by.max > e.max) e.max = by.max;
}

// Walks the segments alongside the records: every bound starts empty and is
// widened by each record's, the summary's and the record's segment's.
class SegmentCursor {
public:
    explicit SegmentCursor(TOVO_Sensor &h) : h_(h), at_(h.firstSegment) {
        for (_TOVO_LnSeg *s = h.firstSegment; s; s = s->next)
            for (Extent &e : s->extents) e = Extent{};
        for (Extent &e : h.extents) e = Extent{};
    }
    void widen(std::uint32_t record, const Extent *bounds) {
        while (at_ && at_->lastRecord < record) at_ = at_->next;
        for (int k = 0; k < kMaxExtents; ++k) {
            widenBy(h_.extents[k], bounds[k]);
            if (at_) widenBy(at_->extents[k], bounds[k]);
        }
    }

private:
    TOVO_Sensor &h_;
    _TOVO_LnSeg *at_;
};

// Words of a record, header or beam at offset; false past the end of the file.
bool wordsAt(EngineState &s, std::uint64_t offset, unsigned bytes, std::uint32_t *words) {
    const unsigned char *p = bytes <= 4 * kWords ? s.window.at(*s.source, offset, bytes) : nullptr;
    if (!p) return false;
    for (unsigned i = 0; i < bytes / 4; ++i) words[i] = loadBe32(p + 4 * i);
    return true;
}

class Salvage {
public:
    Salvage(TOVO_Sensor &h, EngineState &s, const Layout &layout, const SalvageOptions &options, SalvageReport &r)
        : h_(h), s_(s), f_(*layout.family), profiles_(layout.profiles), options_(options), r_(r) {}

    int run() {
        // Words that do not decode stay zero, which no usable summary holds.
        h_.timeScale = h_.positionScale = s_.depthTimeScale = 0;
        r_.summaryValid = readSummary(h_, s_) == 0;
        for (int i = 0; i < f_.summaryWordCount; ++i) {
            const SummaryWord w = f_.summary[i].word;
            if ((w == SummaryWord::TimeScale && h_.timeScale <= 0) ||
                (w == SummaryWord::PositionScale && h_.positionScale <= 0) ||
                (w == SummaryWord::DepthTimeScale && s_.depthTimeScale <= 0))
                return kSalvageNoReferences;
        }
        if (h_.timeScale <= 0) return kSalvageNoReferences;
        r_.summaryRecords = h_.recordCount;
        r_.summaryEnd = f_.dataStart() + std::uint64_t{h_.recordCount} * s_.geometry.headerBytes +
                        std::uint64_t{s_.itemCount} * s_.geometry.itemBytes;
        findWholeRecords();
        if (options_.tailOnly) return 0;
        if (int rc = measureTrace()) return rc;
        loadSegments(h_, f_.segments, options_, r_);
        if (int rc = walk()) return rc;
        return options_.dryRun ? 0 : write();
    }

private:
    // Records are whole when they, and every beam a profile header
    // declares, are in the file; the first that is not ends the line.
    // Offsets are 32-bit in the time index: what lies beyond cannot be indexed.
    void findWholeRecords() {
        const RecordGeometry &g = s_.geometry;
        std::uint64_t offset = f_.dataStart();
        if (options_.tailOnly && r_.summaryValid) {
            offset = r_.summaryEnd;
            r_.wholeRecords = r_.summaryRecords;
            r_.beams = s_.itemCount;
        }
        std::uint32_t header[kWords] = {};
        while (offset <= 0xFFFFFFFFu && r_.wholeRecords < 0xFFFFFFFFu && wordsAt(s_, offset, g.headerBytes, header)) {
            std::uint32_t beams = 0;
            std::int32_t time = 0;
            itemsAndTime(header, beams, time);
            const std::uint64_t end = offset + g.headerBytes + std::uint64_t{beams} * g.itemBytes;
            if (end > r_.dataBytes) break;
            offsets_.push_back(static_cast<std::uint32_t>(offset));
            ++r_.wholeRecords;
            r_.beams += beams;
            offset = end;
        }
        r_.wholeBytes = offset;
        r_.droppedBytes = r_.dataBytes - offset;
    }

    // Records: status, time, then the extents' units in order. Profiles:
    // status, layout, time, unless the family lays its header out otherwise.
    void itemsAndTime(const std::uint32_t *header, std::uint32_t &items, std::int32_t &time) const {
        if (profiles_ && profiles_->headerItemsAndTime) return profiles_->headerItemsAndTime(header, items, time);
        items = !profiles_ ? 0 : s_.geometry.countOnlyLayout ? header[1] : header[1] >> 16;
        time = static_cast<std::int32_t>(profiles_ ? header[2] : header[1]);
    }

    // Trace records follow the profiles they trace, in order: a partial one
    // at the end and those of profiles cut off go. A trace file without a
    // whole validation record is left as found.
    int measureTrace() {
        std::FILE *trace = h_.traceFile;
        const std::int64_t size = trace ? platform::fileSize(trace) : -1;
        if (size < static_cast<std::int64_t>(kTraceStart)) return 0;
        std::uint64_t keep = (static_cast<std::uint64_t>(size) - kTraceStart) / kTraceBytes;
        for (unsigned char word[4]; keep > 0; --keep) {
            const auto at = static_cast<long>(kTraceStart + (keep - 1) * kTraceBytes);
            if (platform::seekFile(trace, at, SEEK_SET) != 0 || platform::readFile(word, 1, 4, trace) != 4)
                return kTraceFailed;
            if (loadBe32(word) <= r_.wholeRecords) break;
        }
        traceKept_ = kTraceStart + keep * kTraceBytes;
        r_.traceDroppedBytes = static_cast<std::uint64_t>(size) - traceKept_;
        return 0;
    }

    // The time index entries and every bound, from the records; an existing
    // index is intact when it maps exactly the records found.
    int walk() {
        const RecordGeometry &g = s_.geometry;
        bool sameIndex = platform::pathExists(h_.timeIndexPath.c_str()) &&
                         h_.timeIndex.read(h_.timeIndexPath.c_str(), h_.typeId) == 0 &&
                         h_.timeIndex.entryCount() == r_.wholeRecords;
        SegmentCursor cursor(h_);
        std::uint32_t header[kWords] = {}, beam[kWords] = {};
        for (std::uint32_t n = 1; n <= r_.wholeRecords; ++n) {
            const std::uint32_t at = offsets_[n - 1];
            if (!wordsAt(s_, at, g.headerBytes, header)) return f_.code(kReadFailed);
            std::uint32_t items = 0;
            std::int32_t time = 0;
            itemsAndTime(header, items, time);
            const TOVO_TmIdxEntry *e = sameIndex ? h_.timeIndex.entry(n) : nullptr;
            sameIndex = e && e->encodedTime == time && e->byteOffset == at;
            if (index_.append(time, at) != 0) return kNoMemory;
            Extent bounds[kMaxExtents];
            if (!profiles_) {
                for (int k = 0; k < f_.segments.extentCount; ++k) {
                    const double v = decodeExtent(h_, f_.segments.kinds[k], static_cast<std::int32_t>(header[1 + k]));
                    bounds[k] = {v, v};
                }
            } else {
                auto &ps = static_cast<ProfileState &>(s_);
                ps.profileTime = TOVO_DecodeTime(h_.referenceTime, h_.timeScale, time);
                if (profiles_->headerTimeBound) bounds[0] = {ps.profileTime, ps.profileTime};
                std::uint64_t beamAt = std::uint64_t{at} + g.headerBytes;
                for (std::uint32_t b = 0; b < items; ++b, beamAt += g.itemBytes) {
                    if (!wordsAt(s_, beamAt, g.itemBytes, beam)) return f_.code(kReadFailed);
                    profiles_->widenByBeam(ps, beam, bounds);
                }
            }
            cursor.widen(n, bounds);
        }
        r_.timeIndexValid = sameIndex;
        return 0;
    }

    // The data file cut to its whole records and pushed to the disk with its
    // summary, then the segment file (the kept segments, or one recovered
    // segment) and the time index.
    int write() {
        h_.recordCount = r_.wholeRecords;
        s_.itemCount = static_cast<std::uint32_t>(r_.beams);
        if (r_.droppedBytes && !platform::truncateFile(h_.dataFile, r_.wholeBytes)) return f_.code(kWriteFailed);
        if (int rc = writeSummaryBlock(h_, s_)) return rc;
        if (platform::syncFile(h_.dataFile) != 0) return f_.code(kWriteFailed);
        if (r_.traceDroppedBytes &&
            (!platform::truncateFile(h_.traceFile, traceKept_) || platform::syncFile(h_.traceFile) != 0))
            return kTraceFailed;
        if (!r_.segmentsKept && r_.wholeRecords > 0) {
            if (int rc = beginSegment(h_, options_.recoveredSegmentName, 1)) return rc;
            h_.lastSegment->lastRecord = r_.wholeRecords;
            for (int k = 0; k < kMaxExtents; ++k) h_.lastSegment->extents[k] = h_.extents[k];
        }
        r_.segmentsWritten = h_.segmentCount;
        if (int rc = writeSegments(h_, s_)) return rc;
        h_.timeIndex = std::move(index_);
        return h_.timeIndex.write(h_.timeIndexPath.c_str(), h_.typeId, h_.formatVersion);
    }

    TOVO_Sensor &h_;
    EngineState &s_;
    const EngineFamily &f_;
    const ProfileFamily *profiles_;
    const SalvageOptions &options_;
    SalvageReport &r_;
    std::vector<std::uint32_t> offsets_;  // of the whole records
    std::uint64_t traceKept_ = 0;
    TimeIndex index_;
};

}  // namespace

bool canSalvage(std::uint32_t typeId) {
    Layout layout;
    return lookUp(typeId, layout);
}

const std::uint32_t *salvageTypeIds(std::size_t &count) {
#define VELMIO_SIMPLE_ID(P, ID, KIND) ID,
    // 20 stands for every kind in a "SideScan" file (9, 10, 15, 20).
    static const std::uint32_t ids[] = {VELMIO_SIMPLE_FAMILIES(VELMIO_SIMPLE_ID) 3, 12, 4,  53,
                                        30, 52, 0, 20, 13, 19, 32787};
#undef VELMIO_SIMPLE_ID
    count = sizeof ids / sizeof ids[0];
    return ids;
}

bool salvageTypeId(const wchar_t *name, std::uint32_t &typeId) {
    std::size_t count = 0;
    const std::uint32_t *ids = salvageTypeIds(count);
    for (std::size_t i = 0; name && i < count; ++i)
        if (std::wcscmp(sensorName(ids[i]), name) == 0) {
            typeId = ids[i];
            return true;
        }
    return false;
}

std::uint32_t sideScanFileType(const wchar_t *lineDirectory) {
    if (!lineDirectory) return 0;
    std::FILE *file = platform::openFile((std::wstring(lineDirectory) + L"/SideScan").c_str(), "rb");
    if (!file) return 0;
    unsigned char bytes[8];
    const bool read = platform::readFile(bytes, 1, 8, file) == 8;
    platform::closeFile(file);
    const std::uint32_t type = read ? loadBe32(bytes + 4) : 0;
    return type == 9 || type == 10 || type == 15 || type == 20 ? type : 0;
}

int salvageLine(const wchar_t *lineDirectory, std::uint32_t typeId, const SalvageOptions &options,
                SalvageReport &report) {
    report = SalvageReport{};
    // A "SideScan" file is salvaged as the kind its validation record names.
    if (typeId == 9 || typeId == 10 || typeId == 15 || typeId == 20)
        if (const std::uint32_t recorded = sideScanFileType(lineDirectory)) typeId = recorded;
    report.typeId = typeId;
    Layout layout;
    if (!lookUp(typeId, layout)) return kSalvageUnknownFamily;
    int rc = 0;
    Handle handle;
    const bool readOnly = options.dryRun || options.tailOnly;
    // ELAC side scan has no name of its own: it lives in the type-20 file.
    handle.h = SensorOpenDir(lineDirectory, typeId == 15 ? 20 : typeId, readOnly ? L"query" : L"update", &rc);
    if (!handle.h) return rc;
    TOVO_Sensor &h = *handle.h;
    if (typeId == 15) h.typeId = 15;
    h.encodeValue = layout.valueKind ? TOVO_EncodeRadians : TOVO_EncodeMeters;
    h.decodeValue = layout.valueKind ? TOVO_DecodeRadians : TOVO_DecodeMeters;
    const std::int64_t size = platform::fileSize(h.dataFile);
    if (size < 0) return kSalvageNoReferences;
    report.dataBytes = static_cast<std::uint64_t>(size);
    try {
        std::unique_ptr<EngineState> state(layout.profiles ? new ProfileState(*layout.profiles)
                                                           : new EngineState(*layout.family));
        state->source.reset(new FileSource(fileno(h.dataFile)));
        rc = Salvage(h, *state, layout, options, report).run();
    } catch (const std::bad_alloc &) {
        rc = kNoMemory;
    }
    if (platform::closeFile(h.dataFile) != 0 && rc == 0) rc = kSalvageCloseFailed;
    h.dataFile = nullptr;
    return rc;
}

}  // namespace velmio
