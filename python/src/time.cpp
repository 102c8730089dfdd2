// Time conversions over arrays: UTC seconds since 1980 with leap seconds
// counted, their year/day/seconds form, and numpy datetime64[ns] (POSIX time,
// which has no leap seconds: the library's table decides the offset).
#include "binding.hpp"

#include <velmio/time_conversions.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace velmio::python {

namespace {

constexpr std::int64_t kNaT = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kNanosPerDay = 86400LL * 1000000000LL;

// Days from 1970-01-01 to the civil date (proleptic Gregorian).
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void civilFromDays(std::int64_t z, int &y, unsigned &m, unsigned &d) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2));
}

// True when the TAI-UTC offset is the same the day before, on and after the
// day (days from 1970): only there is the library's conversion t minus the
// day's start; around a leap second it repeats or skips a second.
bool steadyOffset(std::int64_t days) {
    int offset[3];
    for (int k = 0; k < 3; ++k) {
        int y = 0;
        unsigned m = 0, d = 0;
        civilFromDays(days + k - 1, y, m, d);
        offset[k] = TmGetTAIUTCOffset(y, TmYMDtoJD(y, static_cast<int>(m), static_cast<int>(d)));
    }
    return offset[0] == offset[1] && offset[1] == offset[2];
}

py::array_t<double> flat(const py::handle &values, const char *name) { return doubles(values, name); }

}  // namespace

py::array utcs80ToDatetime64(const double *seconds, py::ssize_t count) {
    py::array_t<std::int64_t> out(count);
    std::int64_t *o = out.mutable_data();
    {
        py::gil_scoped_release unlocked;
        // The library converts one time at a time; series come sorted, so the
        // day of the last conversion serves every later time inside its first
        // 86400 s (a leap second, s >= 86400, is always converted alone).
        double dayStart = std::numeric_limits<double>::quiet_NaN();
        std::int64_t dayNanos = 0;
        for (py::ssize_t i = 0; i < count; ++i) {
            const double t = seconds[i];
            if (!std::isfinite(t) || std::fabs(t) > 9.0e9) {
                o[i] = kNaT;
                continue;
            }
            double s = t - dayStart;
            if (!(s >= 0.0 && s < 86400.0)) {
                int year = 0, day = 0;
                TmUTCs80toYDS(t, &year, &day, &s);
                const std::int64_t days = daysFromCivil(year, 1, 1) + day - 1;
                dayNanos = days * kNanosPerDay;
                // t - s is the day's start exactly: both are whole multiples of t's last bit.
                dayStart = year >= 0 && s >= 0.0 && s < 86400.0 && steadyOffset(days)
                               ? t - s
                               : std::numeric_limits<double>::quiet_NaN();
            }
            // A double holds seconds since 1980 to about 0.1 us: rounding to whole
            // microseconds keeps 0.1 s from reading as 0.100000024 s.
            o[i] = dayNanos + std::llround(s * 1e6) * 1000;
        }
    }
    return out.attr("view")("datetime64[ns]");
}

py::array_t<double> datetime64ToUtcs80(const py::array &datetimes) {
    if (datetimes.dtype().kind() != 'M') throw Failure{kBadArgument, "expected datetime64 values"};
    py::array_t<std::int64_t, py::array::c_style | py::array::forcecast> ns =
        datetimes.attr("astype")("datetime64[ns]").attr("reshape")(-1).attr("view")("int64");
    const py::ssize_t n = ns.size();
    py::array_t<double> out(n);
    const std::int64_t *in = ns.data();
    double *o = out.mutable_data();
    py::gil_scoped_release unlocked;
    for (py::ssize_t i = 0; i < n; ++i) {
        if (in[i] == kNaT) {
            o[i] = std::numeric_limits<double>::quiet_NaN();
            continue;
        }
        std::int64_t days = in[i] / kNanosPerDay;
        if (in[i] % kNanosPerDay < 0) --days;
        const double s = static_cast<double>(in[i] - days * kNanosPerDay) / 1e9;
        int y = 0;
        unsigned m = 0, d = 0;
        civilFromDays(days, y, m, d);
        o[i] = TmYDStoUTCs80(y, TmYMDtoJD(y, static_cast<int>(m), static_cast<int>(d)), s);
    }
    return out;
}

void registerTime(py::module_ &m) {
    m.def(
        "utcs80_to_datetime64",
        [](const py::handle &seconds) {
            auto s = flat(seconds, "seconds");
            return utcs80ToDatetime64(s.data(), s.size());
        },
        py::arg("seconds"));
    m.def("datetime64_to_utcs80", &datetime64ToUtcs80, py::arg("datetimes"));
    m.def(
        "utcs80_to_yds",
        [](const py::handle &seconds) {
            auto s = flat(seconds, "seconds");
            const py::ssize_t n = s.size();
            py::array_t<std::int32_t> years(n), days(n);
            py::array_t<double> rest(n);
            for (py::ssize_t i = 0; i < n; ++i) {
                int y = 0, d = 0;
                TmUTCs80toYDS(s.data()[i], &y, &d, rest.mutable_data() + i);
                years.mutable_data()[i] = y;
                days.mutable_data()[i] = d;
            }
            return py::make_tuple(years, days, rest);
        },
        py::arg("seconds"));
    m.def(
        "yds_to_utcs80",
        [](const py::handle &year, const py::handle &day, const py::handle &seconds) {
            auto y = flat(year, "year"), d = flat(day, "day"), s = flat(seconds, "seconds");
            requireLength(d.size(), y.size(), "day");
            requireLength(s.size(), y.size(), "seconds");
            py::array_t<double> out(y.size());
            for (py::ssize_t i = 0; i < y.size(); ++i)
                out.mutable_data()[i] = TmYDStoUTCs80(static_cast<int>(y.data()[i]), static_cast<int>(d.data()[i]),
                                                      s.data()[i]);
            return out;
        },
        py::arg("year"), py::arg("day"), py::arg("seconds"));
    m.def(
        "utcs80_to_utcs70",
        [](const py::handle &seconds) {
            auto s = flat(seconds, "seconds");
            py::array_t<double> out(s.size());
            for (py::ssize_t i = 0; i < s.size(); ++i) out.mutable_data()[i] = TmUTCs80toUTCs70(s.data()[i]);
            return out;
        },
        py::arg("seconds"));
    m.def("tai_utc_offset", &TmGetTAIUTCOffset, py::arg("year"), py::arg("day"));
}

}  // namespace velmio::python
