// Sound velocity profile files: the in-memory model of casts shared by every
// format, the native text format and the CHS, RAN Dat and RAN Edf formats.
//
// A file holds casts ("sections"), each with a time (UTC seconds since 1980,
// leap seconds counted, as TmYDStoUTCs80 makes it), a latitude and longitude
// text ("dd:mm:ss.ss", a leading "-" for south or west) and a list of depth
// (metres, positive down) and sound velocity (metres per second) values.
// Removed sections and values stay in the lists with state kRemoved; lookups
// report them and writing skips them.
//
// Every format reads text lines of at most 256 characters: the rest of a
// longer line is dropped, a trailing carriage return is cut off like the line
// feed, and empty lines are skipped. Numbers are read and written in the "C"
// locale whatever the caller's locale. Files are written with bare line feeds.
//
// Writing (UpdateDataFile) never loses the existing file: the text goes to a
// temporary file in the target's directory, which replaces the target only
// when it was written whole. On failure the old file is untouched, -1 is
// returned and GetErrorText() holds the system's error text. A replaced file
// keeps the permissions of the file it replaces (new files get 0644).
#ifndef VELMIO_SVP_HPP
#define VELMIO_SVP_HPP

#include <velmio/export.h>
#include <velmio/morva_string.hpp>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

// The model and the root of the format classes. Objects are not shared
// between threads. Reading replaces the whole model; a reading failure keeps
// the sections read before the bad line.
class VELMIO_API SvpFile {
public:
    static constexpr int kSectionRemoved = 5016003;
    static constexpr int kValueRemoved = 5016004;
    static constexpr int kNoSuchSection = 5016005;
    static constexpr int kNoSuchDepth = 5016006;
    static constexpr int kUnreadableLine = 5016009;
    static constexpr int kCannotOpen = 5016011;
    static constexpr int kOutOfMemory = 5000009;

    // Section and value states.
    static constexpr unsigned int kCreated = 1;
    static constexpr unsigned int kRemoved = 2;

    // Initial depth tolerance of the lookups: one millimetre.
    static constexpr double kDefaultEpsilon = 0.001;

    struct SvpValue {
        double velocity;     // m/s
        double depth;        // m
        unsigned int state;  // kCreated or kRemoved
        SvpValue *next;
    };

    class VELMIO_API SvpSections {
    public:
        double time;  // UTC seconds since 1980
        MORVAUString latitude;
        MORVAUString longitude;
        unsigned int state;  // kCreated or kRemoved
        SvpValue *values;
        SvpSections *next;

        // The position texts in decimal degrees (LLDGStringToDouble).
        double GetLatitude() const;
        double GetLongitude() const;
    };

    SvpFile();
    explicit SvpFile(const MORVAUString &fileName);
    SvpFile(const SvpFile &other);
    SvpFile &operator=(const SvpFile &other);
    virtual ~SvpFile();

    // Loads the file named by the model into the model: 0, kCannotOpen,
    // kUnreadableLine or kOutOfMemory.
    virtual int ReadInData() = 0;
    // Writes the sections and values not removed to the file: 0 or -1.
    virtual int UpdateDataFile() = 0;

    // Lookups take the first section whose time equals time exactly and in it
    // the first value whose depth is within the tolerance of depth.
    // Codes: kNoSuchSection, kSectionRemoved, kNoSuchDepth, kValueRemoved.
    int GetSvpValue(double time, double depth, double &velocity) const;
    // Replaces the velocity of an existing value; never inserts one.
    int SetSvpValue(double time, double depth, double velocity);
    // Marks a value removed (kNoSuchSection, kNoSuchDepth).
    int RemoveSvpValue(double time, double depth);
    // Marks a section removed (kNoSuchSection).
    int RemoveSection(double time);
    // Sets the position of the section with that time, or appends a new
    // section. A removed section with that time comes back with the new
    // position and no values.
    int SetSvpSection(double time, const MORVAUString &latitude, const MORVAUString &longitude);
    // The position texts of a section (kNoSuchSection, kSectionRemoved).
    int GetSvpSection(double time, MORVAUString &latitude, MORVAUString &longitude) const;
    // Appends a value to a section (kNoSuchSection, kSectionRemoved); a value
    // at that depth that was removed comes back with the new velocity, and a
    // live one gets the new velocity. Not part of the original model: the
    // only way for a caller to fill a section.
    int AddSvpValue(double time, double depth, double velocity);

    int SetFileName(const MORVAUString &fileName);
    int GetFileName(MORVAUString &fileName) const;
    // Depth tolerance of the lookups in metres; -1 for a negative or
    // non-finite tolerance (the old one is kept).
    int SetEpsilon(double tolerance);
    double GetEpsilon() const;

    // The head of the section list (null when empty); owned by the model.
    const SvpSections *GetSections() const;
    // The system's text of the last writing failure ("" when none).
    const wchar_t *GetErrorText() const;

    // Format detection (see the classes below) and the reader for a file:
    // RAN Edf, else CHS, else RAN Dat, else native. status is 0, or
    // kOutOfMemory with null. The caller owns the object and deletes it with
    // delete; it is not read yet (call ReadInData).
    static bool isCHSFormat(const MORVAUString &fileName);
    static bool isRANDatFormat(const MORVAUString &fileName);
    static bool isRANEdfFormat(const MORVAUString &fileName);
    static SvpFile *GetSvpFormat(const MORVAUString &fileName, int &status);

    // Degrees from a position text: "-" anywhere makes it negative; the text
    // splits at ":" (or blanks) into degrees, minutes and seconds, giving
    // |d| + (|m| + |s| / 60) / 60. A single field is decimal degrees.
    // Unreadable fields count as 0.
    static double LLDGStringToDouble(const MORVAUString &text);

protected:
    const MORVAUString &FileName() const;
    // Appends a live section or value (may throw std::bad_alloc). after is
    // the last value of the section when known, else the list is walked.
    SvpSections *AppendSection(double time, const MORVAUString &latitude, const MORVAUString &longitude);
    static SvpValue *AppendValue(SvpSections *section, double depth, double velocity, SvpValue *after = nullptr);
    void ClearSections();
    // Replaces the model's file with text; 0, or -1 with the error text kept.
    int ReplaceFile(const std::string &text);
    void SetErrorText(int errnum);
    // Number of live values of a section.
    static int LiveValueCount(const SvpSections *section);

private:
    SvpSections *FindSection(double time) const;
    SvpValue *FindValue(const SvpSections *section, double depth) const;
    void CopyFrom(const SvpFile &other);

    // The state lives in the library, so that it can change without breaking
    // programs built against an earlier version.
    struct Impl;
    std::unique_ptr<Impl> d_;
};

// The native format. Version 2, as written:
//   [SVP_VERSION_2]
//   <the file name as the model holds it>
//   Section 2009-083 12:30:05 45:07:24.50 -63:30:0.00
//     10.000000 1480.500000
// The time is written in whole seconds (a fraction is dropped); an empty
// latitude is written "00 00 00", an empty longitude "000 00 00". Version 2
// reading keeps a value only when its depth is not negative and greater than
// the previous one kept and its velocity lies in 1400..2000 m/s; any other
// value line is skipped. Version 1 ("Section yyyy-ddd hh:mm" and "depth
// velocity" lines, no range test) stops with kUnreadableLine at a bad line.
// A leading line that begins with neither "[SVP_VERSION_2]" nor "Section"
// is a title and skipped; leading empty lines are skipped.
class VELMIO_API VelmSvpFile : public SvpFile {
public:
    VelmSvpFile() = default;
    explicit VelmSvpFile(const MORVAUString &fileName) : SvpFile(fileName) {}
    VelmSvpFile(const VelmSvpFile &) = default;
    VelmSvpFile &operator=(const VelmSvpFile &) = default;
    ~VelmSvpFile() override = default;

    int ReadInData() override;
    int UpdateDataFile() override;

    // Read the rest of an open stream as version 1 or 2 sections into the
    // model (the version line already read). 0, kUnreadableLine, kOutOfMemory.
    int ReadVersion1(std::FILE *stream);
    int ReadVersion2(std::FILE *stream);

    // Reads the time and position of a version 2 section line. A time
    // without seconds is rewritten in the full form
    // "Section yyyy-ddd hh:mm:00 dd:mm:ss.ss ddd:mm:ss.ss". The texts are
    // made with "%02d:%02d:%02.2f" (a south or west position keeps its "-",
    // also with 0 degrees). False when neither form fits.
    static bool ParseLatLong(std::string &line, MORVAUString &latitude, MORVAUString &longitude);
    // Turns every ":" into a blank, and the first "-" (firstDashOnly) or
    // every "-" into a blank.
    static void RemovePunctuation(std::string &text, bool firstDashOnly);
};

// The CHS format: a header line per cast
//   ( SoundVelocity 1.01 1 YYYYMMDDhhmm lat lon -1 YYYYMMDDhhmm YYYYMMDDhhmm SVPEDITOR N count )
// (latitude and longitude in decimal degrees, 7 decimals) followed by
// "depth   velocity" lines with 2 decimals. The cast time is the second
// date-time (minute resolution: seconds are dropped on writing). Reading
// requires all 13 header fields, the word "SoundVelocity", a valid date and
// time (years 1900..3000) and a position within +-90 and +-180 degrees, else
// kUnreadableLine; the version and the count are not checked. Value lines
// before the first header or not made of two numbers are skipped. Positions
// are kept to the nearest whole second.
class VELMIO_API CHSSvpFile : public SvpFile {
public:
    CHSSvpFile();
    explicit CHSSvpFile(const MORVAUString &fileName);
    CHSSvpFile(const CHSSvpFile &other);
    CHSSvpFile &operator=(const CHSSvpFile &other);
    ~CHSSvpFile() override;

    int ReadInData() override;
    // A section read from the file is written with its own header line, its
    // position and count replaced (UpdateHeader); a new one gets a header
    // made by GenerateHeader.
    int UpdateDataFile() override;

    // The header of the first cast read ("" when none), without line end.
    const std::string &GetHeader() const;

    // A header line (with its line feed) for a cast; the time goes into all
    // three date-time places. -1 (header unchanged) for a time outside the
    // years 1900..3000.
    static int GenerateHeader(std::string &header, double time, double latitude, double longitude, int count);
    // Replaces latitude, longitude and count of a 14-word header, keeping the
    // other words; kUnreadableLine (header unchanged) when it has fewer words.
    static int UpdateHeader(std::string &header, double latitude, double longitude, int count);
    // Cast time, position texts ("%d:%02d:%02d", "-" for south or west) and
    // count of a header; 0 or kUnreadableLine.
    static int ParseHeader(const std::string &header, double &time, MORVAUString &latitude,
                           MORVAUString &longitude, int &count);

private:
    struct CastHeader {
        double time;
        std::string line;
    };
    struct Impl;
    std::unique_ptr<Impl> d_;
};

// The RAN Dat format: a title line, then one line per value:
//   "%+8.4lf ,%+8.4lf ,%+08.3lf ,%s %s, %+8.4lf ,%+10.4lf"
// that is latitude and longitude (decimal degrees, negative south and west),
// depth (m), date "DD/MM/YYYY" (day, month, year; "-" and "." also separate,
// two-digit years are 1980..2079), time "hh:mm:ss", water temperature
// (degrees Celsius) and sound velocity (m/s). A line is accepted when depth
// and velocity are not zero, the velocity lies in 1000..2000 m/s, the
// position within +-90 and +-180 degrees and the date and time are valid;
// reading stops with kUnreadableLine at any other line. Consecutive lines
// with the same date and time form one section, placed at the position of its
// first line (kept to 0.01 second of arc).
class VELMIO_API RANSvpFile_Dat : public SvpFile {
public:
    struct DataLine {
        double latitude;     // degrees
        double longitude;    // degrees
        double depth;        // m
        std::string date;    // as read
        std::string clock;   // as read
        double temperature;  // degrees Celsius
        double velocity;     // m/s
        double time;         // UTC seconds since 1980
    };

    RANSvpFile_Dat();
    explicit RANSvpFile_Dat(const MORVAUString &fileName);
    RANSvpFile_Dat(const RANSvpFile_Dat &other);
    RANSvpFile_Dat &operator=(const RANSvpFile_Dat &other);
    ~RANSvpFile_Dat() override;

    int ReadInData() override;
    // Writes the title line read (or a default one) and a line per value;
    // the temperature comes from the line read at that section time and
    // depth, else 0.
    int UpdateDataFile() override;

    const std::vector<DataLine> &GetDataList() const;
    const std::string &GetTitle() const;

    // Decodes and checks one data line (see above); false when not accepted.
    static bool DecodeData(const std::string &line, DataLine &data);
    // UTC seconds since 1980 of a date and time text; false when invalid.
    static bool DecodeTimeStamp(const std::string &date, const std::string &clock, double &time);

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
};

// The RAN Edf format: per cast a header of keyword lines, then a table:
//   Latitude      :  45  7.400N
//   Longitude     :  63 30.000W
//   Date of Cast  :  24/03/2009      (day/month/year)
//   Time of Cast  :  12:30:05
//   Depth (m)  Temperature (C)  Velocity (m/s)
//   10.0 12.50 1480.50            (depth, water temperature, velocity)
// Keywords match at the line start in any letter case; values follow the
// first ":". Other header lines are kept and written back before the
// position. A missing position is "00:00:00"; a missing or invalid date or
// time, a position out of range or a row that is not three numbers gives
// kUnreadableLine. Rows with a zero depth or velocity or a velocity outside
// 1000..2000 m/s are skipped. Depths are rounded to centimetres on reading
// and written with one decimal; positions are kept to whole seconds. A
// keyword line after table rows starts the next cast. Any file whose name
// ends in ".edf" (any case) is read as RAN Edf.
class VELMIO_API RANSvpFile_Edf : public SvpFile {
public:
    struct DataRow {
        double depth;        // m
        double temperature;  // degrees Celsius
        double velocity;     // m/s
        double time;         // the section's time
    };
    struct CastHeader {
        double time;                          // the section's time
        std::vector<std::string> otherLines;  // unknown header lines, in order
        std::string heading;                  // the "Depth (m)" line as read
    };

    RANSvpFile_Edf();
    explicit RANSvpFile_Edf(const MORVAUString &fileName);
    RANSvpFile_Edf(const RANSvpFile_Edf &other);
    RANSvpFile_Edf &operator=(const RANSvpFile_Edf &other);
    ~RANSvpFile_Edf() override;

    int ReadInData() override;
    int UpdateDataFile() override;

    const std::vector<DataRow> &GetDataList() const;
    const std::vector<CastHeader> &GetHeaderValues() const;

    // Reads a table row: 1 accepted, 0 three numbers but not accepted, -1
    // not three numbers. The depth is rounded to centimetres.
    static int DecodeData(const std::string &line, DataRow &row);

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
};

#endif
