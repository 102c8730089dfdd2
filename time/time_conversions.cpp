#include <velmio/time_conversions.h>

#include <cmath>
#include <cstdint>

namespace {

constexpr double kDay = 86400.0;

bool isLeap(long long y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }
int yearLength(long long y) { return isLeap(y) ? 366 : 365; }

long long floorDiv(long long a, long long b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }
// Leap years in 1..y (proleptic Gregorian, also for y <= 0).
long long leapsThrough(long long y) { return floorDiv(y, 4) - floorDiv(y, 100) + floorDiv(y, 400); }
// Days from 1 January of y1 to 1 January of y2 (y1 <= y2), without a loop.
long long daysBetweenYears(long long y1, long long y2) {
    return 365 * (y2 - y1) + leapsThrough(y2 - 1) - leapsThrough(y1 - 1);
}

// A double to int that saturates instead of overflowing; NaN gives 0.
int toInt(double v) {
    if (std::isnan(v)) return 0;
    if (v >= 2147483647.0) return 2147483647;
    if (v <= -2147483648.0) return -2147483647 - 1;
    return static_cast<int>(v);
}

constexpr int kCumulative[2][13] = {
    {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
    {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366},
};

// Looked up once, on first use, so that callers from static initialisers of
// other files never see it unset.
int offset1980() {
    static const int offset = TmGetTAIUTCOffset(1980, 1);
    return offset;
}

void fail(int *y, int *d, double *s) {
    if (y) *y = -1;
    if (d) *d = -1;
    if (s) *s = -1.0;
}

void fromEpoch(int epochYear, double seconds, int *y, int *d, double *s) {
    if (!y || !d || !s) return;
    TmYDSplusS(epochYear, 1, 0.0, seconds, y, d, s);
    if (*y < 0) return;
    const int firstOffset = TmGetTAIUTCOffset(*y, *d);
    *s += offset1980() - firstOffset;
    if (*s < 0) TmYDSplusS(epochYear, 1, 0.0, seconds + offset1980() - firstOffset, y, d, s);
}

}  // namespace

extern "C" {

VELMIO_API double TmHMSXtoS(int hours, int minutes, int seconds, double fraction) {
    return (static_cast<double>(hours) * 60.0 + minutes) * 60.0 + seconds + fraction;
}

VELMIO_API void TmStoHMSX(double s, int *hours, int *minutes, int *wholeSeconds, double *fraction) {
    const double h = std::trunc(s / 3600.0);
    const double m = std::trunc(std::trunc(s - h * 3600.0) / 60.0);
    const double sec = std::trunc(s - (h * 60.0 + m) * 60.0);
    if (hours) *hours = toInt(h);
    if (minutes) *minutes = toInt(m);
    if (wholeSeconds) *wholeSeconds = toInt(sec);
    if (fraction) *fraction = s - std::trunc(s);
}

VELMIO_API int TmYMDtoJD(int year, int month, int day) {
    if (month < 1 || month > 12 || day < 1 || day > 31) return 0;
    return kCumulative[isLeap(year)][month - 1] + day;
}

VELMIO_API void TmYJDtoMD(int year, int dayOfYear, int *month, int *day) {
    const int *cum = kCumulative[isLeap(year)];
    int m = 1;
    while (m < 12 && dayOfYear > cum[m]) ++m;
    if (month) *month = m;
    if (day) *day = dayOfYear - cum[m - 1];
}

VELMIO_API void TmYDSplusS(int year, int day, double s, double add, int *outYear, int *outDay, double *outSeconds) {
    if (!outYear || !outDay || !outSeconds || !(s >= 0) || year < 1900 || year > 3000 || day < 1 || day > 366 ||
        !std::isfinite(s) || !std::isfinite(add)) {
        fail(outYear, outDay, outSeconds);
        return;
    }
    if (add >= 0) {
        double total = s + add;
        double days = total / kDay + day - 1;
        int y = year;
        while (days > yearLength(y)) {
            days -= yearLength(y);
            total -= yearLength(y) * kDay;
            if (++y > 3000) {
                fail(outYear, outDay, outSeconds);
                return;
            }
        }
        // Only true seconds of day when starting from day 1; kept as it is.
        *outYear = y;
        *outDay = toInt(std::trunc(days)) + 1;
        *outSeconds = total - std::trunc(days) * kDay;
        return;
    }
    // Counting back from the start of the year; day and s are ignored.
    double r = -add;
    double x = r / kDay;
    int y = year - 1;
    if (y < 1900) {
        fail(outYear, outDay, outSeconds);
        return;
    }
    while (x > yearLength(y)) {
        x -= yearLength(y);
        r -= yearLength(y) * kDay;
        if (--y < 1900) {
            fail(outYear, outDay, outSeconds);
            return;
        }
    }
    *outYear = y;
    if (x == std::trunc(x)) {
        *outDay = yearLength(y) + 1 - toInt(x);
        *outSeconds = 0.0;
    } else {
        *outDay = yearLength(y) - toInt(std::trunc(x));
        *outSeconds = (std::trunc(x) + 1) * kDay - r;
    }
}

VELMIO_API double TmYDSminusYDS(int year1, int day1, double seconds1, int year2, int day2, double seconds2) {
    double sign = 1.0;
    if (year1 > year2) {
        int ty = year1, td = day1;
        double ts = seconds1;
        year1 = year2, day1 = day2, seconds1 = seconds2;
        year2 = ty, day2 = td, seconds2 = ts;
        sign = -1.0;
    }
    const long long days = daysBetweenYears(year1, year2) - day1 + day2;
    return (static_cast<double>(days) * kDay + (seconds2 - seconds1)) * sign;
}

VELMIO_API double TmYDStoUTCs80(int year, int day, double seconds) {
    return TmYDSminusYDS(1980, 1, 0.0, year, day, seconds) + (TmGetTAIUTCOffset(year, day) - offset1980());
}

VELMIO_API double TmYDStoUTCs70(int year, int day, double seconds) {
    return TmYDSminusYDS(1970, 1, 0.0, year, day, seconds) + (TmGetTAIUTCOffset(year, day) - offset1980());
}

VELMIO_API void TmUTCs80toYDS(double utcs80, int *year, int *day, double *seconds) {
    fromEpoch(1980, utcs80, year, day, seconds);
}

VELMIO_API void TmUTCs70toYDS(double utcs70, int *year, int *day, double *seconds) {
    fromEpoch(1970, utcs70, year, day, seconds);
}

VELMIO_API double TmUTCs80toUTCs70(double utcs80) { return utcs80 + 315532800.0; }

}  // extern "C"
