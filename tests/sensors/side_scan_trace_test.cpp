// The side scan trace file: bytes written by hand, and every cut of it
// either reads the records it still holds whole or is refused.
#include "sensors/side_scan_trace.h"
#include "tests/support/test_support.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace velmio;
using namespace velmio::test;

namespace {

TEST(SideScanTrace, WrittenAsDocumentedAndEveryCutIsSafe) {
    const TempDir dir;
    const std::string path = dir.file("SideScanTrace");
    std::FILE *f = std::fopen(path.c_str(), "wb+");
    ASSERT_NE(f, nullptr);
    ASSERT_EQ(startTraceFile(f, 10), 0);
    ASSERT_EQ(appendTrace(f, {1, 120, 12.345}), 0);
    ASSERT_EQ(appendTrace(f, {3, 0, -0.5}), 0);
    std::uint32_t count = 0;
    ASSERT_EQ(countTraces(f, 10, count), 0);
    EXPECT_EQ(count, 2u);
    SideScanTrace t;
    ASSERT_EQ(readTrace(f, count, 2, t), 0);
    EXPECT_EQ(t.profile, 3u);
    EXPECT_EQ(t.depth, -0.5);
    EXPECT_EQ(readTrace(f, count, 0, t), kTraceFailed);
    EXPECT_EQ(readTrace(f, count, 3, t), kTraceFailed);
    EXPECT_EQ(countTraces(f, 9, count), kTraceFailed);  // an EM100 handle on EM1000 traces
    std::fclose(f);

    const Bytes whole = be32s({0x544F564F, 10, 4, 1, 1, 120, 12345, 3, 0, 0xFFFFFE0C});
    ASSERT_TRUE(SameBytes(whole, readFile(path)));
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        writeFile(path, Bytes(whole.begin(), whole.begin() + cut));
        f = std::fopen(path.c_str(), "rb");
        const int rc = countTraces(f, 10, count);
        if (cut >= 16 && (cut - 16) % 12 == 0) {
            EXPECT_EQ(rc, 0) << cut;
            EXPECT_EQ(count, (cut - 16) / 12);
            if (count) {
                EXPECT_EQ(readTrace(f, count, count, t), 0);
            }
        } else {
            EXPECT_EQ(rc, kTraceFailed) << cut;
        }
        std::fclose(f);
    }
}

}  // namespace
