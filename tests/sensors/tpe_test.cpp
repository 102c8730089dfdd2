#include <velmio/tpe.h>

#include "sensors/profile_test_support.h"

using namespace velmio::test;

namespace {

// One profile of beams 1-2 at 180 s (reference time 3 minutes).
void writeLine(const std::wstring &dir) {
    int error = -1;
    TOVO_Sensor *h = TPEOpenDir(dir.c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(TPEBgnSeqWriteSummary(h), 0);
    ASSERT_EQ(TPESetToolType(h, 3, 4), 0);
    ASSERT_EQ(TPEBgnSeqWriteLineSegment(h, L"t"), 0);
    ASSERT_EQ(TPEBgnSeqWriteProfile(h, 2, 1, 180.0, 0xABCD, 0x200), 0);
    ASSERT_EQ(TPESeqWrite(h, 180.5, 0.0015, -0.0015, 0x40000000u), 0);
    ASSERT_EQ(TPESeqWrite(h, 180.0, 2.5, 0.25, 0), 0);
    EXPECT_EQ(TPESeqWrite(h, 180.0, 2.5, 0.25, 0), 5002719);  // beyond the declared two
    ASSERT_EQ(TPEEndSeqWriteProfile(h), 0);
    ASSERT_EQ(TPEEndSeqWriteLineSegment(h, 0), 0);
    ASSERT_EQ(TPEEndSeqWriteSummary(h, 1), 0);
    ASSERT_EQ(TPEClose(h), 0);
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
    writeLine(dir.wpath());
    EXPECT_TRUE(SameBytes(expectedData(), readFile(dir.file("TPE"))));
    Bytes segments = be32s({kTovo, 52, 2, 1, 1, 0, 1});
    append(segments, xdrString("t"));
    append(segments, be32s({1, 1, 0, 500}));
    EXPECT_TRUE(SameBytes(segments, readFile(dir.file("TPELineSegments"))));
    EXPECT_TRUE(SameBytes(be32s({kTovo, 52, 3, 1, 1, 512, 1, 0, 0, 1, 0, 88}), readFile(dir.file("TPETmIdx"))));
}

TEST(TpeRead, ErrorsComeBackAtTheirStoredResolution) {
    TempDir dir;
    writeLine(dir.wpath());
    for (const char *cache : {static_cast<const char *>(nullptr), "5"}) {
        CacheSizeSetting setting(cache);
        int error = -1;
        TOVO_Sensor *h = TPEOpenDir(dir.wpath().c_str(), L"query", &error);
        ASSERT_NE(h, nullptr);
        unsigned tool1, tool2, status;
        double e1min, e1max, e2min, e2max;
        ASSERT_EQ(TPESummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, &tool1, &tool2, &e1min, &e1max, &e2min,
                             &e2max, &status),
                  0);
        EXPECT_EQ(tool2, 4u);
        EXPECT_DOUBLE_EQ(e1min, 0.001);
        EXPECT_DOUBLE_EQ(e1max, 2.5);
        EXPECT_DOUBLE_EQ(e2min, -0.001);
        double time, e1, e2;
        ASSERT_EQ(TPERead(h, 1, 1, &time, &e1, &e2, &status), 0);
        EXPECT_DOUBLE_EQ(time, 180.5);
        EXPECT_DOUBLE_EQ(e1, 0.001);
        EXPECT_DOUBLE_EQ(e2, -0.001);
        EXPECT_EQ(status, 0x40000000u);
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
}

}  // namespace
