// The survey lines the I/O benchmarks read: one per family and size, written
// through the per-record API once per run, and the byte layout of each family
// that the raw-limit passes read and write without the library.
#ifndef VELMIO_BENCH_SURVEY_LINES_H
#define VELMIO_BENCH_SURVEY_LINES_H

#include <velmio/export.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace velmio::bench {

enum class Family { Gyro, Navigation, ObservedDepths, TPE };

// Beams per ping of the profile families: a multibeam's swath.
constexpr std::size_t kBeamsPerProfile = 512;
constexpr std::size_t kSmallLine = 10000;
// A new line segment every million records, as a logger starting a new raw file.
constexpr std::size_t kSegmentRecords = 1000000;
constexpr std::size_t kLargeLine = 10000000;

// Where records lie in a data file; profile families have a header per ping
// followed by kBeamsPerProfile beams of recordBytes each.
struct Layout {
    const char *stem;  // data file name; "TmIdx" appended names the time index
    std::size_t dataOffset;
    std::size_t recordBytes;
    std::size_t headerBytes;  // 0 for one-record-per-entry families
};
const Layout &layoutOf(Family family);

// The summary words a raw decoder needs, read from a data file's first bytes.
struct Scales {
    double timeScale = 1000, referenceTime = 0, depthTimeScale = 1000;
    double positionScale = 1, referenceLatitude = 0, referenceLongitude = 0;
};
Scales scalesOf(Family family, const unsigned char *head);

// Records of a line: beams for the profile families.
std::size_t profilesFor(Family family, std::size_t records);

// Writes a line of that many records through the per-record write calls.
void writeLine(Family family, const std::wstring &directory, std::size_t records);

// The values record i (from 0) of a written line carries.
double recordTime(std::size_t i);
double recordValue(std::size_t i);
std::uint32_t recordStatus(std::size_t i);

struct Line {
    std::string directory;
    std::wstring wdirectory;
    std::string dataFile, indexFile;
    std::size_t records = 0;
};
// The line of that family and size for this run, written and read once on first use.
const Line &line(Family family, std::size_t records);

// Opens a line with the family's OpenDir; cacheSize sets VelmIOCacheSize
// for the open (null unsets it).
TOVO_Sensor *openLine(Family family, const std::wstring &directory, const wchar_t *mode,
                      const char *cacheSize = nullptr);
int closeLine(Family family, TOVO_Sensor *handle);

// Throws when a call the benchmarks rely on fails: a run without its data measures nothing.
void require(int rc, const char *what);

// Registers a benchmark taking (records, cache) for both line sizes; cached
// adds the runs with VelmIOCacheSize set, named name + "+cache".
void addForLines(const std::string &name, void (*run)(benchmark::State &), bool cached = false);

}  // namespace velmio::bench

#endif
