// The sensor families the tool knows, one table entry each: how to open,
// summarise and read one. info, dump and export only walk this table, so a
// new family is one entry in families.cpp.
#ifndef VELMIO_TOOLS_FAMILIES_H
#define VELMIO_TOOLS_FAMILIES_H

#include <velmio/export.h>

#include <memory>
#include <string>
#include <vector>

namespace velmio::tool {

enum class Kind { Simple, Navigation, Profile };
// How a column's numbers are shown: times get ISO 8601 and seconds since
// 1980, radians become degrees, statuses get the library's status text.
enum class ColumnType { Count, Time, Radians, Metres, Value, Status };

struct Column {
    const char *name;
    ColumnType type;
};

struct Extent {
    const char *name;  // "lat", "depth", ...
    ColumnType type;   // Radians or Metres
    double min, max;
};

struct Summary {
    unsigned int segments = 0, records = 0, beams = 0;  // records: fixes, records or profiles
    double minTime = 0, maxTime = 0;
    unsigned int status = 0;
    std::vector<Extent> extents;
};

struct Segment {
    std::string name;
    unsigned int first = 0, last = 0;
    double minTime = 0, maxTime = 0;
    unsigned int status = 0;
};

// Reads rows of a family in chunks; a profile family gives one row per beam
// with its profile's fields in front.
class RowReader {
public:
    virtual ~RowReader() = default;
    virtual const std::vector<Column> &columns() const = 0;
    // Fills rows (row-major, columns().size() values each) with at most
    // maxRows rows; an empty result is the end. 0 or the library's code.
    virtual int next(std::vector<double> &rows, std::size_t maxRows) = 0;
};

struct Family {
    const char *name;     // also the data file's name in the line directory
    unsigned int typeId;
    Kind kind;
    const char *unitName;  // what a record is: "fixes", "records", "pings"
    TOVO_Sensor *(*open)(const wchar_t *line, const wchar_t *token, int *error);
    int (*close)(TOVO_Sensor *);
    int (*summarise)(TOVO_Sensor *, Summary &);
    int (*segment)(TOVO_Sensor *, int number, Segment &);
    // Rows first..last (records, or profiles of a profile family), counted from 1.
    std::unique_ptr<RowReader> (*reader)(TOVO_Sensor *, unsigned int first, unsigned int last);
    const char *itemName = "beams";  // what a profile holds: beams, or side scan samples
};

const std::vector<Family> &families();
// Opens the line's "SideScan" files with the opener of the kind they hold.
TOVO_Sensor *openSideScan(const wchar_t *line, const wchar_t *token, int *error);
const Family *findFamily(const std::string &name);

// No data file of that sensor in the line: not an error for a survey walk.
constexpr int kSensorMissing = 5000046;
constexpr double kDegree = 0.017453292519943295;

}  // namespace velmio::tool

#endif
