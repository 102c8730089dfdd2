// The native profile format, versions 1 and 2.
#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>

#include "foundation/classic_locale.h"
#include "foundation/diagnostics.h"
#include "platform/files.h"
#include "platform/stdio_file.h"
#include "svp/svp_text.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

using velmio::ClassicLocaleScope;
using velmio::say;
using velmio::svp::LineReader;
using velmio::svp::startsWith;

namespace {

struct FileCloser {
    void operator()(std::FILE *f) const {
        if (f) velmio::platform::closeFile(f);
    }
};

bool isLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

bool validYearDayTime(int year, int day, int hours, int minutes, int seconds) {
    if (year < 1900 || year > 3000 || day < 1 || day > (isLeap(year) ? 366 : 365)) return false;
    return hours >= 0 && hours <= 23 && minutes >= 0 && minutes <= 59 && seconds >= 0 && seconds <= 60;
}

bool validDms(int degrees, int minutes, double seconds, int maxDegrees) {
    return std::abs(degrees) <= maxDegrees && minutes >= 0 && minutes <= 59 && std::isfinite(seconds) &&
           seconds >= 0.0 && seconds < 60.0;
}

bool negativeWord(const std::vector<std::string> &words, std::size_t index) {
    return index < words.size() && !words[index].empty() && words[index][0] == '-';
}

// A version 2 section line into time and position; false when unreadable.
bool readSectionLine(const std::string &line, double &time, MORVAUString &latitude, MORVAUString &longitude) {
    std::string work = line;
    MORVAUString lat, lon;
    const bool colonForm = VelmSvpFile::ParseLatLong(work, lat, lon);
    VelmSvpFile::RemovePunctuation(work, true);

    ClassicLocaleScope classic;
    std::vector<char> keyword(work.size() + 1);
    int year = 0, day = 0, hours = 0, minutes = 0, seconds = 0, latDeg = 0, latMin = 0, lonDeg = 0, lonMin = 0;
    double latSec = 0.0, lonSec = 0.0;
    std::size_t latWord = 6;
    int n = std::sscanf(work.c_str(), "%s %d %d %d %d %d %d %d %lf %d %d %lf", keyword.data(), &year, &day, &hours,
                        &minutes, &seconds, &latDeg, &latMin, &latSec, &lonDeg, &lonMin, &lonSec);
    if (n != 12) {
        n = std::sscanf(work.c_str(), "%s %d %d %d %d %d %d %lf %d %d %lf", keyword.data(), &year, &day, &hours,
                        &minutes, &latDeg, &latMin, &latSec, &lonDeg, &lonMin, &lonSec);
        if (n != 11) return false;
        seconds = 0;
        latWord = 5;
    }
    if (!validYearDayTime(year, day, hours, minutes, seconds) || !validDms(latDeg, latMin, latSec, 90) ||
        !validDms(lonDeg, lonMin, lonSec, 180))
        return false;
    if (colonForm) {
        latitude = lat;
        longitude = lon;
    } else {
        std::vector<std::string> words = velmio::svp::splitWords(work);
        latitude = MORVAUString::fromUtf8(
            velmio::svp::dmsText(negativeWord(words, latWord), latDeg, latMin, latSec).c_str());
        longitude = MORVAUString::fromUtf8(
            velmio::svp::dmsText(negativeWord(words, latWord + 3), lonDeg, lonMin, lonSec).c_str());
    }
    time = TmYDStoUTCs80(year, day, (hours * 60.0 + minutes) * 60.0 + seconds);
    return true;
}

// A section keyword as the writer puts it, so that a file name line such as
// "Section.svp" is still taken for the name.
bool isSectionLine(const std::string &line) {
    return startsWith(line, "Section") && (line.size() == 7 || line[7] == ' ' || line[7] == '\t');
}

}  // namespace

bool VelmSvpFile::ParseLatLong(std::string &line, MORVAUString &latitude, MORVAUString &longitude) {
    ClassicLocaleScope classic;
    std::vector<char> keyword(line.size() + 1);
    int year = 0, day = 0, hours = 0, minutes = 0, seconds = 0, latDeg = 0, latMin = 0, lonDeg = 0, lonMin = 0;
    double latSec = 0.0, lonSec = 0.0;
    int n = std::sscanf(line.c_str(), "%s %d-%d %d:%d:%d %d:%d:%lf %d:%d:%lf", keyword.data(), &year, &day, &hours,
                        &minutes, &seconds, &latDeg, &latMin, &latSec, &lonDeg, &lonMin, &lonSec);
    std::vector<std::string> words = velmio::svp::splitWords(line);
    const bool latNegative = negativeWord(words, 3);
    const bool lonNegative = negativeWord(words, 4);
    if (n != 12) {
        n = std::sscanf(line.c_str(), "%s %d-%d %d:%d %d:%d:%lf %d:%d:%lf", keyword.data(), &year, &day, &hours,
                        &minutes, &latDeg, &latMin, &latSec, &lonDeg, &lonMin, &lonSec);
        if (n != 11) return false;
        // The full form, with the sign of a southern or western 0 degrees kept.
        line = velmio::svp::format("%s %d-%03d %02d:%02d:00 %s:%02d:%02.2f %s:%02d:%02.2f", keyword.data(), year,
                                   day, hours, minutes,
                                   velmio::svp::signedDegrees(latNegative, latDeg, 2).c_str(), latMin, latSec,
                                   velmio::svp::signedDegrees(lonNegative, lonDeg, 3).c_str(), lonMin, lonSec);
    }
    latitude = MORVAUString::fromUtf8(velmio::svp::dmsText(latNegative, latDeg, latMin, latSec).c_str());
    longitude = MORVAUString::fromUtf8(velmio::svp::dmsText(lonNegative, lonDeg, lonMin, lonSec).c_str());
    return true;
}

void VelmSvpFile::RemovePunctuation(std::string &text, bool firstDashOnly) {
    bool dashSeen = false;
    for (char &c : text) {
        if (c == ':') {
            c = ' ';
        } else if (c == '-' && !(firstDashOnly && dashSeen)) {
            c = ' ';
            dashSeen = true;
        }
    }
}

int VelmSvpFile::ReadInData() {
    try {
        ClearSections();
        std::unique_ptr<std::FILE, FileCloser> in(velmio::platform::openFile(FileName().c_str(), "rb"));
        if (!in) {
            say("VelmSvpFile::ReadInData(): unable to open '%s'\n", velmio::printable(FileName().c_str()).c_str());
            return kCannotOpen;
        }
        LineReader lines(in.get());
        std::string first;
        if (!lines.nextNonEmpty(first)) return lines.readError() ? kUnreadableLine : 0;
        if (startsWith(first, "[SVP_VERSION_2]")) return ReadVersion2(in.get());
        std::rewind(in.get());
        return ReadVersion1(in.get());
    } catch (...) {
        return kOutOfMemory;
    }
}

int VelmSvpFile::ReadVersion2(std::FILE *stream) {
    if (!stream) return kUnreadableLine;
    try {
        LineReader lines(stream);
        std::string line;
        // The file name line is optional.
        if (lines.nextNonEmpty(line) && isSectionLine(line)) lines.pushBack(line);

        ClassicLocaleScope classic;
        SvpSections *section = nullptr;
        SvpValue *last = nullptr;
        double previousDepth = -1.0;
        while (lines.nextNonEmpty(line)) {
            if (startsWith(line, "Section")) {
                double time = 0.0;
                MORVAUString latitude, longitude;
                if (!readSectionLine(line, time, latitude, longitude)) {
                    say("VelmSvpFile::ReadVersion2(): unable to read section line %d\n", lines.lineNumber());
                    return kUnreadableLine;
                }
                section = AppendSection(time, latitude, longitude);
                last = nullptr;
                previousDepth = -1.0;
                continue;
            }
            // Deliberately lenient: anything that is not a plausible,
            // deeper value is passed over.
            double depth = 0.0, velocity = 0.0;
            if (!section || std::sscanf(line.c_str(), "%lf %lf\n", &depth, &velocity) != 2) continue;
            if (!std::isfinite(depth) || depth < 0.0 || !(depth > previousDepth)) continue;
            if (!(velocity >= 1400.0 && velocity <= 2000.0)) continue;
            last = AppendValue(section, depth, velocity, last);
            previousDepth = depth;
        }
        return lines.readError() ? kUnreadableLine : 0;
    } catch (...) {
        return kOutOfMemory;
    }
}

int VelmSvpFile::ReadVersion1(std::FILE *stream) {
    if (!stream) return kUnreadableLine;
    try {
        LineReader lines(stream);
        std::string line;
        // A title line is optional.
        if (lines.nextNonEmpty(line) && startsWith(line, "Section")) lines.pushBack(line);

        ClassicLocaleScope classic;
        SvpSections *section = nullptr;
        SvpValue *last = nullptr;
        while (lines.nextNonEmpty(line)) {
            if (startsWith(line, "Section")) {
                std::string work = line;
                RemovePunctuation(work, false);
                std::vector<char> keyword(work.size() + 1);
                int year = 0, day = 0, hours = 0, minutes = 0;
                if (std::sscanf(work.c_str(), "%s %d %d %d %d", keyword.data(), &year, &day, &hours, &minutes) != 5 ||
                    !validYearDayTime(year, day, hours, minutes, 0)) {
                    say("VelmSvpFile::ReadVersion1(): unable to read section line %d\n", lines.lineNumber());
                    return kUnreadableLine;
                }
                double time = TmYDStoUTCs80(year, day, (hours * 60.0 + minutes) * 60.0);
                section = AppendSection(time, L"00:00:00", L"000:00:00");
                last = nullptr;
                continue;
            }
            double depth = 0.0, velocity = 0.0;
            if (!section || std::sscanf(line.c_str(), "%lf %lf", &depth, &velocity) != 2 || !std::isfinite(depth) ||
                !std::isfinite(velocity)) {
                say("VelmSvpFile::ReadVersion1(): unable to read line %d\n", lines.lineNumber());
                return kUnreadableLine;
            }
            last = AppendValue(section, depth, velocity, last);
        }
        return lines.readError() ? kUnreadableLine : 0;
    } catch (...) {
        return kOutOfMemory;
    }
}

int VelmSvpFile::UpdateDataFile() {
    try {
        std::string name = MORVAUString(FileName().c_str()).toUtf8();
        // A line break in the name would end the name line early.
        for (char &c : name)
            if (c == '\n' || c == '\r') c = ' ';
        std::string text = "[SVP_VERSION_2]\n" + name + "\n";
        for (const SvpSections *s = GetSections(); s; s = s->next) {
            if (s->state == kRemoved) continue;
            velmio::svp::CalendarTime t;
            if (!velmio::svp::splitTime(s->time, t)) {
                SetErrorText(EINVAL);
                return -1;
            }
            std::string when =
                velmio::svp::format("%d-%03d %02d:%02d:%02d", t.year, t.dayOfYear, t.hours, t.minutes, t.seconds);
            std::string lat = s->latitude.empty() ? std::string("00 00 00") : s->latitude.toUtf8();
            std::string lon = s->longitude.empty() ? std::string("000 00 00") : s->longitude.toUtf8();
            text += velmio::svp::format("Section %s %s %s\n", when.c_str(), lat.c_str(), lon.c_str());
            for (const SvpValue *v = s->values; v; v = v->next)
                if (v->state != kRemoved) text += velmio::svp::format("  %lf %lf\n", v->depth, v->velocity);
        }
        return ReplaceFile(text);
    } catch (...) {
        SetErrorText(ENOMEM);
        return -1;
    }
}
