// Salvaging a line of a profile family: a profile is whole when its header
// and every beam the header declares are in the data file; the first one
// that is not ends the line.
#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "linestore/byte_source.h"
#include "platform/stdio_file.h"
#include "sensors/profile_cursor.h"
#include "sensors/salvage_steps.h"

#include <vector>

namespace velmio {
namespace {

const ProfileFamily *lookUp(std::uint32_t id) {
    if (id == 4 || id == 53) return &observedDepthsProfiles();
    if (id == 30) return &slantRangeProfiles();
    if (id == 52) return &tpeProfiles();
    return nullptr;
}

// Words of a header or beam at offset, or false past the end of the file.
bool wordsAt(ByteSource &source, ReadWindow &window, std::uint64_t offset, unsigned bytes, std::uint32_t *words) {
    const unsigned char *p = window.at(source, offset, bytes);
    if (!p) return false;
    for (unsigned i = 0; i < bytes / 4; ++i) words[i] = loadBe32(p + 4 * i);
    return true;
}

}  // namespace

bool hasProfileLayout(std::uint32_t openId) { return lookUp(openId) != nullptr; }

int salvageProfiles(TOVO_Sensor &h, std::uint32_t openId, const SalvageOptions &options, SalvageReport &r) {
    const ProfileFamily *family = lookUp(openId);
    if (!family) return kSalvageUnknownFamily;
    const ProfileFamily &f = *family;
    if (TOVO_ReadDataValidationRecord(&h) != 0) return kSalvageNoReferences;
    ProfileState s(f);
    s.formatVersion = h.formatVersion;
    if (s.formatVersion < 2 && f.version1.headerBytes != 0) s.geometry = f.version1;
    const unsigned headerBytes = s.geometry.headerBytes, beamBytes = s.geometry.beamBytes;
    FileSource source(fileno(h.dataFile));
    ReadWindow window;
    std::uint32_t words[kMaxSummaryWords] = {};
    if (!wordsAt(source, window, 16, f.summaryBytes, words) || !f.fromWords(h, words)) return kSalvageNoReferences;
    const std::uint64_t start = 16 + std::uint64_t{f.summaryBytes};
    r.summaryRecords = h.recordCount;
    r.summaryEnd = start + std::uint64_t{h.recordCount} * headerBytes + std::uint64_t{h.familyWords[0]} * beamBytes;
    r.summaryValid = r.summaryEnd <= r.dataBytes;

    // Offsets are 32-bit in the time index: profiles beyond it cannot be indexed.
    std::vector<std::uint32_t> offsets;
    std::uint64_t offset = start;
    const bool tailOnly = options.tailOnly && r.summaryValid;
    if (tailOnly) {
        offset = r.summaryEnd;
        r.wholeRecords = r.summaryRecords;
        r.beams = h.familyWords[0];
    }
    std::uint32_t header[kMaxRecordWords] = {};
    while (offset <= 0xFFFFFFFFu && r.wholeRecords < 0xFFFFFFFFu &&
           wordsAt(source, window, offset, headerBytes, header)) {
        ProfileHeader parsed;
        parseHeader(h, s, header, parsed);
        const std::uint64_t end = offset + headerBytes + std::uint64_t{parsed.beamCount} * beamBytes;
        if (end > r.dataBytes) break;
        offsets.push_back(static_cast<std::uint32_t>(offset));
        ++r.wholeRecords;
        r.beams += parsed.beamCount;
        offset = end;
    }
    r.wholeBytes = offset;
    r.droppedBytes = r.dataBytes - offset;
    if (options.tailOnly) return 0;

    loadSegments(h, f.segments, options, r);
    IndexComparison existing(h);
    TimeIndex index;
    SegmentCursor cursor(h);
    for (std::uint32_t n = 1; n <= r.wholeRecords; ++n) {
        const std::uint32_t at = offsets[n - 1];
        if (!wordsAt(source, window, at, headerBytes, header)) return f.code(kReadFailed);
        ProfileHeader parsed;
        parseHeader(h, s, header, parsed);
        existing.record(n, asSigned(header[2]), at);
        if (index.append(asSigned(header[2]), at) != 0) return kNoMemory;
        s.profileTime = parsed.time;
        Extent bounds[kMaxExtents];
        if (f.headerTimeBound) bounds[0] = {parsed.time, parsed.time};
        std::uint64_t beamAt = std::uint64_t{at} + headerBytes;
        std::uint32_t beam[kMaxRecordWords] = {};
        for (std::uint32_t b = 0; b < parsed.beamCount; ++b, beamAt += beamBytes) {
            if (!wordsAt(source, window, beamAt, beamBytes, beam)) return f.code(kReadFailed);
            f.widenByBeam(h, s, beam, bounds);
        }
        cursor.widen(n, bounds);
    }
    r.timeIndexValid = existing.intact(r.wholeRecords);
    if (options.dryRun) return 0;
    h.recordCount = r.wholeRecords;
    h.familyWords[0] = static_cast<std::uint32_t>(r.beams);
    return writeSalvage(h, f.segments, index, options, r, f.code(kWriteFailed), [&] { return writeSummary(h, s); });
}

}  // namespace velmio
