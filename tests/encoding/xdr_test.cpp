// The XDR codec against hand-written byte sequences.
#include "encoding/xdr.h"
#include "support/test_support.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <tuple>

using namespace velmio::xdr;
using velmio::test::Bytes;
using velmio::test::SameBytes;

namespace {

struct MemEncoder {
    char buffer[64] = {};
    XDR x;
    explicit MemEncoder(unsigned int size = 64) { xdrmem_create(&x, buffer, size, XDR_ENCODE); }
    Bytes bytes() const {
        return Bytes(reinterpret_cast<const std::uint8_t *>(buffer),
                     reinterpret_cast<const std::uint8_t *>(buffer) + (x.x_private - x.x_base));
    }
};

}  // namespace

TEST(XdrEncoding, UnitsAreBigEndianAndShortsWiden) {
    MemEncoder e;
    int i = -2;
    unsigned int u = 0x01020304;
    short s = -3;
    unsigned short us = 0xFFFE;
    unsigned char c = 0x7F;
    ASSERT_TRUE(xdr_int(&e.x, &i));
    ASSERT_TRUE(xdr_u_int(&e.x, &u));
    ASSERT_TRUE(xdr_short(&e.x, &s));
    ASSERT_TRUE(xdr_u_short(&e.x, &us));
    ASSERT_TRUE(xdr_u_char(&e.x, &c));
    EXPECT_TRUE(SameBytes({0xFF, 0xFF, 0xFF, 0xFE, 0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF, 0xFF, 0xFD, 0x00, 0x00, 0xFF,
                           0xFE, 0x00, 0x00, 0x00, 0x7F},
                          e.bytes()));

    XDR d;
    xdrmem_create(&d, e.buffer, 20, XDR_DECODE);
    int i2;
    unsigned int u2;
    short s2;
    unsigned short us2;
    unsigned char c2;
    ASSERT_TRUE(xdr_int(&d, &i2) && xdr_u_int(&d, &u2) && xdr_short(&d, &s2) && xdr_u_short(&d, &us2) &&
                xdr_u_char(&d, &c2));
    EXPECT_EQ(std::make_tuple(i2, u2, s2, us2, c2),
              std::make_tuple(-2, 0x01020304u, short(-3), static_cast<unsigned short>(0xFFFE), static_cast<unsigned char>(0x7F)));

    // A short decodes the low 16 bits of its unit, whatever the high ones hold.
    char wide[4] = {0x00, 0x01, static_cast<char>(0x80), 0x01};
    xdrmem_create(&d, wide, 4, XDR_DECODE);
    ASSERT_TRUE(xdr_short(&d, &s2));
    EXPECT_EQ(static_cast<unsigned short>(s2), 0x8001);
}

TEST(XdrEncoding, DoubleTravelsLowWordFirst) {
    const std::uint64_t bits = 0xC000000080000001u;  // both halves non-zero
    double v, back = 0;
    std::memcpy(&v, &bits, 8);
    MemEncoder e;
    ASSERT_TRUE(xdr_double(&e.x, &v));
    EXPECT_TRUE(SameBytes({0x80, 0, 0, 0x01, 0xC0, 0, 0, 0}, e.bytes()));
    XDR d;
    xdrmem_create(&d, e.buffer, 8, XDR_DECODE);
    ASSERT_TRUE(xdr_double(&d, &back));
    EXPECT_EQ(std::memcmp(&v, &back, 8), 0);
    XDR f;
    f.x_op = XDR_FREE;
    EXPECT_TRUE(xdr_double(&f, &v));
}

TEST(XdrEncoding, StringsAndOpaquePadToFourBytes) {
    MemEncoder e;
    char abc[] = "abc", abcd[] = "abcd";
    char *p = abc;
    ASSERT_TRUE(xdr_string(&e.x, &p, 16));
    p = abcd;
    ASSERT_TRUE(xdr_string(&e.x, &p, 16));
    char five[5] = {1, 2, 3, 4, 5};
    ASSERT_TRUE(xdr_opaque(&e.x, five, 5));
    ASSERT_TRUE(xdr_opaque(&e.x, five, 0));
    EXPECT_TRUE(SameBytes({0, 0, 0, 3, 'a', 'b', 'c', 0, 0, 0, 0, 4, 'a', 'b', 'c', 'd', 1, 2, 3, 4, 5, 0, 0, 0},
                          e.bytes()));
}

TEST(XdrEncoding, BytesAndArraysCarryTheirCount) {
    MemEncoder e;
    char data[3] = {9, 8, 7};
    char *bp = data;
    unsigned int n = 3;
    ASSERT_TRUE(xdr_bytes(&e.x, &bp, &n, 10));
    int values[2] = {1, -1};
    char *ap = reinterpret_cast<char *>(values);
    unsigned int count = 2;
    ASSERT_TRUE(xdr_array(&e.x, &ap, &count, 10, sizeof(int), xdr_int_element));
    EXPECT_TRUE(SameBytes({0, 0, 0, 3, 9, 8, 7, 0, 0, 0, 0, 2, 0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFF}, e.bytes()));

    XDR d;
    xdrmem_create(&d, e.buffer, 20, XDR_DECODE);
    char *bytes = nullptr;
    unsigned int nb = 0;
    ASSERT_TRUE(xdr_bytes(&d, &bytes, &nb, 10));
    ASSERT_EQ(nb, 3u);
    EXPECT_EQ(bytes[2], 7);
    char *arr = nullptr;
    unsigned int na = 0;
    ASSERT_TRUE(xdr_array(&d, &arr, &na, 10, sizeof(int), xdr_int_element));
    ASSERT_EQ(na, 2u);
    EXPECT_EQ(reinterpret_cast<int *>(arr)[1], -1);
    XDR f;
    f.x_op = XDR_FREE;
    f.x_ops = d.x_ops;
    EXPECT_TRUE(xdr_bytes(&f, &bytes, &nb, 10));
    EXPECT_EQ(bytes, nullptr);
    EXPECT_TRUE(xdr_array(&f, &arr, &na, 10, sizeof(int), xdr_int_element));
    EXPECT_EQ(arr, nullptr);
}

TEST(XdrDecoding, CountsAboveTheMaximumOrBeyondTheBufferFail) {
    char huge[8] = {0x7F, static_cast<char>(0xFF), static_cast<char>(0xFF), static_cast<char>(0xFF), 'x', 'y', 0, 0};
    XDR d;
    char *text = nullptr, *bytes = nullptr, *arr = nullptr;
    unsigned int n = 0;
    xdrmem_create(&d, huge, 8, XDR_DECODE);
    EXPECT_FALSE(xdr_string(&d, &text, 256));
    xdrmem_create(&d, huge, 8, XDR_DECODE);
    EXPECT_FALSE(xdr_bytes(&d, &bytes, &n, 256));
    xdrmem_create(&d, huge, 8, XDR_DECODE);
    EXPECT_FALSE(xdr_array(&d, &arr, &n, 256, 4, xdr_int_element));
    EXPECT_TRUE(!text && !bytes && !arr) << "a refused count allocated";

    char shortBody[8] = {0, 0, 0, 6, 'a', 'b', 'c', 'd'};
    xdrmem_create(&d, shortBody, 8, XDR_DECODE);
    EXPECT_FALSE(xdr_string(&d, &text, 16));
    std::free(text);
}

TEST(XdrMemoryStream, ExhaustedBufferFailsAndKeepsPosition) {
    char buf[12] = {};
    XDR x;
    xdrmem_create(&x, buf, 8, XDR_ENCODE);
    int v = 0x11223344;
    EXPECT_TRUE(xdr_int(&x, &v));
    EXPECT_TRUE(xdr_int(&x, &v));
    EXPECT_FALSE(xdr_int(&x, &v));
    EXPECT_EQ(xdr_getpos(&x), 8u);
    EXPECT_EQ(buf[8], 0) << "nothing may be written past the buffer";
    // Rewinding makes the buffer usable again; beyond its end is refused.
    EXPECT_TRUE(xdr_setpos(&x, 0));
    EXPECT_TRUE(xdr_int(&x, &v));
    EXPECT_FALSE(xdr_setpos(&x, 12));
    EXPECT_TRUE(xdr_setpos(&x, 8));
    EXPECT_EQ(xdr_inline(&x, 4), nullptr);
    EXPECT_TRUE(xdr_setpos(&x, 4));
    EXPECT_EQ(reinterpret_cast<char *>(xdr_inline(&x, 4)), buf + 4);
}

TEST(XdrStdioStream, PositionsAndDestroyLeavesTheFileOpen) {
    velmio::test::TempDir dir;
    std::FILE *f = std::fopen(dir.file("units").c_str(), "wb+");
    ASSERT_NE(f, nullptr);
    XDR x;
    xdrstdio_create(&x, f, XDR_ENCODE);
    int values[3] = {1, 2, 3};
    for (int &v : values) ASSERT_TRUE(xdr_int(&x, &v));
    EXPECT_EQ(xdr_getpos(&x), 12u);
    EXPECT_TRUE(xdr_setpos(&x, 4));
    EXPECT_EQ(xdr_getpos(&x), 4u);
    EXPECT_EQ(xdr_inline(&x, 4), nullptr);
    xdr_destroy(&x);
    EXPECT_EQ(std::fputc('z', f), 'z') << "destroy must not close the file";
    std::fclose(f);
    EXPECT_TRUE(SameBytes({0, 0, 0, 1, 'z', 0, 0, 2, 0, 0, 0, 3}, velmio::test::readFile(dir.file("units"))));

    f = std::fopen(dir.file("units").c_str(), "rb");
    xdrstdio_create(&x, f, XDR_DECODE);
    int v;
    EXPECT_TRUE(xdr_int(&x, &v));
    EXPECT_EQ(v, 1);
    EXPECT_TRUE(xdr_setpos(&x, 8));
    EXPECT_TRUE(xdr_int(&x, &v));
    EXPECT_EQ(v, 3);
    EXPECT_FALSE(xdr_int(&x, &v)) << "a short read fails";
    std::fclose(f);
}
