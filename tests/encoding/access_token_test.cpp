#include <velmio/encoding.h>

#include <gtest/gtest.h>

TEST(AccessToken, DecodesInAnyLetterCaseAndRefusesOthersWithTheirMessages) {
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"create"), 1);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"QUERY"), 2);
    EXPECT_EQ(TOVO_DecodeAccessTypeToken(L"Update"), 3);
    testing::internal::CaptureStdout();
    for (const wchar_t *bad : {L"", static_cast<const wchar_t *>(nullptr), L"read", L"creates"})
        EXPECT_EQ(TOVO_DecodeAccessTypeToken(bad), 5000035);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "TOVO_DecodeAccessTypeToken: supplied token type is invalid (empty).\n"
              "TOVO_DecodeAccessTypeToken: supplied token type is invalid (empty).\n"
              "TOVO_DecodeAccessTypeToken: token type invalid (unknown)\n"
              "TOVO_DecodeAccessTypeToken: token type invalid (unknown)\n");
}
