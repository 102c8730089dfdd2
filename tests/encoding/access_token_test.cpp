#include <velmio/encoding.h>

#include <gtest/gtest.h>

TEST(AccessToken, DecodesInAnyLetterCase) {
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"create"), 1);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"Query"), 2);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"QUERY"), 2);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"Update"), 3);
}

TEST(AccessToken, EmptyAndUnknownTokensAreRefusedWithTheirMessages) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L""), 5000035);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(nullptr), 5000035);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"read"), 5000035);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"creates"), 5000035);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "TOVO_DecodeAccessTypeToken: supplied token type is invalid (empty).\n"
              "TOVO_DecodeAccessTypeToken: supplied token type is invalid (empty).\n"
              "TOVO_DecodeAccessTypeToken: token type invalid (unknown)\n"
              "TOVO_DecodeAccessTypeToken: token type invalid (unknown)\n");
}
