#include "foundation/classic_locale.h"

#include <cstdlib>
#include <cstring>

namespace velmio {

#if defined(_WIN32)
ClassicLocaleScope::ClassicLocaleScope() {
    previousMode_ = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
    const char *current = setlocale(LC_NUMERIC, nullptr);
    previousLocale_ = current ? _strdup(current) : nullptr;
    setlocale(LC_NUMERIC, "C");
}
ClassicLocaleScope::~ClassicLocaleScope() {
    if (previousLocale_) {
        setlocale(LC_NUMERIC, previousLocale_);
        std::free(previousLocale_);
    }
    _configthreadlocale(previousMode_);
}
#else
namespace {
locale_t classicLocale() {
    // Made once and kept for the life of the process.
    static locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return c;
}
}  // namespace

ClassicLocaleScope::ClassicLocaleScope() : previous_(uselocale(classicLocale())) {}
ClassicLocaleScope::~ClassicLocaleScope() { uselocale(previous_); }
#endif

}  // namespace velmio
