#include "foundation/diagnostics.h"

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace velmio {
namespace {
std::atomic<bool> enabled{true};
}

void setDiagnosticsEnabled(bool on) { enabled.store(on, std::memory_order_relaxed); }
bool diagnosticsEnabled() { return enabled.load(std::memory_order_relaxed); }

void say(const char *format, ...) {
    if (!diagnosticsEnabled()) return;
    ClassicLocaleScope classic;
    va_list args;
    va_start(args, format);
    std::vfprintf(stdout, format, args);
    va_end(args);
    std::fflush(stdout);
}

std::string printable(const wchar_t *text) { return toUtf8(text); }

}  // namespace velmio
