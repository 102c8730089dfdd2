#include <velmio/time_conversions.h>
#include <velmio/utils.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {
std::string decodeMessage(const char *text, int &rc, double &t) {
    testing::internal::CaptureStdout();
    rc = VELMIOUtils::decodeTime(text, t);
    return testing::internal::GetCapturedStdout();
}
}  // namespace

TEST(TimeText, DecodesTheFirstSeventeenCharacters) {
    double t = -1;
    EXPECT_EQ(VELMIOUtils::decodeTime("2004-123 12:00:00", t), 0);
    EXPECT_DOUBLE_EQ(t, TmYDStoUTCs80(2004, 123, 43200.0));
    EXPECT_EQ(VELMIOUtils::decodeTime(L"1995-032 12:00:00.75 trailing", t), 0);
    EXPECT_DOUBLE_EQ(t, TmYDStoUTCs80(1995, 32, 43200.0));
}

TEST(TimeText, EachCheckHasItsMessageInOrder) {
    struct Case {
        const char *text;
        const char *message;
    } cases[] = {
        {nullptr, "decodeTime(): Invalid format.  Supplied string (NULL) is less than 17 characters.\n"},
        {"2004-123 12:00", "decodeTime(): Invalid format.  Supplied string (2004-123 12:00) is less than 17 characters.\n"},
        {"2004/123 12:00:00",
         "decodeTime(): Invalid format.  Supplied string (2004/123 12:00:00) does not have a '-' at position 4.\n"},
        {"1995-32 12:00:00 ",
         "decodeTime(): Invalid format.  Supplied string (1995-32 12:00:00 ) does not have a ' ' at position 8.\n"},
        {"2004-123 12-00:00",
         "decodeTime(): Invalid format.  Supplied string (2004-123 12-00:00) does not have a ':' at position 11.\n"},
        {"2004-123 12:00-00",
         "decodeTime(): Invalid format.  Supplied string (2004-123 12:00-00) does not have a ':' at position 14.\n"},
        {"1899-123 12:00:00", "decodeTime(): Invalid year.  Supplied string (1899-123 12:00:00).  Year = 1899\n"},
        {"2004-367 00:00:00", "decodeTime(): Invalid julian day.  Supplied string (2004-367 00:00:00).  JDay = 367\n"},
        {"2004-123 24:00:00", "decodeTime(): Invalid hour.  Supplied string (2004-123 24:00:00).  hour = 24\n"},
        {"2004-123 12:60:00", "decodeTime(): Invalid minute.  Supplied string (2004-123 12:60:00).  Minute = 60\n"},
        {"2004-123 12:00:61",
         "decodeTime(): Invalid seconds.  Supplied string (2004-123 12:00:61).  Seconds = 61, SecondStr = 61\n"},
    };
    for (const auto &c : cases) {
        int rc;
        double t = 42.0;
        EXPECT_EQ(decodeMessage(c.text, rc, t), c.message);
        EXPECT_EQ(rc, 5100010);
        EXPECT_EQ(t, 42.0) << "a refused text leaves the time alone";
    }
}
