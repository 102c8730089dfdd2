#include <velmio/tpe.h>

#include "tests/sensors/sensor_test_support.h"

#include <vector>

using namespace velmio::test;

namespace {

// One profile of beams 1-2 at 180 s (reference time 3 minutes).
void writeLine(const TempDir &dir) {
    TOVO_Sensor *h = openLine(TPEOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    for (int rc : {TPEBgnSeqWriteSummary(h), TPESetToolType(h, 3, 4), TPEBgnSeqWriteLineSegment(h, L"t"),
                   TPEBgnSeqWriteProfile(h, 2, 1, 180.0, 0xABCD, 0x200),
                   TPESeqWrite(h, 180.5, 0.0015, -0.0015, 0x40000000u), TPESeqWrite(h, 180.0, 2.5, 0.25, 0),
                   TPEEndSeqWriteProfile(h), TPEEndSeqWriteLineSegment(h, 0), TPEEndSeqWriteSummary(h, 1), TPEClose(h)})
        ASSERT_EQ(rc, 0);
}

Bytes expectedData() {
    return be32s({kTovo, 52, 1, 1,
                  // summary: errors in thousandths truncated toward zero, 16 reserved bytes
                  1, 3, 4, 1, 2, 1000, 1000, 3, 0, 500, 1, 2500, 0xFFFFFFFF, 250, 0, 0, 0, 0,
                  0x200, 0x00020001, 0, 0xABCD,      // header at 88
                  0x400001F4, 1, 0xFFFFFFFF,         // 0.0015 -> 1, -0.0015 -> -1
                  0, 2500, 250});
}

TEST(TpeWrite, FilesMatchTheirLayoutsByteForByte) {
    TempDir dir;
    writeLine(dir);
    EXPECT_TRUE(SameBytes(expectedData(), readFile(dir.file("TPE"))));
    const Bytes segments = cat({be32s({kTovo, 52, 2, 1, 1, 0, 1}), xdrString("t"), be32s({1, 1, 0, 500})});
    EXPECT_TRUE(SameBytes(segments, readFile(dir.file("TPELineSegments"))));
    EXPECT_TRUE(SameBytes(be32s({kTovo, 52, 3, 1, 1, 512, 1, 0, 0, 1, 0, 88}), readFile(dir.file("TPETmIdx"))));
}

TEST(TpeRead, ErrorsComeBackAtTheirStoredResolution) {
    TempDir dir;
    writeLine(dir);
    TOVO_Sensor *h = openLine(TPEOpenDir, dir, L"query");
    ASSERT_NE(h, nullptr);
    unsigned tool1, tool2, status;
    double e1min, e1max, e2min, e2max;
    ASSERT_EQ(TPESummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, &tool1, &tool2, &e1min, &e1max, &e2min,
                         &e2max, &status),
              0);
    EXPECT_EQ(std::vector<double>({double(tool1), double(tool2), e1min, e1max, e2min, e2max}),
              std::vector<double>({3, 4, 0.001, 2.5, -0.001, 0.25}));
    double time, e1, e2;
    ASSERT_EQ(TPERead(h, 1, 1, &time, &e1, &e2, &status), 0);
    EXPECT_EQ(std::vector<double>({time, e1, e2, double(status)}), std::vector<double>({180.5, 0.001, -0.001, 0x40000000}));
    unsigned count, first, word;
    ASSERT_EQ(TPEReadProfile(h, 1, &count, &first, &time, &word, &status), 0);
    EXPECT_EQ(word, 0xABCDu);
    // Its own code for a beam outside the profile; the profile bound is
    // the beam total (2), and profile 2 then fails in the time index.
    EXPECT_EQ(TPERead(h, 1, 3, &time, &e1, &e2, &status), 5002728);
    EXPECT_EQ(TPERead(h, 1, 0, &time, &e1, &e2, &status), 5002728);
    EXPECT_EQ(TPERead(h, 3, 1, &time, &e1, &e2, &status), 5002719);
    EXPECT_EQ(TPERead(h, 2, 1, &time, &e1, &e2, &status), 5002708);
    EXPECT_EQ(TPEReadProfile(h, 0, &count, &first, &time, &word, &status), 5002719);
    EXPECT_EQ(TPESetLineSegmentStatus(h, 1, 0), 5002718);
    EXPECT_EQ(TPEClose(nullptr), 5002712);
    ASSERT_EQ(TPEClose(h), 0);
}

}  // namespace
