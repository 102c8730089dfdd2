#include <velmio/utils.hpp>

#include <gtest/gtest.h>

#include <string>

using namespace VELMIOUtils;

namespace {
std::wstring processedText(unsigned int w) {
    wchar_t buf[64] = L"unchanged";
    processedStatusToString(w, buf);
    return buf;
}
std::wstring observedText(unsigned int w) {
    wchar_t buf[64] = L"unchanged";
    observedStatusToString(w, buf);
    return buf;
}
constexpr unsigned int bit(int n) { return 1u << n; }
constexpr unsigned int kSign = 0x80000000u;
}  // namespace

TEST(StatusWords, ProcessedToObservedFirstRowWinsThenExtras) {
    EXPECT_EQ(processedStatusToObservedStatus(kSign), kSign);
    EXPECT_EQ(processedStatusToObservedStatus(0), 0u);
    EXPECT_EQ(processedStatusToObservedStatus(kSign | bit(30) | bit(18)), 0x80400000u);
    EXPECT_EQ(processedStatusToObservedStatus(kSign | bit(24)), 0xC0000000u);
    EXPECT_EQ(processedStatusToObservedStatus(bit(21) | bit(19) | bit(23) | bit(22)), 0x0E100000u);
}

TEST(StatusWords, ObservedToProcessedAndTheKeptAsymmetry) {
    EXPECT_EQ(observedStatusToProcessedStatus(kSign), kSign);
    EXPECT_EQ(observedStatusToProcessedStatus(kSign | bit(30)), 0x81000000u);
    EXPECT_EQ(observedStatusToProcessedStatus(kSign | bit(19)), 0x80040000u);
    EXPECT_EQ(observedStatusToProcessedStatus(bit(27) | bit(26) | bit(20)), 0x00C80000u);
    // Processed bit 21 becomes observed bit 25, which has no way back.
    EXPECT_EQ(processedStatusToObservedStatus(bit(21)), bit(25));
    EXPECT_EQ(observedStatusToProcessedStatus(bit(25)), 0u);
    // Several reject bits: the row orders differ, so the round trip changes the word.
    const unsigned int processed = kSign | bit(30) | bit(24);
    EXPECT_NE(observedStatusToProcessedStatus(processedStatusToObservedStatus(processed)), processed);
}

TEST(StatusWords, TextsFollowEachTablesOwnBits) {
    EXPECT_EQ(processedText(0), L"Accept");
    EXPECT_EQ(observedText(0), L"Accept");
    EXPECT_EQ(processedText(kSign), L"unchanged");
    EXPECT_EQ(observedText(kSign), L"unchanged");
    EXPECT_EQ(processedText(kSign | bit(30) | bit(18)), L"Reject (Subset - Hydrographer)");
    EXPECT_EQ(observedText(kSign | bit(30)), L"Reject (Swath Editor)");
    EXPECT_EQ(processedText(kSign | bit(20)), L"Reject (Surface Cleaning)");
    EXPECT_EQ(observedText(kSign | bit(21)), L"Reject (Surface cleaning)");
    EXPECT_EQ(observedText(kSign | bit(22) | bit(23)), L"Reject (Subset - Hydrographer)");
    EXPECT_EQ(processedText(bit(26) | bit(19)), L"Outstanding");
    EXPECT_EQ(processedText(bit(21)), L"Decimated");
    EXPECT_EQ(observedText(bit(20)), L"Designated");
    EXPECT_EQ(observedText(bit(26)), L"Accept");
}

TEST(StatusWords, BoundedTextsTruncateInsteadOfOverflowing) {
    wchar_t small[8];
    small[7] = L'#';
    processedStatusToString(kSign | bit(29), small, 7);
    EXPECT_EQ(std::wstring(small), L"Reject");
    EXPECT_EQ(small[7], L'#');
    processedStatusToString(0, nullptr, 10);  // no buffer: nothing happens
}
