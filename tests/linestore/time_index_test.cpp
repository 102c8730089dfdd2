// The time index: appending, mapping, and its file form byte for byte.
#include <velmio/linestore.h>

#include "linestore/sensor.h"
#include "linestore/time_index.h"
#include "support/test_support.h"

#include <cstdio>

using velmio::TimeIndex;
using namespace velmio::test;

TEST(TimeIndex, SetsOf512MapTenMillionRecordsWithoutWalkingTheChain) {
    TimeIndex idx;
    const std::uint32_t n = 10000000;
    for (std::uint32_t i = 1; i <= n; ++i) ASSERT_EQ(idx.append(static_cast<int>(i % 1000), i), 0);
    EXPECT_EQ(idx.setCount(), (n + 511) / 512);
    EXPECT_EQ(idx.last()->count, n % 512);
    EXPECT_EQ(idx.first()->minTime, 1);
    EXPECT_EQ(idx.first()->maxTime, 512);
    std::uint32_t off = 0;
    for (std::uint32_t r : {1u, 10u, 512u, 513u, 9999999u, 10000000u}) {
        ASSERT_EQ(idx.map(r, off), 0);
        EXPECT_EQ(off, r);
    }
    EXPECT_EQ(idx.map(0, off), velmio::kTmIdxRecordZero);
    EXPECT_EQ(idx.map(n + 1, off), velmio::kTmIdxNotFound);
}

TEST(TimeIndex, FileFormIsByteExact) {
    TempDir dir;
    TimeIndex idx;
    ASSERT_EQ(idx.append(-20000, 48), 0);
    ASSERT_EQ(idx.append(-19000, 60), 0);
    ASSERT_EQ(idx.write(dir.wfile("GyroTmIdx").c_str(), 1, 1), 0);
    Bytes expected = ascii("TOVO");
    append(expected, be32s({1, 3, 1, 1, 512,                          // type, version, format, sets, capacity
                            2, 0xFFFFB1E0, 0xFFFFB5C8,                // set header: count, min, max
                            2, 0xFFFFB1E0, 48, 0xFFFFB5C8, 60}));      // the array
    EXPECT_TRUE(SameBytes(expected, readFile(dir.file("GyroTmIdx"))));

    TimeIndex back;
    ASSERT_EQ(back.read(dir.wfile("GyroTmIdx").c_str(), 1), 0);
    std::uint32_t off;
    ASSERT_EQ(back.map(2, off), 0);
    EXPECT_EQ(off, 60u);
    EXPECT_EQ(back.first()->minTime, -20000);

    TimeIndex wrongType;
    EXPECT_EQ(wrongType.read(dir.wfile("GyroTmIdx").c_str(), 2), velmio::kTmIdxInvalid);
    EXPECT_EQ(wrongType.read(dir.wfile("missing").c_str(), 1), velmio::kTmIdxCannotOpen);

    // An empty index is the header alone.
    ASSERT_EQ(TimeIndex().write(dir.wfile("empty").c_str(), 30, 2), 0);
    EXPECT_TRUE(SameBytes(cat({ascii("TOVO"), be32s({30, 3, 2, 0, 512})}), readFile(dir.file("empty"))));
    TimeIndex empty;
    EXPECT_EQ(empty.read(dir.wfile("empty").c_str(), 30), 0);
    EXPECT_EQ(empty.setCount(), 0u);
}

// Sets of other sizes than 512 (an empty one among them) map by their
// counts, before and after the chain is built from the file.
TEST(TimeIndex, UnevenSetsMapFromTheFile) {
    TempDir dir;
    Bytes uneven = ascii("TOVO");
    append(uneven, be32s({1, 3, 1, 3, 512, 2, 5, 6, 0, 0x7FFFFFFF, 0x80000000, 1, 9, 9,  // header, set headers
                          2, 5, 100, 6, 112, 0, 1, 9, 124}));                                  // the arrays
    writeFile(dir.file("uneven"), uneven);
    TimeIndex idx;
    ASSERT_EQ(idx.read(dir.wfile("uneven").c_str(), 1), 0);
    for (int pass = 0; pass < 2; ++pass) {
        std::uint32_t off = 0;
        for (std::uint32_t n : {1u, 2u, 3u}) {
            ASSERT_EQ(idx.map(n, off), 0) << n;
            EXPECT_EQ(off, n == 1 ? 100u : n == 2 ? 112u : 124u);
        }
        EXPECT_EQ(idx.map(4, off), velmio::kTmIdxNotFound);
        ASSERT_NE(idx.last(), nullptr);  // builds the chain for the second pass
        EXPECT_EQ(idx.last()->minTime, 9);
    }
    EXPECT_EQ(idx.setCount(), 3u);
    EXPECT_EQ(idx.entryCount(), 3u);
}

TEST(TimeIndex, CorruptFilesAreRefusedAtEveryLength) {
    TempDir dir;
    TimeIndex idx;
    for (int i = 0; i < 600; ++i) ASSERT_EQ(idx.append(i, 100 + i), 0);
    ASSERT_EQ(idx.write(dir.wfile("full").c_str(), 1, 1), 0);
    const Bytes good = readFile(dir.file("full"));
    for (std::size_t cut = 0; cut < good.size(); cut += (cut < 80 ? 1 : 97)) {
        writeFile(dir.file("cut"), Bytes(good.begin(), good.begin() + static_cast<long>(cut)));
        TimeIndex back;
        EXPECT_EQ(back.read(dir.wfile("cut").c_str(), 1), velmio::kTmIdxInvalid) << "cut at " << cut;
        TimeIndex fromMemory;
        EXPECT_EQ(fromMemory.readBytes(good.data(), cut, 1), velmio::kTmIdxInvalid) << "cut at " << cut;
    }
    // The whole file from memory reads as from the disk, across both sets.
    TimeIndex fromMemory, fromDisk;
    ASSERT_EQ(fromMemory.readBytes(good.data(), good.size(), 1), 0);
    ASSERT_EQ(fromDisk.read(dir.wfile("full").c_str(), 1), 0);
    std::uint32_t offset = 0, onDisk = 0;
    EXPECT_EQ(fromMemory.setCount(), 2u);
    for (std::uint32_t n = 1; n <= 600; ++n) {
        ASSERT_EQ(fromDisk.map(n, onDisk), 0);
        ASSERT_EQ(fromMemory.map(n, offset), 0);
        ASSERT_EQ(onDisk, 99 + n);
        ASSERT_EQ(offset, 99 + n);
    }
    EXPECT_EQ(fromDisk.map(601, offset), velmio::kTmIdxNotFound);
    EXPECT_EQ(fromMemory.entry(513)->encodedTime, 512);
    EXPECT_EQ(fromDisk.entry(513)->encodedTime, 512);
    // Counts larger than the file can hold are refused before any allocation, and an
    // array count that disagrees with its set header.
    for (const Bytes &bad : {be32s({1, 3, 1, 0x7FFFFFFF, 0xFFFFFFFF}),
                             be32s({1, 3, 1, 1, 0xFFFFFFFF, 0x40000000, 0, 0, 0x40000000}),
                             be32s({1, 3, 1, 1, 512, 1, 5, 5, 2, 5, 16, 6, 20})}) {
        writeFile(dir.file("bad"), cat({ascii("TOVO"), bad}));
        TimeIndex back;
        EXPECT_EQ(back.read(dir.wfile("bad").c_str(), 1), velmio::kTmIdxInvalid) << hex(bad);
    }
}

TEST(TimeIndexFlat, EntriesTakeTheDataFilePositionAndBadArgumentsTheirCodesAndMessages) {
    TempDir dir;
    int err = -1;
    TOVO_Sensor *h = SensorOpenDir(dir.wpath().c_str(), 1, L"create", &err);
    ASSERT_NE(h, nullptr);
    std::fseek(h->dataFile, 48, SEEK_SET);
    EXPECT_EQ(TmIdxEntry(h, 5), 0);
    unsigned int off = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(TmIdxEntry(nullptr, 0), -1);
    EXPECT_EQ(TmIdxMapIndexToByteOffset(nullptr, 1, &off), -1);
    EXPECT_EQ(TmIdxWrite(nullptr), 0);
    EXPECT_EQ(TmIdxRead(nullptr), 0);
    EXPECT_EQ(TmIdxMapIndexToByteOffset(h, 1, &off), 0);
    EXPECT_EQ(off, 48u);
    EXPECT_EQ(TmIdxMapIndexToByteOffset(h, 0, &off), 5000036);
    EXPECT_EQ(TmIdxMapIndexToByteOffset(h, 2, &off), 5000037);
    EXPECT_EQ(TmIdxMapIndexToByteOffset(h, 1, nullptr), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "TmIdxEntry: sensor is invalid (empty)\n"
              "TmIdxMapIndexToByteOffset: sensor is invalid (empty)\n"
              "TmIdxWrite: sensor is invalid (empty)\n"
              "TmIdxRead: sensor is invalid (empty)\n"
              "TmIdxMapIndexToByteOffset: record number is invalid\n"
              "TmIdxMapIndexToByteOffset: requested record number not found\n"
              "TmIdxMapIndexToByteOffset: input variable 'offset' is invalid (empty)\n");
    EXPECT_EQ(TmIdxWrite(h), 0);
    EXPECT_NE(TmIdxSetAlloc(h), nullptr);
    EXPECT_EQ(h->timeIndex.setCount(), 2u);
    EXPECT_EQ(TmIdxSetFree(h), 0);
    EXPECT_EQ(h->timeIndex.setCount(), 0u);
    EXPECT_EQ(TmIdxRead(h), 0);
    EXPECT_EQ(h->timeIndex.entryCount(), 1u);
    std::fclose(h->dataFile);
    SensorFree(h);
}
