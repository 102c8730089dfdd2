// Conversions between the library's wide strings and UTF-8 bytes.
#ifndef VELMIO_FOUNDATION_UTF8_H
#define VELMIO_FOUNDATION_UTF8_H

#include <string>

namespace velmio {

// Wide text (UTF-32 or UTF-16 by platform) to UTF-8; null gives "".
// Unpaired surrogates and out-of-range code points become U+FFFD.
std::string toUtf8(const wchar_t *text);
std::string toUtf8(const std::wstring &text);

// UTF-8 to wide text; null gives L"". Malformed sequences become U+FFFD.
std::wstring fromUtf8(const char *text);
std::wstring fromUtf8(const std::string &text);

}  // namespace velmio

#endif
