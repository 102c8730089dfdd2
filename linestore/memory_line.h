// A sensor of a line whose files are held in memory rather than in a line
// directory: tests and fuzz targets mount one, and every family's open of
// that sensor (query or update) then reads the bytes and saves into them
// with the checks and codes of a file open. Nothing of it touches the disk.
#ifndef VELMIO_LINESTORE_MEMORY_LINE_H
#define VELMIO_LINESTORE_MEMORY_LINE_H

#include "linestore/sensor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmio {

struct MemoryFile {
    bool exists = false;  // a missing file fails its open as on the disk
    std::vector<unsigned char> bytes;

    void assign(const void *data, std::size_t size) {
        const auto *p = static_cast<const unsigned char *>(data);
        bytes.assign(p, p + size);
        exists = true;
    }
};

// The data file and the files named after it: "LineSegments", "TmIdx" and
// (EM100 and EM1000 side scan) "Trace".
struct MemoryLine {
    MemoryFile data, segments, timeIndex, trace;
};

// While it lives, opens on this thread of the sensor named sensorName in
// lineDirectory use line, which must outlive the handles opened from it.
// Only query and update open; other modes are refused (5000021).
class MountedLine {
public:
    MountedLine(const std::wstring &lineDirectory, const wchar_t *sensorName, MemoryLine &line);
    ~MountedLine();
    MountedLine(const MountedLine &) = delete;
    MountedLine &operator=(const MountedLine &) = delete;

private:
    std::wstring dataPath_;
};

// The line mounted for this data file path (directory joined with the
// sensor name), or null.
MemoryLine *mountedLine(const std::wstring &dataPath);

// Loads the handle's time index from its file or its bytes in memory.
int readTimeIndexOf(TOVO_Sensor &h);

}  // namespace velmio

#endif
