// The per-directory log file.
#include <velmio/log_file.h>

#include "support/test_support.h"

#include <cstdlib>
#include <string>

using namespace velmio::test;

namespace {
std::string logOf(const TempDir &dir) { return dir.file("LogFile"); }
// The status of an open that must fail.
int refusedOpen(const wchar_t *dir, const wchar_t *mode) {
    int status = 0;
    EXPECT_EQ(nullptr, LogFileOpen(dir, mode, &status));
    return status;
}
}  // namespace

TEST(LogFile, WriteTwiceAppendsBothTextsEachWithALineFeed) {
    TempDir dir;
    writeText(logOf(dir), "earlier\n");
    ASSERT_EQ(0, WriteToVELMLogFile(dir.wpath().c_str(), L"first entry"));
    ASSERT_EQ(0, WriteToVELMLogFile(dir.wpath().c_str(), L"Tiefe \u00fcber Grund"));
    EXPECT_TRUE(SameBytes(ascii("earlier\nfirst entry\nTiefe \xC3\xBC" "ber Grund\n"), readFile(logOf(dir))));
}

TEST(LogFile, MissingArgumentsUnopenableDirectoriesAndModesGiveTheirCodes) {
    TempDir dir;
    EXPECT_EQ(5017200, refusedOpen(nullptr, L"a"));
    EXPECT_EQ(5017201, refusedOpen(dir.wpath().c_str(), nullptr));
    EXPECT_EQ(nullptr, LogFileOpen(nullptr, nullptr, nullptr));  // no status wanted
    writeText(dir.file("plainfile"), "x");
    EXPECT_EQ(5000049, WriteToVELMLogFile(dir.wfile("missing").c_str(), L"text"));
    EXPECT_EQ(5000049, WriteToVELMLogFile(dir.wfile("plainfile").c_str(), L"text"));
    EXPECT_EQ(5000049, WriteToVELMLogFile(nullptr, L"text"));
    EXPECT_EQ(-1, WriteToVELMLogFile(dir.wpath().c_str(), nullptr));
    EXPECT_EQ(5017202, refusedOpen(dir.wfile("no/such/dir").c_str(), L"a"));
    EXPECT_EQ(5017202, refusedOpen(dir.wpath().c_str(), L"r"));  // no log there yet
    EXPECT_EQ(5017202, refusedOpen(dir.wpath().c_str(), L"a\u00e9"));
    EXPECT_FALSE(fileExists(logOf(dir)));
}

TEST(LogFile, AppendWritesUtf8AsItIsAndModeWTruncates) {
    TempDir dir;
    writeText(logOf(dir), "old content\n");
    int status = -7;
    VELMLogFile *log = LogFileOpen((dir.wpath() + L"\\").c_str(), L"w", &status);
    ASSERT_NE(nullptr, log);
    EXPECT_EQ(0, status);
    EXPECT_EQ(0, LogFileAppendText(log, L"a\u00e9"));
    EXPECT_EQ(0, LogFileAppendText(log, L"\u20ac"));
    EXPECT_EQ(0, LogFileAppendText(log, L""));
    EXPECT_EQ(-1, LogFileAppendText(log, nullptr));
    EXPECT_EQ(-1, LogFileAppendText(nullptr, L"x"));
    // Appended texts are flushed at once, not only at close.
    EXPECT_TRUE(SameBytes(Bytes{'a', 0xC3, 0xA9, 0xE2, 0x82, 0xAC}, readFile(logOf(dir))));
    EXPECT_EQ(0, LogFileClose(log));
    EXPECT_EQ(-1, LogFileClose(nullptr));
}

TEST(LogFile, VersionTextsAreOwnedCopiesAndNeverWritten) {
    TempDir dir;
    VELMLogFile *log = LogFileOpen(dir.wpath().c_str(), L"a", nullptr);
    ASSERT_NE(nullptr, log);
    wchar_t first[] = L"VelmIO 1.0";
    EXPECT_EQ(0, LogFileSetVersionInfo(log, first, L"second"));
    first[0] = L'X';
    wchar_t *a = nullptr, *b = nullptr;
    ASSERT_EQ(0, LogFileGetVersionInfo(log, &a, &b));
    EXPECT_STREQ(L"VelmIO 1.0", a);
    EXPECT_STREQ(L"second", b);
    std::free(a);
    std::free(b);

    EXPECT_EQ(-1, LogFileSetVersionInfo(nullptr, L"x", L"y"));
    EXPECT_EQ(-1, LogFileGetVersionInfo(nullptr, &a, &b));
    EXPECT_EQ(0, LogFileClose(log));
    EXPECT_TRUE(readFile(logOf(dir)).empty());
}

TEST(LogFile, RemoveDeletesOnlyTheLog) {
    TempDir dir;
    writeText(logOf(dir), "log\n");
    writeText(dir.file("Navigation"), "data");
    EXPECT_EQ(0, LogFileRemove(dir.wpath().c_str()));
    EXPECT_FALSE(fileExists(logOf(dir)));
    EXPECT_TRUE(fileExists(dir.file("Navigation")));
    EXPECT_EQ(0, LogFileRemove(dir.wpath().c_str()));  // already gone
    EXPECT_EQ(-1, LogFileRemove(nullptr));
}
