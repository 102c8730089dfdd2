// VELMIOUtils: the shared helpers of the library's C++ interface.
#ifndef VELMIO_UTILS_HPP
#define VELMIO_UTILS_HPP

#include <velmio/export.h>
#include <velmio/morva_string.hpp>

#include <cstddef>

namespace VELMIOUtils {

// Splits a line directory path into data root, project, vessel, day and line.
// '/' and '\' are both separators and one trailing separator is ignored.
// With exactly three separators the root is empty; a path that starts with a
// separator and has nothing before the project gets the root "/" (native).
// The root is returned with native separators. False when the path has fewer
// than three separators (the outputs are then unspecified).
VELMIO_API bool pathToPVDL(const MORVAUString &path, MORVAUString &root, MORVAUString &project,
                           MORVAUString &vessel, MORVAUString &day, MORVAUString &line);

// Joins name to path with exactly one native separator between them: trailing
// separators of path and leading separators of name are dropped. An empty
// path gives the name alone; a path of separators only keeps one ("/name").
VELMIO_API void appendPath(MORVAUString &path, const MORVAUString &name);

// The absolute, "."- and ".."-free form of path (links are not resolved).
// False for an empty path or a result of 512 characters or more.
VELMIO_API bool getCanonicalPath(const MORVAUString &path, MORVAUString &canonical);

// Reads "YYYY-DDD hh:mm:ss" (the first 17 characters) into UTC seconds since
// 1980. Returns 0, or 5100010 with a message on standard output.
VELMIO_API int decodeTime(const char *text, double &time);
VELMIO_API int decodeTime(const wchar_t *text, double &time);

// Translations between the processed and observed depth status words. The
// two directions are deliberately not inverse for words with several bits.
VELMIO_API unsigned int processedStatusToObservedStatus(unsigned int status);
VELMIO_API unsigned int observedStatusToProcessedStatus(unsigned int status);

// The name of a status word's state ("Accept", "Reject (TPU Filter)", ...),
// written into buffer. A rejected word with none of the known reasons leaves
// the buffer unchanged. The texts need at most kStatusTextLength characters
// with the terminator; the capacity-taking forms truncate to fit.
constexpr std::size_t kStatusTextLength = 64;
VELMIO_API void processedStatusToString(unsigned int status, wchar_t *buffer);
VELMIO_API void observedStatusToString(unsigned int status, wchar_t *buffer);
VELMIO_API void processedStatusToString(unsigned int status, wchar_t *buffer, std::size_t capacity);
VELMIO_API void observedStatusToString(unsigned int status, wchar_t *buffer, std::size_t capacity);

}  // namespace VELMIOUtils

#endif
