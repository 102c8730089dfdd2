#include "foundation/utf8.h"

#include <cwchar>

namespace velmio {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void appendUtf8(std::string &out, char32_t cp) {
    if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = kReplacement;
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

void appendWide(std::wstring &out, char32_t cp) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out += static_cast<wchar_t>(0xD800 + (cp >> 10));
            out += static_cast<wchar_t>(0xDC00 + (cp & 0x3FF));
            return;
        }
    }
    out += static_cast<wchar_t>(cp);
}

}  // namespace

std::string toUtf8(const wchar_t *text) {
    std::string out;
    if (!text) return out;
    const std::size_t n = std::wcslen(text);
    out.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        char32_t cp = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            cp &= 0xFFFF;
            if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < n) {
                char32_t lo = static_cast<char32_t>(text[i + 1]) & 0xFFFF;
                if (lo >= 0xDC00 && lo <= 0xDFFF) {
                    cp = 0x10000 + ((cp - 0xD800) << 10) + (lo - 0xDC00);
                    ++i;
                }
            }
        }
        appendUtf8(out, cp);
    }
    return out;
}

std::string toUtf8(const std::wstring &text) { return toUtf8(text.c_str()); }

std::wstring fromUtf8(const char *text) {
    std::wstring out;
    if (!text) return out;
    const unsigned char *p = reinterpret_cast<const unsigned char *>(text);
    while (*p) {
        unsigned char c = *p;
        char32_t cp;
        int extra;
        if (c < 0x80) { cp = c; extra = 0; }
        else if ((c & 0xE0) == 0xC0) { cp = c & 0x1F; extra = 1; }
        else if ((c & 0xF0) == 0xE0) { cp = c & 0x0F; extra = 2; }
        else if ((c & 0xF8) == 0xF0) { cp = c & 0x07; extra = 3; }
        else { appendWide(out, kReplacement); ++p; continue; }
        ++p;
        bool ok = true;
        for (int k = 0; k < extra; ++k) {
            if ((*p & 0xC0) != 0x80) { ok = false; break; }
            cp = (cp << 6) | (*p & 0x3F);
            ++p;
        }
        static const char32_t kMin[4] = {0, 0x80, 0x800, 0x10000};
        if (!ok || cp < kMin[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = kReplacement;
        appendWide(out, cp);
    }
    return out;
}

std::wstring fromUtf8(const std::string &text) { return fromUtf8(text.c_str()); }

}  // namespace velmio
