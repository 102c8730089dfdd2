// The RAN profile formats: Dat (one comma-separated line per value) and Edf
// (keyword header and a table per cast).
#include <velmio/svp.hpp>

#include "foundation/classic_locale.h"
#include "foundation/diagnostics.h"
#include "platform/files.h"
#include "platform/stdio_file.h"
#include "svp/svp_text.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>

using velmio::ClassicLocaleScope;
using velmio::svp::LineReader;

namespace {

struct FileCloser {
    void operator()(std::FILE *f) const {
        if (f) velmio::platform::closeFile(f);
    }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

const char *const kDefaultDatTitle = "Latitude ,Longitude ,Depth ,Date Time, Temperature ,Velocity";
const char *const kDefaultEdfHeading = "Depth (m)  Temperature (C)  Velocity (m/s)";

// The index of the row read at time and depth, or -1. Rows are usually
// written in the order read, so the search starts at hint.
template <typename Row>
long findRow(const std::vector<Row> &rows, double time, double depth, double tolerance, std::size_t &hint) {
    for (std::size_t k = 0; k < rows.size(); ++k) {
        std::size_t i = (hint + k) % rows.size();
        if (rows[i].time == time && std::fabs(rows[i].depth - depth) <= tolerance) {
            hint = i + 1;
            return static_cast<long>(i);
        }
    }
    return -1;
}

}  // namespace

struct RANSvpFile_Dat::Impl {
    std::string title_;
    std::vector<DataLine> lines_;
};

RANSvpFile_Dat::RANSvpFile_Dat() : d_(new Impl) {}
RANSvpFile_Dat::RANSvpFile_Dat(const MORVAUString &fileName) : SvpFile(fileName), d_(new Impl) {}
RANSvpFile_Dat::RANSvpFile_Dat(const RANSvpFile_Dat &other) : SvpFile(other), d_(new Impl(*other.d_)) {}
RANSvpFile_Dat::~RANSvpFile_Dat() = default;

RANSvpFile_Dat &RANSvpFile_Dat::operator=(const RANSvpFile_Dat &other) {
    SvpFile::operator=(other);
    *d_ = *other.d_;
    return *this;
}

const std::vector<RANSvpFile_Dat::DataLine> &RANSvpFile_Dat::GetDataList() const { return d_->lines_; }
const std::string &RANSvpFile_Dat::GetTitle() const { return d_->title_; }

struct RANSvpFile_Edf::Impl {
    std::vector<DataRow> rows_;
    std::vector<CastHeader> headers_;
};

RANSvpFile_Edf::RANSvpFile_Edf() : d_(new Impl) {}
RANSvpFile_Edf::RANSvpFile_Edf(const MORVAUString &fileName) : SvpFile(fileName), d_(new Impl) {}
RANSvpFile_Edf::RANSvpFile_Edf(const RANSvpFile_Edf &other) : SvpFile(other), d_(new Impl(*other.d_)) {}
RANSvpFile_Edf::~RANSvpFile_Edf() = default;

RANSvpFile_Edf &RANSvpFile_Edf::operator=(const RANSvpFile_Edf &other) {
    SvpFile::operator=(other);
    *d_ = *other.d_;
    return *this;
}

const std::vector<RANSvpFile_Edf::DataRow> &RANSvpFile_Edf::GetDataList() const { return d_->rows_; }
const std::vector<RANSvpFile_Edf::CastHeader> &RANSvpFile_Edf::GetHeaderValues() const { return d_->headers_; }

// ---- RAN Dat ----

bool RANSvpFile_Dat::DecodeTimeStamp(const std::string &date, const std::string &clock, double &time) {
    ClassicLocaleScope classic;
    std::string d = date;
    for (char &c : d)
        if (c == '/' || c == '-' || c == '.') c = ' ';
    int day = 0, month = 0, year = 0, hours = 0, minutes = 0, seconds = 0;
    if (std::sscanf(d.c_str(), "%d %d %d", &day, &month, &year) != 3) return false;
    if (std::sscanf(clock.c_str(), "%d:%d:%d", &hours, &minutes, &seconds) != 3) return false;
    year = velmio::svp::fullYear(year);
    if (!velmio::svp::validDateTime(year, month, day, hours, minutes, seconds)) return false;
    time = velmio::svp::utcFromCalendar(year, month, day, hours * 3600.0 + minutes * 60.0 + seconds);
    return true;
}

bool RANSvpFile_Dat::DecodeData(const std::string &line, DataLine &data) {
    std::string work = line;
    for (char &c : work)
        if (c == ',') c = ' ';
    std::vector<std::vector<char>> w(7, std::vector<char>(work.size() + 1, '\0'));
    int n = std::sscanf(work.c_str(), "%s %s %s %s %s %s %s", w[0].data(), w[1].data(), w[2].data(), w[3].data(),
                        w[4].data(), w[5].data(), w[6].data());
    if (n != 7) return false;
    DataLine d;
    using velmio::svp::parseNumber;
    if (!parseNumber(w[0].data(), d.latitude) || !parseNumber(w[1].data(), d.longitude) ||
        !parseNumber(w[2].data(), d.depth) || !parseNumber(w[5].data(), d.temperature) ||
        !parseNumber(w[6].data(), d.velocity))
        return false;
    if (d.depth == 0.0 || !(d.velocity >= 1000.0 && d.velocity <= 2000.0)) return false;
    if (std::fabs(d.latitude) > 90.0 || std::fabs(d.longitude) > 180.0) return false;
    d.date = w[3].data();
    d.clock = w[4].data();
    if (!DecodeTimeStamp(d.date, d.clock, d.time)) return false;
    data = d;
    return true;
}

int RANSvpFile_Dat::ReadInData() {
    try {
        ClearSections();
        d_->lines_.clear();
        d_->title_.clear();
        File in(velmio::platform::openFile(FileName().c_str(), "rb"));
        if (!in) {
            velmio::say("RANSvpFile_Dat::ReadInData(): unable to open '%s'\n",
                        velmio::printable(FileName().c_str()).c_str());
            return kCannotOpen;
        }
        LineReader lines(in.get());
        std::string line;
        if (!lines.next(d_->title_)) return lines.readError() ? kUnreadableLine : 0;
        SvpSections *section = nullptr;
        SvpValue *last = nullptr;
        while (lines.nextNonEmpty(line)) {
            DataLine d;
            if (!DecodeData(line, d)) {
                velmio::say("RANSvpFile_Dat::ReadInData(): unable to decode line %d\n", lines.lineNumber());
                return kUnreadableLine;
            }
            if (!section || section->time != d.time) {
                section = AppendSection(d.time, MORVAUString::fromUtf8(velmio::svp::dmsTextHundredths(d.latitude).c_str()),
                                        MORVAUString::fromUtf8(velmio::svp::dmsTextHundredths(d.longitude).c_str()));
                last = nullptr;
            }
            last = AppendValue(section, d.depth, d.velocity, last);
            d_->lines_.push_back(d);
        }
        return lines.readError() ? kUnreadableLine : 0;
    } catch (...) {
        return kOutOfMemory;
    }
}

int RANSvpFile_Dat::UpdateDataFile() {
    try {
        std::string text = (d_->title_.empty() ? std::string(kDefaultDatTitle) : d_->title_) + "\n";
        std::size_t hint = 0;
        for (const SvpSections *s = GetSections(); s; s = s->next) {
            if (s->state == kRemoved) continue;
            velmio::svp::CalendarTime t;
            if (!velmio::svp::splitTime(s->time, t)) {
                SetErrorText(EINVAL);
                return -1;
            }
            const std::string date = velmio::svp::format("%02d/%02d/%04d", t.day, t.month, t.year);
            const std::string clock = velmio::svp::format("%02d:%02d:%02d", t.hours, t.minutes, t.seconds);
            const double lat = s->GetLatitude(), lon = s->GetLongitude();
            for (const SvpValue *v = s->values; v; v = v->next) {
                if (v->state == kRemoved) continue;
                long row = findRow(d_->lines_, s->time, v->depth, GetEpsilon(), hint);
                // The texts as read, so that an unchanged line stays unchanged.
                const DataLine *read = row >= 0 ? &d_->lines_[static_cast<std::size_t>(row)] : nullptr;
                text += velmio::svp::format("%+8.4lf ,%+8.4lf ,%+08.3lf ,%s %s, %+8.4lf ,%+10.4lf\n", lat, lon,
                                            v->depth, read ? read->date.c_str() : date.c_str(),
                                            read ? read->clock.c_str() : clock.c_str(),
                                            read ? read->temperature : 0.0, v->velocity);
            }
        }
        return ReplaceFile(text);
    } catch (...) {
        SetErrorText(ENOMEM);
        return -1;
    }
}

// ---- RAN Edf ----

namespace {

enum class EdfKeyword { None, Latitude, Longitude, Date, Time, Heading };

EdfKeyword keywordOf(const std::string &line) {
    using velmio::svp::startsWithIgnoreCase;
    if (startsWithIgnoreCase(line, "Latitude")) return EdfKeyword::Latitude;
    if (startsWithIgnoreCase(line, "Longitude")) return EdfKeyword::Longitude;
    if (startsWithIgnoreCase(line, "Date of")) return EdfKeyword::Date;
    if (startsWithIgnoreCase(line, "Time of")) return EdfKeyword::Time;
    if (startsWithIgnoreCase(line, "Depth (m)")) return EdfKeyword::Heading;
    return EdfKeyword::None;
}

// The value part of a keyword line: what follows the first ":".
std::string valueOf(const std::string &line, std::size_t keywordLength) {
    std::size_t colon = line.find(':');
    return colon == std::string::npos ? line.substr(keywordLength) : line.substr(colon + 1);
}

// "45  7.400N": whole degrees and decimal minutes with a hemisphere letter.
bool readPosition(const std::string &value, char positive, char negative, int maxDegrees, int degreeDigits,
                  std::string &text) {
    std::vector<char> word(value.size() + 1, '\0');
    int degrees = 0;
    if (std::sscanf(value.c_str(), "%d %s", &degrees, word.data()) != 2) return false;
    std::string minutesText = word.data();
    bool south = false;
    if (!minutesText.empty() && std::isalpha(static_cast<unsigned char>(minutesText.back()))) {
        char h = static_cast<char>(std::toupper(static_cast<unsigned char>(minutesText.back())));
        if (h != positive && h != negative) return false;
        south = h == negative;
        minutesText.pop_back();
    }
    double minutes = 0.0;
    if (!velmio::svp::parseNumber(minutesText, minutes) || minutes < 0.0 || minutes >= 60.0) return false;
    if (degrees < 0 || degrees > maxDegrees) return false;
    text = velmio::svp::dmsTextFromMinutes(south, degrees, minutes, degreeDigits);
    return true;
}

// Whole degrees and minutes to three decimals of a position in degrees.
void degreesAndMinutes(double value, int &degrees, double &minutes) {
    long long thousandths = std::llround(std::fabs(value) * 60000.0);
    degrees = static_cast<int>(thousandths / 60000);
    minutes = static_cast<double>(thousandths % 60000) / 1000.0;
}

}  // namespace

int RANSvpFile_Edf::DecodeData(const std::string &line, DataRow &row) {
    ClassicLocaleScope classic;
    double depth = 0.0, temperature = 0.0, velocity = 0.0;
    if (std::sscanf(line.c_str(), "%lf %lf %lf", &depth, &temperature, &velocity) != 3) return -1;
    if (!std::isfinite(depth) || !std::isfinite(temperature) || !std::isfinite(velocity)) return -1;
    depth = std::round(depth * 100.0) / 100.0;
    row = DataRow{depth, temperature, velocity, 0.0};
    return depth != 0.0 && velocity >= 1000.0 && velocity <= 2000.0 ? 1 : 0;
}

int RANSvpFile_Edf::ReadInData() {
    try {
        ClearSections();
        d_->rows_.clear();
        d_->headers_.clear();
        File in(velmio::platform::openFile(FileName().c_str(), "rb"));
        if (!in) {
            velmio::say("RANSvpFile_Edf::ReadInData(): unable to open '%s'\n",
                        velmio::printable(FileName().c_str()).c_str());
            return kCannotOpen;
        }
        ClassicLocaleScope classic;
        LineReader lines(in.get());
        std::string line;

        CastHeader header{0.0, {}, {}};
        std::string latitude, longitude;
        int day = 0, month = 0, year = 0, hours = 0, minutes = 0, seconds = 0;
        bool haveDate = false, haveTime = false, inTable = false;
        SvpSections *section = nullptr;
        SvpValue *last = nullptr;

        auto fail = [&lines]() {
            velmio::say("RANSvpFile_Edf::ReadInData(): unable to read line %d\n", lines.lineNumber());
            return kUnreadableLine;
        };
        while (lines.nextNonEmpty(line)) {
            const EdfKeyword keyword = keywordOf(line);
            if (keyword != EdfKeyword::None && inTable) {
                // The next cast begins.
                header = CastHeader{0.0, {}, {}};
                latitude.clear();
                longitude.clear();
                haveDate = haveTime = inTable = false;
                section = nullptr;
            }
            switch (keyword) {
            case EdfKeyword::Latitude:
                if (!readPosition(valueOf(line, 8), 'N', 'S', 90, 2, latitude)) return fail();
                break;
            case EdfKeyword::Longitude:
                if (!readPosition(valueOf(line, 9), 'E', 'W', 180, 3, longitude)) return fail();
                break;
            case EdfKeyword::Date:
                if (std::sscanf(valueOf(line, 7).c_str(), "%d/%d/%d", &day, &month, &year) != 3) return fail();
                year = velmio::svp::fullYear(year);
                haveDate = true;
                break;
            case EdfKeyword::Time:
                if (std::sscanf(valueOf(line, 7).c_str(), "%d:%d:%d", &hours, &minutes, &seconds) != 3) return fail();
                haveTime = true;
                break;
            case EdfKeyword::Heading: {
                if (!haveDate || !haveTime ||
                    !velmio::svp::validDateTime(year, month, day, hours, minutes, seconds))
                    return fail();
                const double time =
                    velmio::svp::utcFromCalendar(year, month, day, hours * 3600.0 + minutes * 60.0 + seconds);
                section = AppendSection(time,
                                        MORVAUString::fromUtf8(latitude.empty() ? "00:00:00" : latitude.c_str()),
                                        MORVAUString::fromUtf8(longitude.empty() ? "00:00:00" : longitude.c_str()));
                last = nullptr;
                header.time = time;
                header.heading = line;
                d_->headers_.push_back(header);
                inTable = true;
                break;
            }
            case EdfKeyword::None:
                if (!inTable) {
                    header.otherLines.push_back(line);
                    break;
                }
                DataRow row;
                const int accepted = DecodeData(line, row);
                if (accepted < 0) return fail();
                if (accepted == 0) break;
                row.time = section->time;
                last = AppendValue(section, row.depth, row.velocity, last);
                d_->rows_.push_back(row);
                break;
            }
        }
        return lines.readError() ? kUnreadableLine : 0;
    } catch (...) {
        return kOutOfMemory;
    }
}

int RANSvpFile_Edf::UpdateDataFile() {
    try {
        std::string text;
        std::size_t hint = 0;
        for (const SvpSections *s = GetSections(); s; s = s->next) {
            if (s->state == kRemoved) continue;
            velmio::svp::CalendarTime t;
            if (!velmio::svp::splitTime(s->time, t)) {
                SetErrorText(EINVAL);
                return -1;
            }
            const CastHeader *read = nullptr;
            for (const CastHeader &h : d_->headers_)
                if (h.time == s->time) {
                    read = &h;
                    break;
                }
            if (read)
                for (const std::string &other : read->otherLines) text += other + "\n";

            const double lat = s->GetLatitude(), lon = s->GetLongitude();
            int degrees = 0;
            double minutes = 0.0;
            degreesAndMinutes(lat, degrees, minutes);
            text += velmio::svp::format(lat < 0.0 ? "Latitude      :  %d %6.3lfS\n" : "Latitude      :  %d %6.3lfN\n",
                                        degrees, minutes);
            degreesAndMinutes(lon, degrees, minutes);
            text += velmio::svp::format(lon < 0.0 ? "Longitude     :  %d %6.3lfW\n" : "Longitude     :  %d %6.3lfE\n",
                                        degrees, minutes);
            text += velmio::svp::format("Date of Cast  :  %02d/%02d/%04d\n", t.day, t.month, t.year);
            text += velmio::svp::format("Time of Cast  :  %02d:%02d:%02d\n", t.hours, t.minutes, t.seconds);
            text += (read && !read->heading.empty() ? read->heading : std::string(kDefaultEdfHeading)) + "\n";
            for (const SvpValue *v = s->values; v; v = v->next) {
                if (v->state == kRemoved) continue;
                long row = findRow(d_->rows_, s->time, v->depth, GetEpsilon(), hint);
                double temperature = row >= 0 ? d_->rows_[static_cast<std::size_t>(row)].temperature : 0.0;
                text += velmio::svp::format("%.1lf %.2lf %.2lf\n", v->depth, temperature, v->velocity);
            }
        }
        return ReplaceFile(text);
    } catch (...) {
        SetErrorText(ENOMEM);
        return -1;
    }
}
