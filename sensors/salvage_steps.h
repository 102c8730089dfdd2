// The steps every family's salvage shares, over the handle alone: the
// segment file kept or replaced, bounds widened record by record, the
// existing time index compared with the records found, and the rebuilt
// files written. The families' walks (record_salvage.cpp,
// profile_salvage.cpp) use them.
#ifndef VELMIO_SENSORS_SALVAGE_STEPS_H
#define VELMIO_SENSORS_SALVAGE_STEPS_H

#include "linestore/line_segment_file.h"
#include "linestore/sensor.h"
#include "sensors/line_salvage.h"

#include <functional>

namespace velmio {

// The families' walks: kSalvageUnknownFamily for a type id not theirs.
int salvageRecords(TOVO_Sensor &h, std::uint32_t openId, const SalvageOptions &options, SalvageReport &report);
int salvageProfiles(TOVO_Sensor &h, std::uint32_t openId, const SalvageOptions &options, SalvageReport &report);
bool hasRecordLayout(std::uint32_t openId);
bool hasProfileLayout(std::uint32_t openId);

// Reads the segment file into the handle and says whether it is intact: it
// reads and its segments follow one another from record 1 to records. The
// segments are dropped when it is not, or when options do not keep them.
void loadSegments(TOVO_Sensor &h, const SegmentFileFormat &format, const SalvageOptions &options,
                  SalvageReport &report);

// Walks the segments alongside the records: clears every bound, then widens
// the summary's and the record's segment's by each record's bounds.
class SegmentCursor {
public:
    explicit SegmentCursor(TOVO_Sensor &h);
    void widen(std::uint32_t record, const Extent *bounds);

private:
    TOVO_Sensor &h_;
    _TOVO_LnSeg *at_;
};

// An existing time index is intact when it maps exactly the records found.
class IndexComparison {
public:
    explicit IndexComparison(TOVO_Sensor &h);
    void record(std::uint32_t n, std::int32_t time, std::uint32_t offset);
    bool intact(std::uint32_t records) const;

private:
    TOVO_Sensor &h_;
    bool same_;
};

// Cuts the data file to its whole records, writes the summary block
// (writeSummary), pushes the data file to the disk, then writes the segment
// file (the kept segments, or one recovered segment) and the time index.
int writeSalvage(TOVO_Sensor &h, const SegmentFileFormat &format, TimeIndex &index, const SalvageOptions &options,
                 SalvageReport &report, int writeFailed, const std::function<int()> &writeSummary);

}  // namespace velmio

#endif
