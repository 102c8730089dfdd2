// Walking a survey tree (data root, project, vessel, day, line) for the
// subcommands that take any level of it.
#ifndef VELMIO_TOOLS_SURVEY_H
#define VELMIO_TOOLS_SURVEY_H

#include <functional>
#include <string>

namespace velmio::tool {

// Calls visit with the path of every line directory at or under path, in
// name order; visit returns false to stop. A line directory is one that holds
// an entry named after a family or a sound velocity file; the walk does not
// go below it, nor into VesselConfig or hidden directories. Returns the
// number of lines visited. Memory is that of one directory listing per level.
std::size_t forEachLine(const std::string &path, const std::function<bool(const std::string &)> &visit);

// The project, vessel, day and line names of a line path ("" where the path
// is too short to hold them).
struct LineName {
    std::string project, vessel, day, line;
};
LineName lineName(const std::string &path);

}  // namespace velmio::tool

#endif
