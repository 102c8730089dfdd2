#include "svp/svp_test_support.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <memory>

using namespace velmio::test;

// Every reader meets damaged copies of a valid file: flipped, dropped and
// repeated bytes, cut lines. It must answer with a code, never crash or read
// past its buffers (the sanitizer build watches the latter).
TEST(SvpFormats, DamagedFilesGiveCodesNotCrashes) {
    const std::vector<std::pair<std::string, std::string>> samples = {
        {"a.svp", "[SVP_VERSION_2]\nx\nSection 2009-083 12:30 -45:07:24.50 063:30:00.00\n  0 1500\n  5 1501\n"},
        {"b.svp", "title\nSection 1998-123 12:30\n  5 1399\n  3 2100\n"},
        {"c.chs", "( SoundVelocity 1.01 1 200903240000 45.12 -63.5 -1 200903241230 200903241300 SVPEDITOR N 2 )\n"
                  "0.00   1480.50\n10.00   1490.25\n"},
        {"d.dat", "t\n+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05, +12.5000 ,+1480.5000\n"},
        {"e.edf", "Latitude      :  45  7.400N\nLongitude     :  63 30.000W\nDate of Cast  :  24/03/2009\n"
                  "Time of Cast  :  12:30:05\nDepth (m)\n0.5 12.50 1480.50\n"},
    };
    const char kOddBytes[] = {'-', ':', ',', '(', '\n', '\r', '\0'};
    TempDir dir;
    unsigned state = 2024;
    auto next = [&state](unsigned bound) {
        state = state * 1103515245u + 12345u;
        return (state >> 8) % bound;
    };
    for (const auto &sample : samples) {
        for (int round = 0; round < 60; ++round) {
            std::string text = sample.second;
            for (unsigned edits = 1 + next(4); edits > 0 && !text.empty(); --edits) {
                std::size_t at = next(static_cast<unsigned>(text.size()));
                switch (next(4)) {
                case 0: text[at] = static_cast<char>(next(256)); break;
                case 1: text.erase(at, 1 + next(8)); break;
                case 2: text.insert(at, std::string(1 + next(300), text[at])); break;
                default: text.insert(at, 1, kOddBytes[next(sizeof kOddBytes)]);
                }
            }
            writeText(dir.file(sample.first), text);
            int status = -1;
            std::unique_ptr<SvpFile> f(SvpFile::GetSvpFormat(dir.wfile(sample.first).c_str(), status));
            ASSERT_TRUE(f);
            int rc = f->ReadInData();
            ASSERT_TRUE(rc == 0 || rc == 5016009) << rc << " for " << text;
            if (rc == 0) {
                EXPECT_EQ(f->UpdateDataFile(), 0);
            }
        }
    }
}
