// The CHS profile format: a parenthesised header line per cast, then depth
// and velocity lines.
#include <velmio/svp.hpp>

#include "foundation/classic_locale.h"
#include "foundation/diagnostics.h"
#include "platform/files.h"
#include "platform/stdio_file.h"
#include "svp/svp_text.h"

#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

using velmio::ClassicLocaleScope;
using velmio::svp::LineReader;

namespace {

struct FileCloser {
    void operator()(std::FILE *f) const {
        if (f) velmio::platform::closeFile(f);
    }
};

// A word buffer that any word of text fits in.
std::vector<char> wordBuffer(const std::string &text) { return std::vector<char>(text.size() + 1, '\0'); }

}  // namespace

struct CHSSvpFile::Impl {
    std::vector<CastHeader> headers_;
};

CHSSvpFile::CHSSvpFile() : d_(new Impl) {}
CHSSvpFile::CHSSvpFile(const MORVAUString &fileName) : SvpFile(fileName), d_(new Impl) {}
CHSSvpFile::CHSSvpFile(const CHSSvpFile &other) : SvpFile(other), d_(new Impl(*other.d_)) {}
CHSSvpFile::~CHSSvpFile() = default;

CHSSvpFile &CHSSvpFile::operator=(const CHSSvpFile &other) {
    SvpFile::operator=(other);
    *d_ = *other.d_;
    return *this;
}

const std::string &CHSSvpFile::GetHeader() const {
    static const std::string none;
    return d_->headers_.empty() ? none : d_->headers_.front().line;
}

int CHSSvpFile::GenerateHeader(std::string &header, double time, double latitude, double longitude, int count) {
    velmio::svp::CalendarTime t;
    if (!velmio::svp::splitTime(time, t)) return -1;
    header = velmio::svp::format(
        "( SoundVelocity 1.01 1 %4d%02d%02d%02d%02d %.7lf %.7lf -1 %4d%02d%02d%02d%02d %4d%02d%02d%02d%02d "
        "SVPEDITOR N %d )\n",
        t.year, t.month, t.day, t.hours, t.minutes, latitude, longitude, t.year, t.month, t.day, t.hours, t.minutes,
        t.year, t.month, t.day, t.hours, t.minutes, count);
    return 0;
}

int CHSSvpFile::UpdateHeader(std::string &header, double latitude, double longitude, int count) {
    std::vector<std::vector<char>> w(14, wordBuffer(header));
    int n = std::sscanf(header.c_str(), "%s %s %s %s %s %s %s %s %s %s %s %s %s %s", w[0].data(), w[1].data(),
                        w[2].data(), w[3].data(), w[4].data(), w[5].data(), w[6].data(), w[7].data(), w[8].data(),
                        w[9].data(), w[10].data(), w[11].data(), w[12].data(), w[13].data());
    if (n != 14) return kUnreadableLine;
    header = velmio::svp::format("%s %s %s %s %s %.7lf %.7lf %s %s %s %s %s %d %s\n", w[0].data(), w[1].data(),
                                 w[2].data(), w[3].data(), w[4].data(), latitude, longitude, w[7].data(), w[8].data(),
                                 w[9].data(), w[10].data(), w[11].data(), count, w[13].data());
    return 0;
}

int CHSSvpFile::ParseHeader(const std::string &header, double &time, MORVAUString &latitude,
                            MORVAUString &longitude, int &count) {
    ClassicLocaleScope classic;
    std::vector<char> open = wordBuffer(header), name = wordBuffer(header), one = wordBuffer(header),
                      created = wordBuffer(header), minusOne = wordBuffer(header), edited = wordBuffer(header),
                      editor = wordBuffer(header), flag = wordBuffer(header);
    double version = 0.0, lat = 0.0, lon = 0.0;
    std::int64_t cast = 0;
    int values = 0;
    int n = std::sscanf(header.c_str(), "%s %s %lf %s %s %lf %lf %s %" SCNd64 " %s %s %s %d", open.data(),
                        name.data(), &version, one.data(), created.data(), &lat, &lon, minusOne.data(), &cast,
                        edited.data(), editor.data(), flag.data(), &values);
    if (n != 13 || std::strcmp(open.data(), "(") != 0 || std::strcmp(name.data(), "SoundVelocity") != 0)
        return kUnreadableLine;
    if (!std::isfinite(lat) || !std::isfinite(lon) || std::fabs(lat) > 90.0 || std::fabs(lon) > 180.0)
        return kUnreadableLine;
    // YYYYMMDDhhmm
    if (cast < 0) return kUnreadableLine;
    std::int64_t year = cast / 100000000;
    int month = static_cast<int>(cast / 1000000 % 100);
    int day = static_cast<int>(cast / 10000 % 100);
    int hours = static_cast<int>(cast / 100 % 100);
    int minutes = static_cast<int>(cast % 100);
    if (year > 3000 || !velmio::svp::validDateTime(static_cast<int>(year), month, day, hours, minutes, 0.0))
        return kUnreadableLine;
    time = velmio::svp::utcFromCalendar(static_cast<int>(year), month, day, hours * 3600.0 + minutes * 60.0);
    latitude = MORVAUString::fromUtf8(velmio::svp::dmsTextWhole(lat, 1).c_str());
    longitude = MORVAUString::fromUtf8(velmio::svp::dmsTextWhole(lon, 1).c_str());
    count = values;
    return 0;
}

int CHSSvpFile::ReadInData() {
    try {
        ClearSections();
        d_->headers_.clear();
        std::unique_ptr<std::FILE, FileCloser> in(velmio::platform::openFile(FileName().c_str(), "rb"));
        if (!in) {
            velmio::say("CHSSvpFile::ReadInData(): unable to open '%s'\n", velmio::printable(FileName().c_str()).c_str());
            return kCannotOpen;
        }
        ClassicLocaleScope classic;
        LineReader lines(in.get());
        std::string line;
        SvpSections *section = nullptr;
        SvpValue *last = nullptr;
        while (lines.nextNonEmpty(line)) {
            if (line[0] == '(') {
                double time = 0.0;
                MORVAUString latitude, longitude;
                int count = 0;
                if (ParseHeader(line, time, latitude, longitude, count) != 0) {
                    velmio::say("CHSSvpFile::ReadInData(): unable to read header line %d\n", lines.lineNumber());
                    return kUnreadableLine;
                }
                section = AppendSection(time, latitude, longitude);
                d_->headers_.push_back(CastHeader{time, line});
                last = nullptr;
                continue;
            }
            double depth = 0.0, velocity = 0.0;
            if (!section || std::sscanf(line.c_str(), "%lf %lf", &depth, &velocity) != 2) continue;
            if (!std::isfinite(depth) || !std::isfinite(velocity)) continue;
            last = AppendValue(section, depth, velocity, last);
        }
        return lines.readError() ? kUnreadableLine : 0;
    } catch (...) {
        return kOutOfMemory;
    }
}

int CHSSvpFile::UpdateDataFile() {
    try {
        std::string text;
        for (const SvpSections *s = GetSections(); s; s = s->next) {
            if (s->state == kRemoved) continue;
            const int count = LiveValueCount(s);
            std::string header;
            bool made = false;
            for (const CastHeader &h : d_->headers_) {
                if (h.time != s->time) continue;
                header = h.line;
                made = UpdateHeader(header, s->GetLatitude(), s->GetLongitude(), count) == 0;
                break;
            }
            if (!made && GenerateHeader(header, s->time, s->GetLatitude(), s->GetLongitude(), count) != 0) {
                SetErrorText(EINVAL);
                return -1;
            }
            text += header;
            for (const SvpValue *v = s->values; v; v = v->next)
                if (v->state != kRemoved) text += velmio::svp::format("%.2lf   %.2lf\n", v->depth, v->velocity);
        }
        return ReplaceFile(text);
    } catch (...) {
        SetErrorText(ENOMEM);
        return -1;
    }
}
