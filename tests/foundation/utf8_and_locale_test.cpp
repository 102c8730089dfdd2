#include <velmio/morva_string.hpp>

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"
#include "platform/native_path.h"
#include "platform/system_error.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <vector>

TEST(Utf8, RoundTripsAllPlanesAndReplacesMalformedInput) {
    const std::wstring text = L"Tr\u00e6k \u6e2c\U0001F30A";
    const std::string utf8 = velmio::toUtf8(text);
    EXPECT_EQ(utf8, "Tr\xc3\xa6k \xe6\xb8\xac\xf0\x9f\x8c\x8a");
    EXPECT_EQ(velmio::fromUtf8(utf8), text);
    EXPECT_EQ(velmio::fromUtf8("a\xff" "b\xc3"), L"a\ufffdb\ufffd");
    EXPECT_EQ(velmio::fromUtf8("\xc0\xaf"), L"\ufffd");  // overlong form
    EXPECT_EQ(velmio::toUtf8(static_cast<const wchar_t *>(nullptr)), "");
}

TEST(NativePath, BothSeparatorsBecomeTheNativeOne) {
    EXPECT_EQ(velmio::platform::nativePath(L"C:\\data/line\\x"), "C:/data/line/x");
    EXPECT_EQ(velmio::platform::nativePath(static_cast<const wchar_t *>(nullptr)), "");
}

TEST(ClassicLocale, NumbersIgnoreTheCallersLocale) {
    const char *old = std::setlocale(LC_NUMERIC, nullptr);
    std::string saved = old ? old : "C";
    bool comma = false;
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8"})
        if (std::setlocale(LC_NUMERIC, name)) {
            comma = true;
            break;
        }
    if (!comma) GTEST_SKIP() << "no decimal-comma locale installed";
    char buf[32];
    {
        velmio::ClassicLocaleScope classic;
        std::snprintf(buf, sizeof buf, "%.2f", 1.5);
        EXPECT_STREQ(buf, "1.50");
        EXPECT_DOUBLE_EQ(std::atof("2.25"), 2.25);
    }
    std::snprintf(buf, sizeof buf, "%.2f", 1.5);
    EXPECT_STREQ(buf, "1,50") << "the caller's locale is back after the scope";
    std::setlocale(LC_NUMERIC, saved.c_str());
}

TEST(MorvaString, CaseFoldingIsAsciiOnly) {
    EXPECT_TRUE(MORVAUString(L"Boat.TVC").endsWithIgnoreCase(MORVAUString(L".tvc")));
    EXPECT_FALSE(MORVAUString(L"tvc").endsWithIgnoreCase(MORVAUString(L".tvc")));
    EXPECT_TRUE(MORVAUString(L"Gyro").equalsIgnoreCase(MORVAUString(L"gYRO")));
    EXPECT_EQ(MORVAUString(static_cast<const wchar_t *>(nullptr)).length(), 0u);
    EXPECT_EQ(MORVAUString::fromUtf8("\xc3\xa6").str(), L"\u00e6");
}

using velmio::platform::platformError;
using velmio::platform::reportOpenFailure;

TEST(PlatformErrors, ErrnoMapsToThePlatformNumbers) {
    std::vector<int> got;
    for (int e : {ENOENT, EMFILE, ENFILE, EACCES, EPERM, ENOMEM, ENOSPC, 0}) got.push_back(platformError(e));
    EXPECT_EQ(got, std::vector<int>({2, 4, 4, 5, 5, 8, 8, 0}));
    EXPECT_NE(platformError(EISDIR), 2);
}

TEST(PlatformErrors, OpenFailureMessagesKeepTheirWording) {
    const velmio::platform::OpenFailureCodes codes{1, 2, 3, 4, 5};
    std::vector<int> got;
    testing::internal::CaptureStdout();
    for (int e : {ENOENT, EMFILE, EACCES, ENOSPC, 0}) got.push_back(reportOpenFailure("f", e, codes, true, 9));
    got.push_back(reportOpenFailure("f", EISDIR, codes, false, 9));
    EXPECT_EQ(got, std::vector<int>({1, 2, 3, 4, 9, 5}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VELM IO was unable to find the data file 'f'\n"
              "VELM IO could not open 'f' because there are too many files open on the system.\n"
              "VELM IO could not open 'f' because access is denied by the system.\n"
              "VELM IO could not open 'f' because there is not enough disk space available.\n");
    testing::internal::CaptureStdout();
    reportOpenFailure("f", EISDIR, codes, true, 9);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VELM IO could not open 'f'.  Windows returned the following error:\n\t" +
                  velmio::platform::systemMessage(EISDIR) + "\n");
}
