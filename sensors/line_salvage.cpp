#include "sensors/line_salvage.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "platform/files.h"
#include "platform/stdio_file.h"
#include "sensors/profile_cursor.h"
#include "sensors/record_family.h"
#include "sensors/simple_families.h"

#include <cwchar>
#include <memory>
#include <new>
#include <vector>

namespace velmio {
namespace {

constexpr int kNotFound = 5000046;
constexpr int kSalvageCloseFailed = 5029107;

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
                                                 : nullptr;
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
    const unsigned char *p = s.window.at(*s.source, offset, bytes);
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
        std::uint32_t header[kMaxRecordWords] = {};
        while (offset <= 0xFFFFFFFFu && r_.wholeRecords < 0xFFFFFFFFu && wordsAt(s_, offset, g.headerBytes, header)) {
            const std::uint32_t beams = profiles_ ? beamCount(header) : 0;
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

    std::uint32_t beamCount(const std::uint32_t *header) const {
        return s_.geometry.countOnlyLayout ? header[1] : header[1] >> 16;
    }

    // The time index entries and every bound, from the records; an existing
    // index is intact when it maps exactly the records found.
    int walk() {
        const RecordGeometry &g = s_.geometry;
        bool sameIndex = platform::pathExists(h_.timeIndexPath.c_str()) &&
                         h_.timeIndex.read(h_.timeIndexPath.c_str(), h_.typeId) == 0 &&
                         h_.timeIndex.entryCount() == r_.wholeRecords;
        SegmentCursor cursor(h_);
        std::uint32_t header[kMaxRecordWords] = {}, beam[kMaxRecordWords] = {};
        for (std::uint32_t n = 1; n <= r_.wholeRecords; ++n) {
            const std::uint32_t at = offsets_[n - 1];
            if (!wordsAt(s_, at, g.headerBytes, header)) return f_.code(kReadFailed);
            // Records: status, time, then the extents' units in order.
            // Profiles: status, layout, time, and the bounds from the beams.
            const auto time = static_cast<std::int32_t>(profiles_ ? header[2] : header[1]);
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
                ProfileHeader parsed;
                parseHeader(h_, ps, header, parsed);
                ps.profileTime = parsed.time;
                if (profiles_->headerTimeBound) bounds[0] = {parsed.time, parsed.time};
                std::uint64_t beamAt = std::uint64_t{at} + g.headerBytes;
                for (std::uint32_t b = 0; b < parsed.beamCount; ++b, beamAt += g.itemBytes) {
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
    TimeIndex index_;
};

}  // namespace

bool canSalvage(std::uint32_t typeId) {
    Layout layout;
    return lookUp(typeId, layout);
}

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
    Layout layout;
    if (!lookUp(typeId, layout)) return kSalvageUnknownFamily;
    int rc = 0;
    Handle handle;
    const bool readOnly = options.dryRun || options.tailOnly;
    handle.h = SensorOpenDir(lineDirectory, typeId, readOnly ? L"query" : L"update", &rc);
    if (!handle.h) return rc;
    TOVO_Sensor &h = *handle.h;
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
