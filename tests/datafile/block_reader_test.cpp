#include <velmio/block_reader.hpp>
#include <velmio/linestore.h>

#include "linestore/sensor.h"
#include "support/test_support.h"

#include <cstdio>
#include <initializer_list>

using namespace velmio::test;

namespace {

// A 100-byte data file whose every byte is its own offset, and a time index
// of five records at 10, 20, 35, 50 and 80: lengths 10, 15, 15, 30 and 20
// (the last running to the end of the file).
class BlockReader : public ::testing::Test {
protected:
    void SetUp() override {
        Bytes data;
        for (int i = 0; i < 100; ++i) data.push_back(static_cast<std::uint8_t>(i));
        writeFile(dir_.file("TPE"), data);
        open({10, 20, 35, 50, 80});
    }
    void TearDown() override {
        destroy(reader_);
        close();
    }
    void open(std::initializer_list<std::uint32_t> offsets) {
        int error = -1;
        sensor_ = SensorOpenDir(dir_.wpath().c_str(), 52, L"query", &error);
        ASSERT_NE(sensor_, nullptr);
        for (std::uint32_t offset : offsets) ASSERT_EQ(sensor_->timeIndex.append(0, offset), 0);
    }
    void close() {
        if (!sensor_) return;
        std::fclose(sensor_->dataFile);
        SensorFree(sensor_);
        sensor_ = nullptr;
    }
    void start(unsigned cacheSize) {
        destroy(reader_);
        reader_ = nullptr;
        ASSERT_EQ(initialise(sensor_, cacheSize, &reader_), 0);
    }
    std::pair<unsigned, unsigned> held() const {
        unsigned first = 9, last = 9;
        getStartEndRecordNumber(reader_, &first, &last);
        return {first, last};
    }
    // The next n bytes of the current record, or an empty vector.
    Bytes next(unsigned n) {
        Bytes out(n, 0xEE);
        if (!BlockIOFread(reader_, out.data(), n)) {
            EXPECT_EQ(out, Bytes(n, 0xEE)) << "a failed read copied bytes";
            return {};
        }
        return out;
    }
    static Bytes run(int from, int count) {
        Bytes out;
        for (int i = 0; i < count; ++i) out.push_back(static_cast<std::uint8_t>(from + i));
        return out;
    }

    TempDir dir_;
    TOVO_Sensor *sensor_ = nullptr;
    VELMBlockReader *reader_ = nullptr;
};

TEST_F(BlockReader, BlocksHoldCacheSizeRecordsAndTheLastReachesTheEndOfTheFile) {
    start(2);
    ASSERT_EQ(readRecord(reader_, 1), 0);
    EXPECT_EQ(held(), std::make_pair(1u, 2u));
    EXPECT_EQ(next(10), run(10, 10));
    ASSERT_EQ(readRecordSeq(reader_), 0);  // record 2, from the same block
    EXPECT_EQ(held(), std::make_pair(1u, 2u));
    EXPECT_EQ(next(15), run(20, 15));
    ASSERT_EQ(readRecordSeq(reader_), 0);
    EXPECT_EQ(held(), std::make_pair(3u, 4u));
    // At the end of the line a block holds fewer records than the cache size.
    ASSERT_EQ(readRecord(reader_, 5), 0);
    EXPECT_EQ(held(), std::make_pair(5u, 5u));
    EXPECT_EQ(next(20), run(80, 20));
    EXPECT_EQ(readRecordSeq(reader_), 5000037);
    EXPECT_EQ(held(), std::make_pair(0u, 0u));

    start(4);
    ASSERT_EQ(readRecord(reader_, 3), 0);
    EXPECT_EQ(held(), std::make_pair(3u, 5u));
    ASSERT_EQ(readRecord(reader_, 4), 0);
    EXPECT_EQ(next(30), run(50, 30));
    EXPECT_EQ(readRecord(reader_, 0), 5000036);
}

TEST_F(BlockReader, ReadsAndOffsetsStayWithinTheCurrentRecord) {
    start(3);
    ASSERT_EQ(readRecord(reader_, 2), 0);
    EXPECT_EQ(next(4), run(20, 4));
    EXPECT_EQ(next(12), Bytes());  // one byte more than is left
    EXPECT_EQ(next(11), run(24, 11));
    EXPECT_EQ(next(1), Bytes());
    EXPECT_EQ(setByteOffset(reader_, 14, 0), 1);
    EXPECT_EQ(next(1), run(34, 1));
    EXPECT_EQ(setByteOffset(reader_, 15, 0), 0);
    EXPECT_EQ(setByteOffset(reader_, -6, 1), 1);
    EXPECT_EQ(next(2), run(29, 2));
    EXPECT_EQ(setByteOffset(reader_, -32, 1), 0);
    EXPECT_EQ(setByteOffset(reader_, 5, 1), 0);
}

TEST_F(BlockReader, ServesTheBlockFromMemoryUntilAnotherIsNeeded) {
    start(2);
    ASSERT_EQ(readRecord(reader_, 1), 0);
    // From now on the sensor's file holds other bytes.
    writeFile(dir_.file("Other"), Bytes(100, 0x55));
    std::fclose(sensor_->dataFile);
    sensor_->dataFile = std::fopen(dir_.file("Other").c_str(), "rb");
    ASSERT_NE(sensor_->dataFile, nullptr);
    ASSERT_EQ(readRecord(reader_, 2), 0);
    EXPECT_EQ(next(15), run(20, 15));
    ASSERT_EQ(readRecord(reader_, 4), 0);
    EXPECT_EQ(next(2), Bytes(2, 0x55));
    clearBuffer(reader_);
    EXPECT_EQ(held(), std::make_pair(0u, 0u));
    EXPECT_EQ(next(1), Bytes());
}

TEST_F(BlockReader, CacheSizeIsBoundedByTheRecordCountAndZeroIsOff) {
    start(4000000000u);
    EXPECT_EQ(getCacheSize(reader_), 5u);
    ASSERT_EQ(setCacheSize(reader_, 3), 0);
    ASSERT_EQ(readRecordSeq(reader_), 0);
    EXPECT_EQ(held(), std::make_pair(1u, 3u));
    ASSERT_EQ(setCacheSize(reader_, 0), 0);
    EXPECT_EQ(readRecord(reader_, 1), 1);
    EXPECT_EQ(next(1), Bytes());
    EXPECT_EQ(setByteOffset(reader_, 0, 0), 0);
    EXPECT_EQ(getCacheSize(nullptr), 0u);
    EXPECT_EQ(readRecord(nullptr, 1), 1);
    VELMBlockReader *none = nullptr;
    EXPECT_EQ(initialise(nullptr, 4, &none), -1);
}

TEST_F(BlockReader, OffsetsThatAreNotAscendingOrLieBeyondTheFileAreRefused) {
    close();
    open({10, 20, 15, 50, 80});
    start(4);
    EXPECT_EQ(readRecord(reader_, 1), 5000039);
    EXPECT_EQ(held(), std::make_pair(0u, 0u));
    ASSERT_EQ(readRecord(reader_, 3), 0);  // from 15 on, ascending again
    EXPECT_EQ(next(35), run(15, 35));

    destroy(reader_);
    reader_ = nullptr;
    close();
    open({10, 20, 35, 50, 180});
    start(3);
    EXPECT_EQ(readRecord(reader_, 2), 5000039);  // record 4 would end past the file
    EXPECT_EQ(readRecord(reader_, 5), 5000039);
    ASSERT_EQ(readRecord(reader_, 1), 0);
    EXPECT_EQ(held(), std::make_pair(1u, 3u));
}

}  // namespace
