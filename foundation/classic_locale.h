// Numbers in files and messages must not depend on the caller's locale: while a
// ClassicLocaleScope lives, this thread formats and parses with the "C" locale.
#ifndef VELMIO_FOUNDATION_CLASSIC_LOCALE_H
#define VELMIO_FOUNDATION_CLASSIC_LOCALE_H

#if defined(_WIN32)
#include <locale.h>
#else
#include <locale.h>
#if defined(__APPLE__)
#include <xlocale.h>
#endif
#endif

namespace velmio {

class ClassicLocaleScope {
public:
    ClassicLocaleScope();
    ~ClassicLocaleScope();
    ClassicLocaleScope(const ClassicLocaleScope &) = delete;
    ClassicLocaleScope &operator=(const ClassicLocaleScope &) = delete;

private:
#if defined(_WIN32)
    int previousMode_;
    char *previousLocale_;
#else
    locale_t previous_;
#endif
};

}  // namespace velmio

#endif
