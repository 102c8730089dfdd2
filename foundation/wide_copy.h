// Heap copies handed to callers, who free them with free() or VELMIO_free().
#ifndef VELMIO_FOUNDATION_WIDE_COPY_H
#define VELMIO_FOUNDATION_WIDE_COPY_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

namespace velmio {

// malloc'ed copy of text (null for null text or when memory runs out).
inline wchar_t *mallocWideCopy(const wchar_t *text) {
    if (!text) return nullptr;
    std::size_t n = std::wcslen(text) + 1;
    auto *copy = static_cast<wchar_t *>(std::malloc(n * sizeof(wchar_t)));
    if (copy) std::memcpy(copy, text, n * sizeof(wchar_t));
    return copy;
}
inline wchar_t *mallocWideCopy(const std::wstring &text) { return mallocWideCopy(text.c_str()); }

// Copies text into a caller's buffer of capacity characters, truncating so
// that the terminator always fits; returns false when it had to truncate.
inline bool copyBounded(wchar_t *dest, std::size_t capacity, const wchar_t *text) {
    if (!dest || capacity == 0) return false;
    if (!text) text = L"";
    std::size_t n = std::wcslen(text);
    bool fits = n < capacity;
    if (!fits) n = capacity - 1;
    std::wmemcpy(dest, text, n);
    dest[n] = L'\0';
    return fits;
}

}  // namespace velmio

#endif
