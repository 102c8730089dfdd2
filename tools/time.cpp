// velmio time: "YYYY-DDD hh:mm:ss", a calendar date-time or a second count
// since 1980, shown in every form the line data uses.
#include "command.h"

#include <velmio/time_conversions.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace velmio::tool {
namespace {

int show(double utcs80) {
    int year, day, month, dayOfMonth, h, m, s;
    double seconds, fraction;
    TmUTCs80toYDS(utcs80, &year, &day, &seconds);
    if (year < 0) {
        std::fprintf(stderr, "velmio time: %.3f is outside the years 1980 to 3000\n", utcs80);
        return 1;
    }
    TmYJDtoMD(year, day, &month, &dayOfMonth);
    TmStoHMSX(seconds, &h, &m, &s, &fraction);
    std::printf("year-day:      %04d-%03d %02d:%02d:%02d%s\n", year, day, h, m, s,
                fraction != 0.0 ? " (+fraction)" : "");
    std::printf("calendar:      %04d-%02d-%02d %02d:%02d:%06.3f\n", year, month, dayOfMonth, h, m, s + fraction);
    std::printf("UTC s (1980):  %.3f\n", utcs80);
    std::printf("UTC s (1970):  %.3f\n", TmUTCs80toUTCs70(utcs80));
    std::printf("TAI-UTC:       %d s (leap seconds since 1980: %d)\n", TmGetTAIUTCOffset(year, day),
                TmGetTAIUTCOffset(year, day) - TmGetTAIUTCOffset(1980, 1));
    return 0;
}

bool parseInt(const std::string &text, int &out) {
    char *end = nullptr;
    errno = 0;
    long v = std::strtol(text.c_str(), &end, 10);
    if (errno || end == text.c_str() || *end || v < -2147483647L || v > 2147483647L) return false;
    out = static_cast<int>(v);
    return true;
}

}  // namespace

int runTime(const Args &args) {
    if (args.size() == 7 && args[0] == "--ymd") {
        int v[6];
        for (int i = 0; i < 6; ++i) {
            if (!parseInt(args[i + 1], v[i])) {
                std::fprintf(stderr, "velmio time: '%s' is not a whole number\n", args[i + 1].c_str());
                return 2;
            }
        }
        int day = TmYMDtoJD(v[0], v[1], v[2]);
        if (day == 0 || v[0] < 1980 || v[0] > 3000) {
            std::fprintf(stderr, "velmio time: not a date from 1980 to 3000\n");
            return 2;
        }
        return show(TmYDStoUTCs80(v[0], day, TmHMSXtoS(v[3], v[4], v[5], 0.0)));
    }
    if (args.size() == 2) {
        // "YYYY-DDD" "hh:mm:ss" given as two words
        int y, d, h, m, s;
        std::string text = args[0] + " " + args[1];
        char tail;
        if (std::sscanf(text.c_str(), "%d-%d %d:%d:%d%c", &y, &d, &h, &m, &s, &tail) == 5 && y >= 1980 && y <= 3000 &&
            d >= 1 && d <= 366 && h >= 0 && h < 24 && m >= 0 && m < 60 && s >= 0 && s < 61)
            return show(TmYDStoUTCs80(y, d, TmHMSXtoS(h, m, s, 0.0)));
        std::fprintf(stderr, "velmio time: expected \"YYYY-DDD hh:mm:ss\"\n");
        return 2;
    }
    if (args.size() == 1) {
        int y, d, h, m, s;
        char tail;
        if (std::sscanf(args[0].c_str(), "%d-%d %d:%d:%d%c", &y, &d, &h, &m, &s, &tail) == 5) {
            if (y < 1980 || y > 3000 || d < 1 || d > 366 || h < 0 || h > 23 || m < 0 || m > 59 || s < 0 || s > 60) {
                std::fprintf(stderr, "velmio time: '%s' is out of range\n", args[0].c_str());
                return 2;
            }
            return show(TmYDStoUTCs80(y, d, TmHMSXtoS(h, m, s, 0.0)));
        }
        char *end = nullptr;
        double seconds = std::strtod(args[0].c_str(), &end);
        if (end != args[0].c_str() && !*end && std::isfinite(seconds)) return show(seconds);
    }
    std::fprintf(stderr,
                 "usage: velmio time \"YYYY-DDD hh:mm:ss\"\n"
                 "       velmio time SECONDS_SINCE_1980\n"
                 "       velmio time --ymd YEAR MONTH DAY HOUR MINUTE SECOND\n");
    return 2;
}

}  // namespace velmio::tool
