// MORVAUString: the wide string that carries file names, attribute names and
// texts through the library's classes. A thin value type over std::wstring.
#ifndef VELMIO_MORVA_STRING_HPP
#define VELMIO_MORVA_STRING_HPP

#include <velmio/export.h>

#include <cstddef>
#include <string>

class VELMIO_API MORVAUString {
public:
    MORVAUString() = default;
    MORVAUString(const wchar_t *text);                  // null gives the empty string
    MORVAUString(const wchar_t *text, std::size_t count);
    MORVAUString(std::wstring text) : text_(std::move(text)) {}
    static MORVAUString fromUtf8(const char *text);     // null gives the empty string

    const wchar_t *c_str() const { return text_.c_str(); }
    operator const wchar_t *() const { return text_.c_str(); }
    const std::wstring &str() const { return text_; }
    std::wstring &str() { return text_; }
    std::size_t length() const { return text_.size(); }
    bool empty() const { return text_.empty(); }
    std::string toUtf8() const;

    MORVAUString &operator+=(const MORVAUString &other) { text_ += other.text_; return *this; }
    MORVAUString &operator+=(const wchar_t *other);
    MORVAUString &operator+=(wchar_t c) { text_ += c; return *this; }
    friend MORVAUString operator+(MORVAUString a, const MORVAUString &b) { return a += b; }

    bool operator==(const MORVAUString &o) const { return text_ == o.text_; }
    bool operator!=(const MORVAUString &o) const { return text_ != o.text_; }
    bool operator<(const MORVAUString &o) const { return text_ < o.text_; }
    bool equalsIgnoreCase(const MORVAUString &o) const;
    bool endsWithIgnoreCase(const MORVAUString &suffix) const;
    MORVAUString toLower() const;

    wchar_t operator[](std::size_t i) const { return text_[i]; }
    MORVAUString substr(std::size_t pos, std::size_t count = std::wstring::npos) const {
        return MORVAUString(text_.substr(pos, count));
    }

private:
    std::wstring text_;
};

#endif
