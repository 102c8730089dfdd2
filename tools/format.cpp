#include "format.h"
#include "command.h"

#include <velmio/time_conversions.h>
#include <velmio/utils.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>

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
    char buf[40];
    for (int digits = 6; digits <= 17; ++digits) {
        std::snprintf(buf, sizeof buf, "%.*g", digits, value);
        // The C locale is never changed for numbers, so '.' is the decimal mark.
        if (std::strtod(buf, nullptr) == value) break;
    }
    return buf;
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
    wchar_t buffer[VELMIOUtils::kStatusTextLength] = L"";
    VELMIOUtils::observedStatusToString(status, buffer, VELMIOUtils::kStatusTextLength);
    return narrow(buffer);
}

}  // namespace velmio::tool
