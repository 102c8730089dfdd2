// The platform error numbers of the library's open-failure messages.
#ifndef VELMIO_PLATFORM_SYSTEM_ERROR_H
#define VELMIO_PLATFORM_SYSTEM_ERROR_H

#include <string>

namespace velmio::platform {

enum PlatformError {
    kNoError = 0,
    kFileNotFound = 2,
    kTooManyOpenFiles = 4,
    kAccessDenied = 5,
    kNotEnoughMemory = 8,
};

// errno to the platform error number: ENOENT 2, EMFILE/ENFILE 4,
// EACCES/EPERM 5, ENOMEM/ENOSPC 8, 0 stays 0; anything else is returned as
// errno + 1000 so that it falls into the "any other" case.
int platformError(int errnum);
// The system's message text for errno (strerror).
std::string systemMessage(int errnum);

// Prints the open-failure message for path and errnum and returns the code of
// the matching row: codes[0] not found, [1] too many files, [2] access denied,
// [3] no space, [4] any other (printed with the system's text when
// printOther). A zero errnum prints nothing and returns fallback.
struct OpenFailureCodes {
    int notFound, tooManyFiles, accessDenied, noSpace, other;
};
int reportOpenFailure(const std::string &path, int errnum, const OpenFailureCodes &codes,
                      bool printOther, int fallback);

}  // namespace velmio::platform

#endif
