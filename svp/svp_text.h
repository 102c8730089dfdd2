// The pieces every profile format shares: bounded line reading, words,
// numbers, calendar checks and the position texts.
#ifndef VELMIO_SVP_SVP_TEXT_H
#define VELMIO_SVP_SVP_TEXT_H

#include <cstdio>
#include <string>
#include <vector>

namespace velmio::svp {

// Longest line kept; the rest of a longer line is dropped.
constexpr std::size_t kMaxLineLength = 256;

// Reads lines straight from the stream (no read-ahead, so the stream position
// stays at the start of the next line).
class LineReader {
public:
    explicit LineReader(std::FILE *file) : file_(file) {}
    // The next line without "\n" or "\r\n"; false at the end of the file.
    bool next(std::string &line);
    // The next line that is not empty.
    bool nextNonEmpty(std::string &line);
    // Hands line out again on the next call.
    void pushBack(const std::string &line);
    bool readError() const { return failed_; }
    // Number of the line handed out last, counted from 1 at the stream's
    // position when the reader was made.
    int lineNumber() const { return hasPending_ ? number_ - 1 : number_; }

private:
    std::FILE *file_;
    int number_ = 0;
    std::string pending_;
    bool hasPending_ = false;
    bool failed_ = false;
};

bool startsWith(const std::string &text, const char *prefix);
bool startsWithIgnoreCase(const std::string &text, const char *prefix);
// Words separated by blanks or tabs.
std::vector<std::string> splitWords(const std::string &text);
// A whole word as a finite number (the "C" locale); false otherwise.
bool parseNumber(const std::string &word, double &value);
bool isFinite(double value);

// printf into a string in the "C" locale.
std::string format(const char *fmt, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// Two-digit years: 80..99 are 19xx, 0..79 are 20xx.
int fullYear(int year);
// A date and time that the time conversions represent: years 1900..3000.
bool validDateTime(int year, int month, int day, int hours, int minutes, double seconds);
// UTC seconds since 1980 of a checked calendar date and seconds of day.
double utcFromCalendar(int year, int month, int day, double secondsOfDay);

// Calendar parts of a time; false when the time is outside what the
// conversions represent.
struct CalendarTime {
    int year, dayOfYear, month, day, hours, minutes, seconds;
};
bool splitTime(double utc80, CalendarTime &out);

// Position texts. The sign is kept even for 0 degrees ("-0:30:00").
// Degrees printed at least width wide with the sign counted in the width, as
// "%02d" or "%03d" print a negative number, but with "-" also for 0.
std::string signedDegrees(bool negative, int degrees, int width);
// From degrees, minutes and seconds read from a file ("%02d:%02d:%02.2f").
std::string dmsText(bool negative, int degrees, int minutes, double seconds);
// From decimal degrees, to 0.01 second of arc ("%02d:%02d:%02.2f").
std::string dmsTextHundredths(double degrees);
// From decimal degrees, to whole seconds, degrees printed with at least
// degreeDigits digits ("%d", "%02d" or "%03d").
std::string dmsTextWhole(double degrees, int degreeDigits);
// From whole degrees and decimal minutes, to whole seconds.
std::string dmsTextFromMinutes(bool negative, int degrees, double minutes, int degreeDigits);

// Writes text over target through a temporary file in its directory; 0 or the
// errno of the failure (the target is then untouched).
int replaceFile(const std::wstring &target, const std::string &text);

}  // namespace velmio::svp

#endif
