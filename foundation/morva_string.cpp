#include <velmio/morva_string.hpp>

#include "foundation/utf8.h"

#include <cwchar>
#include <cwctype>

MORVAUString::MORVAUString(const wchar_t *text) : text_(text ? text : L"") {}

MORVAUString::MORVAUString(const wchar_t *text, std::size_t count)
    : text_(text ? std::wstring(text, count) : std::wstring()) {}

MORVAUString MORVAUString::fromUtf8(const char *text) { return MORVAUString(velmio::fromUtf8(text)); }

std::string MORVAUString::toUtf8() const { return velmio::toUtf8(text_); }

MORVAUString &MORVAUString::operator+=(const wchar_t *other) {
    if (other) text_ += other;
    return *this;
}

namespace {
// ASCII folding only: names and extensions compared here are ASCII, and a
// locale-dependent towlower would make comparisons differ between callers.
wchar_t foldAscii(wchar_t c) { return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c; }
}  // namespace

bool MORVAUString::equalsIgnoreCase(const MORVAUString &o) const {
    if (text_.size() != o.text_.size()) return false;
    for (std::size_t i = 0; i < text_.size(); ++i)
        if (foldAscii(text_[i]) != foldAscii(o.text_[i])) return false;
    return true;
}

bool MORVAUString::endsWithIgnoreCase(const MORVAUString &suffix) const {
    if (suffix.length() > text_.size()) return false;
    return substr(text_.size() - suffix.length()).equalsIgnoreCase(suffix);
}

MORVAUString MORVAUString::toLower() const {
    std::wstring out(text_);
    for (auto &c : out) c = foldAscii(c);
    return MORVAUString(std::move(out));
}
