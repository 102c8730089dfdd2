#include "svp/svp_text.h"

#include <velmio/time_conversions.h>

#include "foundation/classic_locale.h"
#include "platform/durable_replace.h"
#include "platform/stdio_file.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <memory>

namespace velmio::svp {

bool LineReader::next(std::string &line) {
    if (hasPending_) {
        hasPending_ = false;
        line.swap(pending_);
        return true;
    }
    line.clear();
    int c = platform::readChar(file_, failed_);
    if (c == EOF) return false;
    ++number_;
    while (c != EOF && c != '\n') {
        if (line.size() < kMaxLineLength) line.push_back(static_cast<char>(c));
        c = platform::readChar(file_, failed_);
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

bool LineReader::nextNonEmpty(std::string &line) {
    while (next(line))
        if (!line.empty()) return true;
    return false;
}

void LineReader::pushBack(const std::string &line) {
    pending_ = line;
    hasPending_ = true;
}

bool startsWith(const std::string &text, const char *prefix) {
    return text.compare(0, std::char_traits<char>::length(prefix), prefix) == 0;
}

bool startsWithIgnoreCase(const std::string &text, const char *prefix) {
    std::size_t n = std::char_traits<char>::length(prefix);
    if (text.size() < n) return false;
    for (std::size_t i = 0; i < n; ++i) {
        unsigned char a = static_cast<unsigned char>(text[i]);
        unsigned char b = static_cast<unsigned char>(prefix[i]);
        if (std::tolower(a) != std::tolower(b)) return false;
    }
    return true;
}

std::vector<std::string> splitWords(const std::string &text) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
        std::size_t start = i;
        while (i < text.size() && text[i] != ' ' && text[i] != '\t') ++i;
        if (i > start) words.push_back(text.substr(start, i - start));
    }
    return words;
}

bool isFinite(double value) { return std::isfinite(value); }

bool parseNumber(const std::string &word, double &value) {
    if (word.empty()) return false;
    ClassicLocaleScope classic;
    char *end = nullptr;
    value = std::strtod(word.c_str(), &end);
    return end == word.c_str() + word.size() && std::isfinite(value);
}

std::string format(const char *fmt, ...) {
    ClassicLocaleScope classic;
    char small[256];
    va_list args;
    va_start(args, fmt);
    int n = std::vsnprintf(small, sizeof small, fmt, args);
    va_end(args);
    if (n < 0) return std::string();
    if (static_cast<std::size_t>(n) < sizeof small) return std::string(small, static_cast<std::size_t>(n));
    std::string out(static_cast<std::size_t>(n) + 1, '\0');
    va_start(args, fmt);
    std::vsnprintf(&out[0], out.size(), fmt, args);
    va_end(args);
    out.resize(static_cast<std::size_t>(n));
    return out;
}

int fullYear(int year) {
    if (year >= 0 && year < 80) return year + 2000;
    if (year >= 80 && year < 100) return year + 1900;
    return year;
}

namespace {
bool isLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int monthLength(int year, int month) {
    static const int lengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : lengths[month - 1];
}
}  // namespace

bool validDateTime(int year, int month, int day, int hours, int minutes, double seconds) {
    if (year < 1900 || year > 3000 || month < 1 || month > 12) return false;
    if (day < 1 || day > monthLength(year, month)) return false;
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59) return false;
    // 60 is a leap second.
    return seconds >= 0.0 && seconds < 61.0;
}

double utcFromCalendar(int year, int month, int day, double secondsOfDay) {
    return TmYDStoUTCs80(year, TmYMDtoJD(year, month, day), secondsOfDay);
}

bool splitTime(double utc80, CalendarTime &out) {
    if (!std::isfinite(utc80)) return false;
    int year = -1, day = -1;
    double seconds = -1.0;
    TmUTCs80toYDS(utc80, &year, &day, &seconds);
    if (year < 1900 || year > 3000 || day < 1 || seconds < 0.0) return false;
    // The conversion leaves an exact year end as day 366 (367) of that year.
    int length = isLeap(year) ? 366 : 365;
    if (day > length) {
        day -= length;
        ++year;
    }
    out.year = year;
    out.dayOfYear = day;
    TmYJDtoMD(year, day, &out.month, &out.day);
    double fraction = 0.0;
    TmStoHMSX(seconds, &out.hours, &out.minutes, &out.seconds, &fraction);
    return true;
}

std::string signedDegrees(bool negative, int degrees, int width) {
    degrees = std::abs(degrees);
    if (negative) return format("-%0*d", width > 1 ? width - 1 : 1, degrees);
    return format("%0*d", width, degrees);
}

std::string dmsText(bool negative, int degrees, int minutes, double seconds) {
    return signedDegrees(negative, degrees, 2) + format(":%02d:%02.2f", minutes, seconds);
}

std::string dmsTextHundredths(double degrees) {
    long long total = std::llround(std::fabs(degrees) * 360000.0);
    int d = static_cast<int>(total / 360000);
    int m = static_cast<int>(total / 6000 % 60);
    double s = static_cast<double>(total % 6000) / 100.0;
    return dmsText(degrees < 0.0 && total > 0, d, m, s);
}

namespace {
std::string wholeSecondsText(bool negative, long long totalSeconds, int degreeDigits) {
    int d = static_cast<int>(totalSeconds / 3600);
    int m = static_cast<int>(totalSeconds / 60 % 60);
    int s = static_cast<int>(totalSeconds % 60);
    return format("%s%0*d:%02d:%02d", negative && totalSeconds > 0 ? "-" : "", degreeDigits, d, m, s);
}
}  // namespace

std::string dmsTextWhole(double degrees, int degreeDigits) {
    return wholeSecondsText(degrees < 0.0, std::llround(std::fabs(degrees) * 3600.0), degreeDigits);
}

std::string dmsTextFromMinutes(bool negative, int degrees, double minutes, int degreeDigits) {
    double whole = std::trunc(minutes);
    long long seconds = static_cast<long long>((minutes - whole) * 60.0 + 0.5);
    long long total = static_cast<long long>(std::abs(degrees)) * 3600 + static_cast<long long>(whole) * 60 + seconds;
    return wholeSecondsText(negative, total, degreeDigits);
}

int replaceFile(const std::wstring &target, const std::string &text) {
    return platform::replaceFile(target, [&](std::FILE *out) {
        errno = 0;
        if (!text.empty() && platform::writeFile(text.data(), 1, text.size(), out) != text.size())
            return errno != 0 ? errno : EIO;
        return 0;
    });
}

}  // namespace velmio::svp
