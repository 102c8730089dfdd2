#include "sensors/cache_size.h"

#include <cctype>
#include <climits>
#include <cstdlib>

namespace velmio {

unsigned int cacheSizeFromEnvironment() {
    const char *text = std::getenv("VelmIOCacheSize");
    if (!text) return 0;
    while (std::isspace(static_cast<unsigned char>(*text))) ++text;
    if (*text == '-') return 0;
    if (*text == '+') ++text;
    unsigned long long value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        value = value * 10 + static_cast<unsigned>(*text - '0');
        if (value > UINT_MAX) return UINT_MAX;
    }
    return static_cast<unsigned int>(value);
}

}  // namespace velmio
