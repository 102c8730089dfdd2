#include "foundation/diagnostics.h"

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"

#include <cstdarg>
#include <cstdio>

namespace velmio {

void say(const char *format, ...) {
    ClassicLocaleScope classic;
    va_list args;
    va_start(args, format);
    std::vfprintf(stdout, format, args);
    va_end(args);
    std::fflush(stdout);
}

std::string printable(const wchar_t *text) { return toUtf8(text); }

}  // namespace velmio
