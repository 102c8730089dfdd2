// The line segment file of every family: validation record, segment count,
// then per segment its status, name, record range and the family's extents.
// Families differ only in which extents they keep and in their codes and
// messages, which they describe with a SegmentFileFormat.
#ifndef VELMIO_LINESTORE_LINE_SEGMENT_FILE_H
#define VELMIO_LINESTORE_LINE_SEGMENT_FILE_H

#include "linestore/sensor.h"
#include "platform/system_error.h"

#include <vector>

namespace velmio {

// How an extent travels: times against the reference time and time scale,
// values through the handle's value encoder, latitudes and longitudes against
// their reference positions and the position scale, metres as millimetres,
// error estimates as thousandths truncated toward zero, whole numbers (side
// scan amplitudes) as they are.
enum class ExtentKind { Time, Value, Latitude, Longitude, Metres, Thousandths, Whole };

int encodeExtent(const TOVO_Sensor &h, ExtentKind kind, double v);
double decodeExtent(const TOVO_Sensor &h, ExtentKind kind, int unit);

struct SegmentFileFormat {
    int extentCount;                       // pairs per segment, extents[0..n)
    ExtentKind kinds[kMaxExtents];
    int cannotOpen;                        // when openErrors is null
    const platform::OpenFailureCodes *openErrors;  // errno-mapped codes and messages
    int invalid;                           // reading: anything unreadable
    int notWritten;                        // writing: anything not encoded
    int closeFailed;
    // Messages printed when reading fails (null prints nothing): the
    // validation record or count, a segment allocation, the close, and one
    // per field in file order (status, name length, name, first, last, then
    // each extent unit).
    const char *streamMessage;
    const char *allocMessage;
    const char *closeMessage;
    const char *const *fieldMessages;
};

// Replaces the line segment file with the handle's segments.
int writeLineSegmentFile(TOVO_Sensor &h, const SegmentFileFormat &format);
// Appends the file's segments to the handle. Counts and name lengths are
// checked against the file size before anything is allocated from them.
int readLineSegmentFile(TOVO_Sensor &h, const SegmentFileFormat &format);
// The same from the file's bytes (the XDR decoder takes them mutable).
int parseLineSegments(TOVO_Sensor &h, const SegmentFileFormat &format, std::vector<unsigned char> &bytes);

// Starts a segment named name whose first record is firstRecord (create mode
// checks are the family's). 0 or 5000009.
int beginSegment(TOVO_Sensor &h, const wchar_t *name, std::uint32_t firstRecord);

}  // namespace velmio

#endif
