#include "platform/system_error.h"

#include "foundation/diagnostics.h"

#include <cerrno>
#include <cstring>

namespace velmio::platform {

int platformError(int errnum) {
    switch (errnum) {
    case 0: return kNoError;
    case ENOENT: return kFileNotFound;
    case EMFILE:
    case ENFILE: return kTooManyOpenFiles;
    case EACCES:
    case EPERM: return kAccessDenied;
    case ENOMEM:
    case ENOSPC: return kNotEnoughMemory;
    default: return errnum + 1000;
    }
}

std::string systemMessage(int errnum) {
    const char *text = std::strerror(errnum);
    return text ? text : "unknown error";
}

int reportOpenFailure(const std::string &path, int errnum, const OpenFailureCodes &codes,
                      bool printOther, int fallback) {
    switch (platformError(errnum)) {
    case kNoError:
        return fallback;
    case kFileNotFound:
        say("VELM IO was unable to find the data file '%s'\n", path.c_str());
        return codes.notFound;
    case kTooManyOpenFiles:
        say("VELM IO could not open '%s' because there are too many files open on the system.\n", path.c_str());
        return codes.tooManyFiles;
    case kAccessDenied:
        say("VELM IO could not open '%s' because access is denied by the system.\n", path.c_str());
        return codes.accessDenied;
    case kNotEnoughMemory:
        say("VELM IO could not open '%s' because there is not enough disk space available.\n", path.c_str());
        return codes.noSpace;
    default:
        if (printOther)
            say("VELM IO could not open '%s'.  Windows returned the following error:\n\t%s\n", path.c_str(),
                systemMessage(errnum).c_str());
        return codes.other;
    }
}

}  // namespace velmio::platform
