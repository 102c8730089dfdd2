// Texts the subcommands share: times, numbers, JSON strings and status texts,
// all independent of the locale.
#ifndef VELMIO_TOOLS_FORMAT_H
#define VELMIO_TOOLS_FORMAT_H

#include "families.h"

#include <string>

namespace velmio::tool {

// "2004-123 12:00:00.000" (year and day of year, UTC), or "-" outside 1980..3000.
std::string dayOfYearText(double utcs80);
// "2004-05-02T12:00:00.000Z", or "" outside 1980..3000.
std::string isoText(double utcs80);
// Shortest text that reads back as the same double; "null" when not finite.
std::string number(double value);
// value in the unit the tool shows: degrees for radians, else unchanged.
double shown(double value, ColumnType type);
// A JSON string literal of UTF-8 text.
std::string jsonString(const std::string &text);
// A CSV field, quoted when it holds a separator, quote or line end.
std::string csvField(const std::string &text);
// The library's name of a status word's state ("Accept", ...).
std::string statusText(unsigned int status);

}  // namespace velmio::tool

#endif
