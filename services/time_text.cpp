// Reading the "YYYY-DDD hh:mm:ss" time texts of vessel documents and tools.
#include <velmio/time_conversions.h>
#include <velmio/utils.hpp>

#include "foundation/diagnostics.h"
#include "foundation/utf8.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace VELMIOUtils {
namespace {
constexpr int kBadTime = 5100010;

int field(const char *text, std::size_t from, std::size_t count) {
    return std::atoi(std::string(text + from, count).c_str());
}
}  // namespace

int decodeTime(const char *text, double &time) {
    if (!text || std::strlen(text) < 17) {
        velmio::say("decodeTime(): Invalid format.  Supplied string (%s) is less than 17 characters.\n",
                    text ? text : "NULL");
        return kBadTime;
    }
    static const struct {
        std::size_t pos;
        char expected;
        const char *message;
    } kSeparators[] = {
        {4, '-', "decodeTime(): Invalid format.  Supplied string (%s) does not have a '-' at position 4.\n"},
        {8, ' ', "decodeTime(): Invalid format.  Supplied string (%s) does not have a ' ' at position 8.\n"},
        {11, ':', "decodeTime(): Invalid format.  Supplied string (%s) does not have a ':' at position 11.\n"},
        {14, ':', "decodeTime(): Invalid format.  Supplied string (%s) does not have a ':' at position 14.\n"},
    };
    for (const auto &s : kSeparators) {
        if (text[s.pos] != s.expected) {
            velmio::say(s.message, text);
            return kBadTime;
        }
    }
    const int year = field(text, 0, 4), day = field(text, 5, 3), hour = field(text, 9, 2),
              minute = field(text, 12, 2), second = field(text, 15, 2);
    if (year < 1900 || year > 3000) {
        velmio::say("decodeTime(): Invalid year.  Supplied string (%s).  Year = %d\n", text, year);
        return kBadTime;
    }
    if (day > 366) {
        velmio::say("decodeTime(): Invalid julian day.  Supplied string (%s).  JDay = %d\n", text, day);
        return kBadTime;
    }
    if (hour >= 24) {
        velmio::say("decodeTime(): Invalid hour.  Supplied string (%s).  hour = %d\n", text, hour);
        return kBadTime;
    }
    if (minute >= 60) {
        velmio::say("decodeTime(): Invalid minute.  Supplied string (%s).  Minute = %d\n", text, minute);
        return kBadTime;
    }
    if (second >= 60) {
        velmio::say("decodeTime(): Invalid seconds.  Supplied string (%s).  Seconds = %d, SecondStr = %s\n", text,
                    second, std::string(text + 15, 2).c_str());
        return kBadTime;
    }
    time = TmYDStoUTCs80(year, day, TmHMSXtoS(hour, minute, second, 0.0));
    return 0;
}

int decodeTime(const wchar_t *text, double &time) {
    if (!text) return decodeTime(static_cast<const char *>(nullptr), time);
    return decodeTime(velmio::toUtf8(text).c_str(), time);
}

}  // namespace VELMIOUtils
