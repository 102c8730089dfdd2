// Fuzz target of the datum file: one input is the text file named by
// "kbvXdatum", asked for fixed names and for the first characters of its own
// lines. Each name is asked twice; the second answer comes from the
// remembered match and must equal the first.
#include "fuzz_support.h"

#include <velmio/geodesy.h>
#include <velmio/morva_string.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr unsigned kMaxNames = 16;

bool same(double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); }

void lookUpTwice(const std::wstring &name) {
    double a = 0, b = 0, c = 0, d = 0;
    const int first = HorizDatumLookup(name.c_str(), &a, &b);
    const int again = HorizDatumLookup(name.c_str(), &c, &d);
    if (first != again || !same(a, c) || !same(b, d)) {
        std::fprintf(stderr, "datum_fuzz: the remembered answer differs from the file's\n");
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string dir = velmio::fuzz::freshDirectory();
    double a, b;
    // A file that cannot be opened forgets the match the last input left.
    setenv("kbvXdatum", (dir + "/missing").c_str(), 1);
    HorizDatumLookup(L"none", &a, &b);

    velmio::fuzz::writeFile(dir + "/datum.txt", data, size);
    setenv("kbvXdatum", (dir + "/datum.txt").c_str(), 1);
    std::vector<std::wstring> names{L"WGS84", L"wgs8", L"NAD27", L"\u00c4RC1950"};
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (std::size_t at = 0; at < text.size() && names.size() < kMaxNames;) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        const std::string line = text.substr(at, end - at);
        names.push_back(MORVAUString::fromUtf8(line.substr(0, 8).c_str()).str());
        at = end + 1;
    }
    for (const std::wstring &name : names) lookUpTwice(name);
    unsetenv("kbvXdatum");
    return 0;
}

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    // A name's first four characters, then its two numbers.
    const char *const files[] = {
        "! datum  semi-major axis  flattening or semi-minor axis\n"
        "WGS8 6378137.0 298.257223563\n"
        "NAD2 6378206.4 6356583.8\n"
        "AGD6\t6378160 298.25\r\n"
        "\u00c4RC1 6378249.145 293.465\n",
        "wgs8x 1e3\n"
        "WGS8 6378137 0.0033528106647474805\n"};
    std::vector<std::vector<std::uint8_t>> seeds;
    for (const char *file : files) seeds.emplace_back(file, file + std::strlen(file));
    return seeds;
}
