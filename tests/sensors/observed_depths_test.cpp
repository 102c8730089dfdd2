#include <velmio/observed_depths.h>

#include "tests/sensors/sensor_test_support.h"

#include <tuple>
#include <vector>

using namespace velmio::test;

namespace {

// Two profiles in one segment "ab.raw": beams 5-6 of a ping at 120 s, and
// beam 1 of a ping at 121 s. Reference time 2 minutes.
void writeSmallLine(const TempDir &dir, bool newForm = false) {
    TOVO_Sensor *h = openLine(newForm ? ObservedDepthsNewOpenDir : ObservedDepthsOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    for (int rc : {ObservedDepthsBgnSeqWriteSummary(h), ObservedDepthsSetToolType(h, 7),
                   ObservedDepthsBgnSeqWriteLineSegment(h, L"ab.raw"),
                   ObservedDepthsBgnSeqWriteProfile(h, 2, 5, 120.0, 0.1, -0.2, 0x10),
                   ObservedDepthsSeqWrite(h, 120.5, -2.0, 1.0, 10.5, 0, 0, 0x80000000u),
                   ObservedDepthsSeqWrite(h, 119.999, 0.25, -0.5, 12.0, 0, 0, 0), ObservedDepthsEndSeqWriteProfile(h),
                   ObservedDepthsBgnSeqWriteProfile(h, 1, 1, 121.0, 0.0, 0.0, 0),
                   ObservedDepthsSeqWrite(h, 121.0, 0.0, 0.0, 9.0, 0, 0, 0x40000000u), ObservedDepthsEndSeqWriteProfile(h),
                   ObservedDepthsEndSeqWriteLineSegment(h, 3), ObservedDepthsEndSeqWriteSummary(h, 5), ObservedDepthsClose(h)})
        ASSERT_EQ(rc, 0);
}

Bytes expectedData() {
    return be32s({kTovo, 4, 1, 2,
                  // summary: status, tool, profiles, beams, scales, reference, times, depths
                  5, 7, 2, 3, 1000, 1000, 2, 0xFFFFFFFF, 1000, 9000, 12000,
                  // profile 1 at 60: beams 2 from 5, time 0, 0.1 and -0.2 rad
                  0x10, 0x00020005, 0, 1000000, 0xFFE17B80,
                  0x800001F4, 10500, 1000, 0xFFFFF830,  // +500 ms
                  0x0000FFFF, 12000, 0xFFFFFE0C, 250,   // -1 ms
                  // profile 2 at 112
                  0, 0x00010001, 1000, 0, 0,
                  0x40000000, 9000, 0, 0});
}

constexpr std::size_t kBeamA = 80, kBeamB = 96, kBeamC = 132;

using Values = std::vector<double>;

struct Beam {
    double time, y, x, depth, extra;
    unsigned int status;
};

Beam readBeam(TOVO_Sensor *h, unsigned p, unsigned b, int expectRc = 0) {
    Beam r{};
    EXPECT_EQ(ObservedDepthsRead(h, p, b, &r.time, &r.y, &r.x, &r.depth, &r.extra, &r.status), expectRc);
    return r;
}

TEST(ObservedDepthsWrite, FilesMatchTheirLayoutsByteForByte) {
    TempDir dir;
    writeSmallLine(dir);
    EXPECT_TRUE(SameBytes(expectedData(), readFile(dir.file("ObservedDepths"))));

    const Bytes segments = cat({be32s({kTovo, 4, 2, 2, 1, 3, 6}), xdrString("ab.raw"),
                                be32s({1, 2, 0xFFFFFFFF, 1000, 9000, 12000})});
    EXPECT_TRUE(SameBytes(segments, readFile(dir.file("ObservedDepthsLineSegments"))));

    // One entry per profile header.
    const Bytes index = be32s({kTovo, 4, 3, 2, 1, 512, 2, 0, 1000, 2, 0, 60, 1000, 112});
    EXPECT_TRUE(SameBytes(index, readFile(dir.file("ObservedDepthsTmIdx"))));
}

TEST(ObservedDepthsWrite, ProfileBeamCountIsEnforcedAndEmptyLinesLeaveNoFile) {
    TempDir dir;
    TOVO_Sensor *h = openLine(ObservedDepthsOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(ObservedDepthsSeqWrite(h, 1, 0, 0, 1, 0, 0, 0), 5000219);  // no profile begun
    ASSERT_EQ(ObservedDepthsBgnSeqWriteProfile(h, 1, 1, 60.0, 0, 0, 0), 0);
    EXPECT_EQ(ObservedDepthsEndSeqWriteProfile(h), 5000219);  // short profile reported
    EXPECT_EQ(ObservedDepthsRead(h, 1, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 5000218);
    ASSERT_EQ(ObservedDepthsClose(h), 0);

    ASSERT_EQ(ObservedDepthsClose(openLine(ObservedDepthsOpenDir, dir, L"create")), 0);
    EXPECT_FALSE(fileExists(dir.file("ObservedDepths")));
    // An unknown token opens the existing file "rb+" and the family writes it
    // afresh, as a create: the line store's long-standing behaviour.
    writeSmallLine(dir);
    h = silently([&] { return openLine(ObservedDepthsOpenDir, dir, L"read"); });
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(ObservedDepthsBgnSeqWriteSummary(h), 0);
    const Bytes now = readFile(dir.file("ObservedDepths"));
    EXPECT_TRUE(SameBytes(words({kTovo, 4, 1, 2}), Bytes(now.begin(), now.begin() + 16)));
    ASSERT_EQ(ObservedDepthsClose(h), 0);
}

TEST(ObservedDepthsRead, DecodesWhatWasWrittenAndRefusesEditsWithoutUpdate) {
    TempDir dir;
    writeSmallLine(dir);
    TOVO_Sensor *h = openLine(ObservedDepthsOpenDir, dir, L"query");
    ASSERT_NE(h, nullptr);
    unsigned tool, segments, profiles, beams, status, first, last;
    double t0, t1, d0, d1;
    ASSERT_EQ(ObservedDepthsSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, &status), 0);
    EXPECT_EQ(std::make_tuple(tool, segments, profiles, beams), std::make_tuple(7u, 1u, 2u, 3u));
    EXPECT_DOUBLE_EQ(t0, 119.999);
    wchar_t *name = nullptr;
    ASSERT_EQ(ObservedDepthsLineSegment(h, 1, &name, &first, &last, &t0, &t1, &d0, &d1, &status), 0);
    EXPECT_STREQ(name, L"ab.raw");
    VELMIO_free(name);
    EXPECT_EQ(ObservedDepthsLineSegment(h, 2, &name, &first, &last, &t0, &t1, &d0, &d1, &status), 5000217);
    double a1, a2;
    ASSERT_EQ(ObservedDepthsReadProfile(h, 1, &beams, &first, &t0, &a1, &a2, &status), 0);
    EXPECT_EQ(beams * 100 + first, 205u);
    EXPECT_DOUBLE_EQ(a2, -0.2);
    const Beam b = readBeam(h, 1, 5);
    EXPECT_EQ(Values({b.time, b.y, b.x, b.depth, b.extra}), Values({120.5, -2.0, 1.0, 10.5, 0.0}));
    EXPECT_EQ(b.status, 0x80000000u);
    EXPECT_DOUBLE_EQ(readBeam(h, 1, 6).time, 119.999);
    // Profiles and beams out of their numbering.
    for (const auto &pb : std::vector<std::pair<unsigned, unsigned>>{{0, 1}, {3, 1}, {1, 4}, {1, 7}})
        readBeam(h, pb.first, pb.second, 5000219);
    EXPECT_EQ(ObservedDepthsUpdateStatus(h, 1, 5, 0), 5000218);
    EXPECT_EQ(ObservedDepthsSaveStatusToDisk(h), 5000218);
    EXPECT_EQ(ObservedDepthsUpdateStatus(nullptr, 1, 5, 0), 5000212);
    ASSERT_EQ(ObservedDepthsClose(h), 0);
}

TEST(ObservedDepthsRead, NewFormOpensItsOwnFilesUnderTypeFour) {
    TempDir dir;
    writeSmallLine(dir, true);
    EXPECT_FALSE(fileExists(dir.file("ObservedDepths")));
    EXPECT_TRUE(SameBytes(expectedData(), readFile(dir.file("ObservedDepthsNew"))));
    TOVO_Sensor *h = openLine(ObservedDepthsNewOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(ObservedDepthsUpdateStatus(h, 2, 1, 0x20000000u), 0);
    ASSERT_EQ(ObservedDepthsClose(h), 0);
    EXPECT_TRUE(SameBytes(patched(expectedData(), kBeamC, 0x20000000u), readFile(dir.file("ObservedDepthsNew"))));
}

TEST(ObservedDepthsEdit, EachEditChangesExactlyItsBytes) {
    TempDir dir;
    writeSmallLine(dir);
    const Bytes before = readFile(dir.file("ObservedDepths"));
    TOVO_Sensor *h = openLine(ObservedDepthsOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    // Status bits replaced above the 500 ms offset.
    EXPECT_EQ(ObservedDepthsUpdateStatus(h, 1, 5, 0x20000000u), 0);
    // Rejection bits: only the masked ones change; the second call is a no-op.
    EXPECT_EQ(ObservedDepthsUpdateRejectionStatus(h, 1, 6, 0x80080000u), 0);
    EXPECT_EQ(ObservedDepthsUpdateRejectionStatus(h, 1, 6, 0x80080000u), 0);
    const double x = 3.0, z = 8.0;
    EXPECT_EQ(ObservedDepthsUpdateXYZStatus(h, 1, 5, &x, nullptr, &z, nullptr), 0);
    EXPECT_EQ(ObservedDepthsUpdateDepthStatus(h, 2, 1, 15.0, 0x00100000u), 0);
    // A read after the edits sees them, and the time offsets survived.
    Beam b = readBeam(h, 1, 5);
    EXPECT_EQ(b.status, 0x20000000u);
    EXPECT_DOUBLE_EQ(b.time, 120.5);
    EXPECT_DOUBLE_EQ(b.depth, 8.0);
    EXPECT_DOUBLE_EQ(b.y, -2.0);
    EXPECT_EQ(readBeam(h, 1, 6).status, 0x80080000u);
    EXPECT_EQ(ObservedDepthsUpdateDepth(h, 1, 7, 1.0), 5000219);
    ASSERT_EQ(ObservedDepthsClose(h), 0);

    const Bytes expected = patched(before, {{kBeamA, 0x200001F4u}, {kBeamA + 4, 8000}, {kBeamA + 8, 3000},
                                            {kBeamB, 0x8008FFFFu}, {kBeamC, 0x00100000u}, {kBeamC + 4, 15000}});
    EXPECT_TRUE(SameBytes(expected, readFile(dir.file("ObservedDepths"))));
}

TEST(ObservedDepthsEdit, DepthEditsWidenButNeverNarrowTheSavedBounds) {
    TempDir dir;
    writeSmallLine(dir);
    TOVO_Sensor *h = openLine(ObservedDepthsOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(ObservedDepthsUpdateDepth(h, 2, 1, 20.0), 0);
    ASSERT_EQ(ObservedDepthsUpdateDepth(h, 2, 1, 11.0), 0);  // shallower again: bounds stay
    ASSERT_EQ(ObservedDepthsSetLineSegmentStatus(h, 1, 9), 0);
    EXPECT_EQ(ObservedDepthsSetLineSegmentStatus(h, 2, 9), 5000217);
    ASSERT_EQ(ObservedDepthsSaveStatusToDisk(h), 0);
    ASSERT_EQ(ObservedDepthsClose(h), 0);

    const Bytes expected = patched(expectedData(), {{16 + 40, 20000}, {kBeamC + 4, 11000}});  // maximum depth, beam
    EXPECT_TRUE(SameBytes(expected, readFile(dir.file("ObservedDepths"))));
    const Bytes segments = cat({be32s({kTovo, 4, 2, 2, 1, 9, 6}), xdrString("ab.raw"),
                                be32s({1, 2, 0xFFFFFFFF, 1000, 9000, 20000})});
    EXPECT_TRUE(SameBytes(segments, readFile(dir.file("ObservedDepthsLineSegments"))));
}

// Version 1, written by hand: 20-byte headers holding the beam count, 24-byte
// beams with the whole status word, the offset in a unit of its own and a
// sixth value.
void writeVersion1Line(const TempDir &dir) {
    Bytes data = be32s({kTovo, 4, 1, 1, 0, 3, 1, 2, 1000, 1000, 2, 0, 250, 5000, 6000});
    append(data, be32s({0x11, 2, 0, 500000, 0}));                               // profile at 60
    append(data, be32s({0x80000001u, 5000, 100, 0xFFFFFF9Cu, 250, 1500}));    // +250 ms
    append(data, be32s({0x00000002u, 6000, 200, 300, 0xFFFFFFFFu, 0}));       // -1 ms
    writeFile(dir.file("ObservedDepths"), data);
    writeFile(dir.file("ObservedDepthsLineSegments"),
              cat({be32s({kTovo, 4, 2, 1, 1, 0, 2}), xdrString("v1"), be32s({1, 1, 0, 250, 5000, 6000})}));
    writeFile(dir.file("ObservedDepthsTmIdx"), be32s({kTovo, 4, 3, 1, 1, 512, 1, 0, 0, 1, 0, 60}));
}

// Reads give the whole status word and the sixth value; every edit succeeds
// and changes nothing, on disk or in what is read.
TEST(ObservedDepthsVersion1, ReadsWholeStatusAndEveryEditIsASuccessfulNoOp) {
    TempDir dir;
    writeVersion1Line(dir);
    const Bytes before = readFile(dir.file("ObservedDepths"));
    TOVO_Sensor *h = openLine(ObservedDepthsOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    const double v = 99.0;
    const unsigned s = 0x40000000u;
    for (int rc : {ObservedDepthsUpdateStatus(h, 1, 1, s), ObservedDepthsUpdateRejectionStatus(h, 1, 1, 0x80000000u),
                   ObservedDepthsUpdateDepth(h, 1, 2, v),
                   ObservedDepthsUpdateDepthStatus(h, 9, 9, v, s),  // not even range-checked
                   ObservedDepthsUpdateXYZStatus(h, 1, 1, &v, &v, &v, &s)})
        EXPECT_EQ(rc, 0);
    unsigned count, firstBeam, status;
    double time, a1, a2;
    ASSERT_EQ(ObservedDepthsReadProfile(h, 1, &count, &firstBeam, &time, &a1, &a2, &status), 0);
    EXPECT_EQ(count * 100 + firstBeam, 201u);
    EXPECT_EQ(Values({time, a1}), Values({120.0, 0.05}));
    Beam b = readBeam(h, 1, 1);
    EXPECT_EQ(b.status, 0x80000001u);
    EXPECT_EQ(Values({b.time, b.y, b.x, b.depth, b.extra}), Values({120.25, -0.1, 0.1, 5.0, 1.5}));
    b = readBeam(h, 1, 2);
    EXPECT_EQ(Values({b.depth, double(b.status)}), Values({6.0, 2.0}));
    EXPECT_DOUBLE_EQ(b.time, 119.999);
    readBeam(h, 1, 3, 5000219);
    ASSERT_EQ(ObservedDepthsSummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &a1, &a2, nullptr), 0);
    EXPECT_DOUBLE_EQ(a2, 6.0);
    ASSERT_EQ(ObservedDepthsClose(h), 0);
    EXPECT_TRUE(SameBytes(before, readFile(dir.file("ObservedDepths"))));
}

}  // namespace
