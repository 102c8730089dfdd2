// What the profile tests compare: the live casts of a model as plain values.
#ifndef VELMIO_TESTS_SVP_TEST_SUPPORT_H
#define VELMIO_TESTS_SVP_TEST_SUPPORT_H

#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>

#include "support/test_support.h"

#include <string>
#include <utility>
#include <vector>

namespace velmio::test {

struct Cast {
    double time;
    std::wstring latitude, longitude;
    std::vector<std::pair<double, double>> values;  // depth, velocity
    bool operator==(const Cast &o) const {
        return time == o.time && latitude == o.latitude && longitude == o.longitude && values == o.values;
    }
};

inline std::vector<Cast> liveCasts(const SvpFile &file) {
    std::vector<Cast> out;
    for (const SvpFile::SvpSections *s = file.GetSections(); s; s = s->next) {
        if (s->state == SvpFile::kRemoved) continue;
        Cast c{s->time, s->latitude.str(), s->longitude.str(), {}};
        for (const SvpFile::SvpValue *v = s->values; v; v = v->next)
            if (v->state != SvpFile::kRemoved) c.values.emplace_back(v->depth, v->velocity);
        out.push_back(c);
    }
    return out;
}

// Writes text as dir/name and reads it with f.
template <typename Format>
int readInto(Format &f, const TempDir &dir, const std::string &name, const std::string &text) {
    writeText(dir.file(name), text);
    f.SetFileName(dir.wfile(name).c_str());
    return f.ReadInData();
}

inline double utc(int year, int dayOfYear, int hours, int minutes, int seconds) {
    return TmYDStoUTCs80(year, dayOfYear, hours * 3600.0 + minutes * 60.0 + seconds);
}

}  // namespace velmio::test

#endif
