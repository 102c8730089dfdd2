// Fuzz target of the sound velocity profile files: one input is a profile
// file, detected, read, looked up and edited, written to a second file and
// that file detected and read again. The line parsers of every format also
// see each line of the input directly.
//
// Input: byte 0 picks the file name ending (odd: ".edf", read as RAN Edf
// whatever the content; even: ".svp", detected from the content), the rest
// is the file.
//
// Built with VELMIO_FUZZ_SVP_FORMAT (1 native, 2 CHS, 3 RAN Dat, 4 RAN Edf)
// the target skips detection and reads every input in that one format, so
// that each parser gets inputs detection would have sent elsewhere; byte 0
// is then ignored.
#include "fuzz_support.h"

#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

using velmio::fuzz::Bytes;

namespace {

constexpr unsigned kMaxSections = 64;
constexpr unsigned kMaxValues = 64;
constexpr unsigned kMaxLines = 256;

// The static parsers of the formats, on each line as a reader would see it.
void parseLines(const std::uint8_t *data, std::size_t size) {
    std::size_t at = 0;
    for (unsigned n = 0; at < size && n < kMaxLines; ++n) {
        std::size_t end = at;
        while (end < size && data[end] != '\n') ++end;
        std::string line(reinterpret_cast<const char *>(data + at), end - at);
        at = end + 1;

        MORVAUString latitude, longitude;
        std::string copy = line;
        VelmSvpFile::ParseLatLong(copy, latitude, longitude);
        copy = line;
        VelmSvpFile::RemovePunctuation(copy, true);
        double time = 0;
        int count = 0;
        if (CHSSvpFile::ParseHeader(line, time, latitude, longitude, count) == 0) {
            std::string header = line;
            CHSSvpFile::UpdateHeader(header, -45.5, 170.25, count);
            CHSSvpFile::GenerateHeader(header, time, 45.0, -63.5, count);
        }
        RANSvpFile_Dat::DataLine datLine;
        RANSvpFile_Dat::DecodeData(line, datLine);
        RANSvpFile_Edf::DataRow row;
        RANSvpFile_Edf::DecodeData(line, row);
        SvpFile::LLDGStringToDouble(MORVAUString::fromUtf8(line.c_str()));
    }
}

// Lookups and edits through the model's interface.
void exercise(SvpFile &f) {
    unsigned n = 0;
    double lastTime = 0;
    for (const SvpFile::SvpSections *s = f.GetSections(); s && n < kMaxSections; s = s->next, ++n) {
        MORVAUString latitude, longitude;
        f.GetSvpSection(s->time, latitude, longitude);
        s->GetLatitude();
        s->GetLongitude();
        unsigned k = 0;
        for (const SvpFile::SvpValue *v = s->values; v && k < kMaxValues; v = v->next, ++k) {
            double velocity = 0;
            f.GetSvpValue(s->time, v->depth, velocity);
        }
        if (s->values) {
            f.SetSvpValue(s->time, s->values->depth, 1500.25);
            if (s->values->next) f.RemoveSvpValue(s->time, s->values->next->depth);
        }
        lastTime = s->time;
    }
    double velocity;
    f.GetSvpValue(lastTime, -1.0, velocity);
    if (n > 1) f.RemoveSection(lastTime);
    f.SetSvpSection(lastTime + 3600.0, MORVAUString(L"10:00:00.00"), MORVAUString(L"-20:30:00.00"));
    f.AddSvpValue(lastTime + 3600.0, 5.0, 1490.0);
    f.AddSvpValue(lastTime + 3600.0, 15.0, 1491.5);
}

#if VELMIO_FUZZ_SVP_FORMAT == 1
using FixedFormat = VelmSvpFile;
#elif VELMIO_FUZZ_SVP_FORMAT == 2
using FixedFormat = CHSSvpFile;
#elif VELMIO_FUZZ_SVP_FORMAT == 3
using FixedFormat = RANSvpFile_Dat;
#elif VELMIO_FUZZ_SVP_FORMAT == 4
using FixedFormat = RANSvpFile_Edf;
#endif

std::unique_ptr<SvpFile> readProfile(const std::string &path) {
    const MORVAUString name(velmio::fuzz::widen(path));
#if defined(VELMIO_FUZZ_SVP_FORMAT)
    std::unique_ptr<SvpFile> f = std::make_unique<FixedFormat>(name);
#else
    int status = 0;
    std::unique_ptr<SvpFile> f(SvpFile::GetSvpFormat(name, status));
#endif
    // A file that exists reads whole or stops at its first bad line;
    // any other code means a reader lost track of what it was doing.
    if (f) {
        const int rc = f->ReadInData();
        if (rc != 0 && rc != SvpFile::kUnreadableLine) {
            std::fprintf(stderr, "svp_fuzz: ReadInData returned %d\n", rc);
            std::abort();
        }
    }
    return f;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
#if defined(VELMIO_FUZZ_SVP_FORMAT)
    const char *ending = VELMIO_FUZZ_SVP_FORMAT == 4 ? ".edf" : ".svp";
#else
    const char *ending = (data[0] & 1) ? ".edf" : ".svp";
#endif
    const std::string dir = velmio::fuzz::freshDirectory();
    const std::string path = dir + "/profile" + ending;
    velmio::fuzz::writeFile(path, data + 1, size - 1);
    parseLines(data + 1, size - 1);

    std::unique_ptr<SvpFile> f = readProfile(path);
    if (!f) return 0;
    exercise(*f);
    const std::string second = dir + "/second" + ending;
    f->SetFileName(MORVAUString(velmio::fuzz::widen(second)));
    if (f->UpdateDataFile() == 0) {
        std::unique_ptr<SvpFile> again = readProfile(second);
        if (again) exercise(*again);
    }
    return 0;
}

// ---- seeds ---------------------------------------------------------------

namespace {

// Two casts of three values, written by the format's own class.
template <class Format>
Bytes written(const char *ending, std::uint8_t selector) {
    const std::string path = velmio::fuzz::freshDirectory() + "/seed" + ending;
    Format f{MORVAUString(velmio::fuzz::widen(path))};
    const double t = TmYDStoUTCs80(2009, 83, 45005.0);
    f.SetSvpSection(t, MORVAUString(L"45:07:24.50"), MORVAUString(L"-63:30:00.00"));
    f.SetSvpSection(t + 7200, MORVAUString(L"-12:00:00.00"), MORVAUString(L"150:15:30.00"));
    for (int i = 0; i < 3; ++i) {
        f.AddSvpValue(t, 2.5 + 10 * i, 1480.5 + i);
        f.AddSvpValue(t + 7200, 1.0 + 5 * i, 1510.0 - i);
    }
    if (f.UpdateDataFile() != 0) {
        std::fprintf(stderr, "svp_fuzz: the %s seed was not written\n", ending);
        std::abort();
    }
    // The native format names its own file: a fixed name keeps the seed,
    // and so every mutation of it, the same from run to run.
    const Bytes file = velmio::fuzz::requireFile(path);
    std::string text(file.begin(), file.end());
    for (std::size_t at; (at = text.find(path)) != std::string::npos;)
        text.replace(at, path.size(), std::string("seed") + ending);
    Bytes bytes(1 + text.size(), selector);
    std::copy(text.begin(), text.end(), bytes.begin() + 1);
    return bytes;
}

// The native format's first version, which only a hand can make now.
const char kVersion1[] =
    "Title line of an old profile\n"
    "Section 2001-045 08:15\n"
    "0.0 1490.0\n"
    "12.5 1489.25\n"
    "Section 2001-045 09:00\n"
    "3 1500\n";

}  // namespace

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    const std::string version1Text = std::string("n") + kVersion1;
    const Bytes version1(version1Text.begin(), version1Text.end());
#if VELMIO_FUZZ_SVP_FORMAT == 1
    return {written<VelmSvpFile>(".svp", 'n'), version1};
#elif VELMIO_FUZZ_SVP_FORMAT == 2
    return {written<CHSSvpFile>(".svp", 'n')};
#elif VELMIO_FUZZ_SVP_FORMAT == 3
    return {written<RANSvpFile_Dat>(".svp", 'n')};
#elif VELMIO_FUZZ_SVP_FORMAT == 4
    return {written<RANSvpFile_Edf>(".edf", 'e')};
#else
    return {written<VelmSvpFile>(".svp", 'n'), written<CHSSvpFile>(".svp", 'n'),
            written<RANSvpFile_Dat>(".svp", 'n'), written<RANSvpFile_Edf>(".edf", 'e'), version1};
#endif
}
