// The one-line messages that failing functions print on standard output.
#ifndef VELMIO_FOUNDATION_DIAGNOSTICS_H
#define VELMIO_FOUNDATION_DIAGNOSTICS_H

#include <string>

namespace velmio {

// printf to standard output in the "C" locale, flushed so that a message is
// never lost when the process dies or standard output is redirected.
void say(const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// Whether say() prints: on at start; embedding programs (the Python module)
// turn it off and on for the whole process.
void setDiagnosticsEnabled(bool enabled);
bool diagnosticsEnabled();

// A wide text made printable with "%s" (UTF-8); null gives "".
std::string printable(const wchar_t *text);

}  // namespace velmio

#endif
