// Fuzz target of the time texts: one input is a "YYYY-DDD hh:mm:ss" text read
// by both forms of decodeTime, whose results must agree; the profile files'
// date and clock texts; and the input's first bytes as the numbers of the
// time conversions. (A trip to year, day and seconds and back is not checked:
// around a leap second it is off by one second by design.)
#include "fuzz_support.h"

#include <velmio/morva_string.hpp>
#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>
#include <velmio/utils.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void fail(const char *what, const std::string &text) {
    std::fprintf(stderr, "time_text_fuzz: %s for \"%s\"\n", what, text.c_str());
    std::abort();
}

std::int32_t word(const std::uint8_t *data, std::size_t size, std::size_t at) {
    std::uint32_t w = 0;
    for (std::size_t i = at; i < at + 4; ++i) w = (w << 8) | (i < size ? data[i] : 0u);
    return static_cast<std::int32_t>(w);
}

double real(const std::uint8_t *data, std::size_t size, std::size_t at) {
    std::uint64_t bits = (std::uint64_t(std::uint32_t(word(data, size, at))) << 32) |
                         std::uint32_t(word(data, size, at + 4));
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

void decodeTexts(const std::string &text) {
    double narrow = -1, wide = -1;
    const int narrowCode = VELMIOUtils::decodeTime(text.c_str(), narrow);
    const int wideCode = VELMIOUtils::decodeTime(MORVAUString::fromUtf8(text.c_str()).c_str(), wide);
    // A text the UTF-8 decoder leaves alone must read the same both ways.
    if (MORVAUString::fromUtf8(text.c_str()).toUtf8() == text && (narrowCode != wideCode || narrow != wide))
        fail("the narrow and wide forms disagree", text);
    if (narrowCode != 0) return;
    if (!std::isfinite(narrow)) fail("a time that is not finite", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    decodeTexts(text.c_str());  // up to the first NUL, as a C caller passes it

    // The profile files' stamps: date and clock split at the first blank.
    const std::size_t blank = text.find(' ');
    double time = 0;
    RANSvpFile_Dat::DecodeTimeStamp(text.substr(0, blank), blank == std::string::npos ? "" : text.substr(blank + 1),
                                    time);

    // The conversions on the raw numbers; each must return without fault.
    const int year = word(data, size, 0), day = word(data, size, 4);
    const double seconds = real(data, size, 8), add = real(data, size, 16);
    int y = 0, d = 0, h = 0, m = 0, s = 0, month = 0, dayOfMonth = 0;
    double x = 0;
    TmGetTAIUTCOffset(year, day);
    TmYMDtoJD(year, day, static_cast<int>(word(data, size, 8)));
    TmYJDtoMD(year, day, &month, &dayOfMonth);
    TmStoHMSX(seconds, &h, &m, &s, &x);
    TmYDSplusS(year, day, seconds, add, &y, &d, &x);
    TmYDSminusYDS(year, day, seconds, y, d, x);
    TmUTCs80toYDS(TmYDStoUTCs80(year, day, seconds), &y, &d, &x);
    TmUTCs70toYDS(TmUTCs80toUTCs70(add), &y, &d, &x);
    return 0;
}

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    std::vector<std::vector<std::uint8_t>> seeds;
    for (const char *text : {"2004-100 12:34:56", "1980-001 00:00:00", "2008-366 23:59:59", "3000-001 00:00:00",
                             "1981-182 00:00:00 trailing", "14/03/2009 10:15:30"})
        seeds.emplace_back(text, text + std::strlen(text));
    return seeds;
}
