// The append buffer and the read window over memory: bytes land where they
// belong across the 64 KiB flushes and refills, and a read past the end fails.
#include "linestore/byte_source.h"

#include <gtest/gtest.h>

namespace velmio {
namespace {

TEST(ByteSource, AppendedBytesReadBackAcrossWindowBoundaries) {
    MemorySource memory({1, 2, 3, 4});
    AppendBuffer out;
    out.start(&memory, 4);
    std::vector<unsigned char> expected = {1, 2, 3, 4};
    unsigned char record[12];
    for (std::uint32_t i = 0; i < 10000; ++i) {
        for (int k = 0; k < 3; ++k) storeBe32(record + 4 * k, i * 3 + k);
        ASSERT_TRUE(out.append(record, sizeof record));
        expected.insert(expected.end(), record, record + sizeof record);
    }
    EXPECT_LT(memory.bytes().size(), expected.size());  // the tail is still held
    ASSERT_TRUE(out.flush());
    EXPECT_EQ(memory.bytes(), expected);

    ReadWindow window;
    for (std::uint64_t offset : {4u, 65536u - 6u, 65536u + 4u, 120004u - 12u}) {
        const unsigned char *p = window.at(memory, offset, 12);
        ASSERT_NE(p, nullptr) << offset;
        EXPECT_EQ(loadBe32(p), loadBe32(&expected[offset])) << offset;
    }
    EXPECT_EQ(window.at(memory, expected.size() - 8, 12), nullptr);
}

}  // namespace
}  // namespace velmio
