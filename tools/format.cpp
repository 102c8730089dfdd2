#include "format.h"
#include "command.h"

#include <velmio/time_conversions.h>
#include <velmio/utils.hpp>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unordered_map>

namespace velmio::tool {
namespace {

struct Broken {
    int year, day, hour, minute, second, milli;
};

// Splits a time rounded to the millisecond, so that 59.9996 s never shows as 60.000.
bool breakUp(double utcs80, Broken &b) {
    if (!std::isfinite(utcs80)) return false;
    const double rounded = std::floor(utcs80 * 1000.0 + 0.5) / 1000.0;
    double seconds = 0;
    TmUTCs80toYDS(rounded, &b.year, &b.day, &seconds);
    if (b.year < 0) return false;
    long long ms = std::llround(seconds * 1000.0);
    b.milli = static_cast<int>(ms % 1000);
    ms /= 1000;
    b.second = static_cast<int>(ms % 60);
    b.minute = static_cast<int>(ms / 60 % 60);
    b.hour = static_cast<int>(ms / 3600);
    return true;
}

}  // namespace

std::string dayOfYearText(double utcs80) {
    Broken b;
    if (!breakUp(utcs80, b)) return "-";
    char buf[48];
    std::snprintf(buf, sizeof buf, "%04d-%03d %02d:%02d:%02d.%03d", b.year, b.day, b.hour, b.minute, b.second,
                  b.milli);
    return buf;
}

std::string isoText(double utcs80) {
    Broken b;
    if (!breakUp(utcs80, b)) return "";
    int month = 0, dayOfMonth = 0;
    TmYJDtoMD(b.year, b.day, &month, &dayOfMonth);
    char buf[48];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", b.year, month, dayOfMonth, b.hour,
                  b.minute, b.second, b.milli);
    return buf;
}

std::string number(double value) {
    if (!std::isfinite(value)) return "null";
    // Shortest text that reads back as the same double, never in the locale's form.
    // Plain decimals for the magnitudes of survey data, exponents beyond them.
    char buf[64];
    const double magnitude = std::fabs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e15);
    auto r = plain ? std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed)
                   : std::to_chars(buf, buf + sizeof buf, value);
    if (r.ec != std::errc()) r = std::to_chars(buf, buf + sizeof buf, value);
    return std::string(buf, r.ptr);
}

double shown(double value, ColumnType type) { return type == ColumnType::Radians ? value / kDegree : value; }

std::string jsonString(const std::string &text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char buf[8];
            std::snprintf(buf, sizeof buf, "\\u%04x", c);
            out += buf;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string csvField(const std::string &text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

std::string statusText(unsigned int status) {
    // A line holds few distinct words; dump asks for one per field of every record.
    static thread_local std::unordered_map<unsigned int, std::string> known;
    auto it = known.find(status);
    if (it != known.end()) return it->second;
    wchar_t buffer[VELMIOUtils::kStatusTextLength] = L"";
    VELMIOUtils::observedStatusToString(status, buffer, VELMIOUtils::kStatusTextLength);
    if (known.size() > 4096) known.clear();
    return known.emplace(status, narrow(buffer)).first->second;
}

}  // namespace velmio::tool
