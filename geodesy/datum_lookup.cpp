// Ellipsoid parameters by datum name from the text file named by "kbvXdatum".
#include <velmio/geodesy.h>

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwctype>
#include <memory>
#include <mutex>
#include <string>

namespace {

// Text formats of the system are read with a 256-byte line buffer: only the
// first 255 characters of a line are looked at.
constexpr std::size_t kLineLimit = 255;
constexpr std::size_t kNameLength = 4;

// The one remembered match, kept for the life of the process.
struct DatumCache {
    std::mutex lock;
    bool valid = false;
    std::wstring name;
    double first = 0.0;
    double second = 0.0;
};

DatumCache &cache() {
    static DatumCache instance;
    return instance;
}

bool sameIgnoringCase(wchar_t x, wchar_t y) {
    return std::towlower(static_cast<std::wint_t>(x)) == std::towlower(static_cast<std::wint_t>(y));
}

bool equalIgnoringCase(const std::wstring &x, const wchar_t *y) {
    std::size_t i = 0;
    for (; i < x.size() && y[i]; ++i)
        if (!sameIgnoringCase(x[i], y[i])) return false;
    return i == x.size() && !y[i];
}

// Reads one line of at most kLineLimit bytes into line (without the line
// end); the rest of a longer line is skipped, so that it is never taken for
// a line of its own. False at the end of the file.
bool readLine(std::FILE *file, std::string &line) {
    line.clear();
    int c = std::fgetc(file);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = std::fgetc(file))
        if (line.size() < kLineLimit) line.push_back(static_cast<char>(c));
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

// Byte offset in line just past its first kNameLength characters (UTF-8),
// or npos when the line is shorter.
std::size_t nameEnd(const std::string &line, std::wstring &prefix) {
    std::size_t pos = 0;
    for (std::size_t n = 0; n < kNameLength; ++n) {
        if (pos >= line.size()) return std::string::npos;
        std::size_t next = pos + 1;
        while (next < line.size() && (static_cast<unsigned char>(line[next]) & 0xC0) == 0x80) ++next;
        pos = next;
    }
    prefix = velmio::fromUtf8(line.substr(0, pos));
    return pos;
}

struct FileCloser {
    void operator()(std::FILE *f) const { velmio::platform::closeFile(f); }
};

}  // namespace

extern "C" VELMIO_API int HorizDatumLookup(const wchar_t *datumName, double *first, double *second) {
    if (first) *first = 0.0;
    if (second) *second = 0.0;
    if (!datumName || !first || !second || std::wcslen(datumName) < kNameLength) return -1;
    try {
        DatumCache &remembered = cache();
        std::lock_guard<std::mutex> guard(remembered.lock);
        if (remembered.valid && equalIgnoringCase(remembered.name, datumName)) {
            *first = remembered.first;
            *second = remembered.second;
            return 0;
        }
        const char *path = std::getenv("kbvXdatum");
        if (!path) return -1;
        std::unique_ptr<std::FILE, FileCloser> file(velmio::platform::openFile(velmio::fromUtf8(path).c_str(), "r"));
        if (!file) {
            remembered.valid = false;
            return -1;
        }
        std::string line;
        std::wstring prefix;
        while (readLine(file.get(), line)) {
            if (!line.empty() && line[0] == '!') continue;
            const std::size_t end = nameEnd(line, prefix);
            if (end == std::string::npos || prefix.size() < kNameLength) continue;
            bool match = true;
            for (std::size_t i = 0; i < kNameLength && match; ++i) match = sameIgnoringCase(prefix[i], datumName[i]);
            if (!match) continue;
            double x = 0.0, y = 0.0;
            int read;
            {
                velmio::ClassicLocaleScope classic;
                read = std::sscanf(line.c_str() + end, "%lf %lf", &x, &y);
            }
            // The first matching line decides; one without its two numbers
            // is a broken file, not a reason to look further.
            if (read != 2) return -1;
            remembered.name = datumName;
            remembered.first = x;
            remembered.second = y;
            remembered.valid = true;
            *first = x;
            *second = y;
            return 0;
        }
        return -1;
    } catch (...) {
        return -1;
    }
}
