// The scaled encodings: rounding, clamping and the deliberate asymmetries.
#include <velmio/encoding.h>

#include "encoding/rounding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(ScaledEncodings, MetresRoundHalfAwayFromZeroAndClamp) {
    EXPECT_EQ(TOVO_EncodeMeters(2000000.0), 2000000000);
    EXPECT_EQ(TOVO_EncodeMeters(2000000.001), 2147483647);
    EXPECT_EQ(TOVO_EncodeMeters(-2000000.5), -2147483647 - 1);
    EXPECT_EQ(TOVO_EncodeMeters(0.0005), 1);
    EXPECT_EQ(TOVO_EncodeMeters(-0.0005), -1);
    EXPECT_EQ(TOVO_EncodeMeters(1.2344), 1234);
    EXPECT_EQ(TOVO_EncodeMeters(std::numeric_limits<double>::infinity()), 2147483647);
    EXPECT_DOUBLE_EQ(TOVO_DecodeMeters(-1234), -1.234);
    EXPECT_DOUBLE_EQ(TOVO_DecodeDecibles(1500), 1.5);
}

TEST(ScaledEncodings, OtherScalesWrapInsteadOfClamping) {
    EXPECT_EQ(TOVO_EncodeRadians(M_PI), 31415927);
    EXPECT_EQ(TOVO_EncodeRadians(-0.00000005), -1);
    EXPECT_EQ(TOVO_EncodeSeconds(1.5), 1500000);
    EXPECT_EQ(TOVO_EncodeDecibles(3000000.0), static_cast<int>(3000000000u - 4294967296LL));
    EXPECT_EQ(TOVO_EncodeRadians(300.0), static_cast<int>(3000000000LL - 4294967296LL));
    EXPECT_DOUBLE_EQ(TOVO_DecodeRadians(31415927), 3.1415927);
    EXPECT_DOUBLE_EQ(TOVO_DecodeSeconds(-2500000), -2.5);
}

TEST(ScaledEncodings, NanAndInfinityEncodeToTheMostNegativeUnit) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const int most = -2147483647 - 1;
    EXPECT_EQ(TOVO_EncodeMeters(nan), most);
    EXPECT_EQ(TOVO_EncodeRadians(nan), most);
    EXPECT_EQ(TOVO_EncodeSeconds(-std::numeric_limits<double>::infinity()), most);
    EXPECT_EQ(TOVO_EncodeTime(1e300, 0, 1000), most);
    EXPECT_EQ(velmio::truncToInt32(nan), most);
    EXPECT_EQ(velmio::truncToInt32(-1.9), -1);
}

TEST(ScaledEncodings, TimesUseWholeMinuteReferences) {
    EXPECT_EQ(TOVO_EncodeRefTime(89.9), 1);
    EXPECT_EQ(TOVO_EncodeRefTime(90.0), 2);
    EXPECT_DOUBLE_EQ(TOVO_DecodeRefTime(2), 120.0);
    EXPECT_EQ(TOVO_EncodeTime(100.0, 2, 1000), -20000);
    EXPECT_EQ(TOVO_EncodeTime(100.5, 2, 1000), -19500);
    EXPECT_DOUBLE_EQ(TOVO_DecodeTime(10, 1000, 2500), 602.5);
    EXPECT_EQ(TOVO_EncodeDepthTime(10.5, 10.0, 1000), 500);
    EXPECT_DOUBLE_EQ(TOVO_DecodeDepthTime(10.0, 1000, -250), 9.75);
    // A zero scale divides in floating point and never traps.
    EXPECT_TRUE(std::isinf(TOVO_DecodeTime(0, 0, 5)));
}

TEST(ScaledEncodings, PositionsAgainstReferences) {
    const int ref = TOVO_EncodeRefPosition(0.7);
    EXPECT_EQ(ref, 7000000);
    EXPECT_EQ(TOVO_EncodePosition(0.7000001, ref, 1), 100);
    EXPECT_DOUBLE_EQ(TOVO_DecodePosition(ref, 1, 100), 100 * 1e-9 + 7000000 * 1e-7);
    EXPECT_EQ(TOVO_EncodeDepthPosition(5.0, 4.0, 1000), 1000000);
    EXPECT_DOUBLE_EQ(TOVO_DecodeDepthPosition(4.0, 1000, 1000000), 5.0);
}

TEST(ScaledEncodings, DepthPositionDecodeWrapsTheIntegerProduct) {
    // 100000 x 50000 = 5000000000 wraps to 705032704 in 32 bits.
    EXPECT_DOUBLE_EQ(TOVO_DecodeDepthPosition(0.0, 100000, 50000), 0.705032704);
    // The plain position decode multiplies in floating point instead.
    EXPECT_DOUBLE_EQ(TOVO_DecodePosition(0, 100000, 50000), 5.0);
}
