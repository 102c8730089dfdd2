#include "svp/svp_test_support.h"
#include "support/test_support.h"

#include <velmio/svp_files.h>

#include <gtest/gtest.h>

#include <cwchar>
#include <memory>

using namespace velmio::test;

namespace {

const std::string kChsHeader =
    "( SoundVelocity 1.01 1 200903240000 45.1233333 -63.5000000 -1 200903241230 200903241300 SVPEDITOR N 0 )\n";
const std::string kDatLine = "+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05, +12.5000 ,+1480.5000\n";

template <typename Expected>
void expectFormat(const std::wstring &path) {
    int status = -7;
    std::unique_ptr<SvpFile> f(SvpFile::GetSvpFormat(path.c_str(), status));
    EXPECT_EQ(status, 0);
    EXPECT_NE(dynamic_cast<Expected *>(f.get()), nullptr);
    MORVAUString name;
    f->GetFileName(name);
    EXPECT_EQ(name.str(), path);
}

struct FileCloser {
    void operator()(FILE *f) const { fclose(f); }
};
using File = std::unique_ptr<FILE, FileCloser>;

}  // namespace

TEST(SvpDetection, PicksEdfThenChsThenDatThenNative) {
    TempDir dir;
    writeText(dir.file("cast.EdF"), kChsHeader);  // the extension wins over the content
    writeText(dir.file("cast.dat"), kChsHeader);
    writeText(dir.file("ran"), "title\n" + kDatLine);
    writeText(dir.file("ran999"), "title\n+45.1 ,-63.5 ,+005.000 ,24/03/2009 12:30:05, +12.5 ,+999.9\n");
    writeText(dir.file("firstline"), kDatLine);  // the first line is never data
    writeText(dir.file("native"), "[SVP_VERSION_2]\n");
    expectFormat<RANSvpFile_Edf>(dir.wfile("cast.EdF"));
    expectFormat<CHSSvpFile>(dir.wfile("cast.dat"));
    expectFormat<RANSvpFile_Dat>(dir.wfile("ran"));
    expectFormat<VelmSvpFile>(dir.wfile("ran999"));
    expectFormat<VelmSvpFile>(dir.wfile("firstline"));
    expectFormat<VelmSvpFile>(dir.wfile("native"));
    expectFormat<VelmSvpFile>(dir.wfile("missing"));
    EXPECT_FALSE(SvpFile::isRANEdfFormat(L"edf"));
}

TEST(SvpFiles, ProfilePathIsBuiltWithinTheBuffer) {
    wchar_t path[VELMIO_SVP_PATH_MAX];
    ASSERT_EQ(getSVPFileNameDir(L"root\\P\\V\\D\\L\\", path), 0);
    EXPECT_STREQ(path, L"root\\P\\V\\D\\L/Svp");
    EXPECT_EQ(getSVPFileNameDir(nullptr, path), 0);

    wchar_t small[8];
    std::wmemset(small, L'#', 8);
    EXPECT_EQ(getSVPFileNameDirN(L"/data/line", small, 6), -1);
    EXPECT_STREQ(small, L"/data");
    EXPECT_EQ(small[6], L'#');
    EXPECT_EQ(getSVPFileNameDirN(L"/data/line", small, 0), -1);
    EXPECT_EQ(small[0], L'/');
    std::wstring longDirectory(600, L'd');
    EXPECT_EQ(getSVPFileNameDir(longDirectory.c_str(), path), -1);
    EXPECT_EQ(std::wcslen(path), static_cast<size_t>(VELMIO_SVP_PATH_MAX - 1));
}

TEST(SvpFiles, OpenTriesTheReadNamesInOrderAndWritesSvp) {
    TempDir dir;
    const std::wstring line = dir.wpath();
    wchar_t path[VELMIO_SVP_PATH_MAX];
    EXPECT_EQ(OpenSVPFileDir(line.c_str(), L"r", path), nullptr);
    EXPECT_STREQ(path, L"");

    writeText(dir.file("SVP"), "upper");
    File f(OpenSVPFileDir(line.c_str(), L"rb", path));
    ASSERT_TRUE(f);
    EXPECT_EQ(std::wstring(path), dir.wfile("SVP"));
    writeText(dir.file("SoundSpeedProfile"), "long");
    f.reset(OpenSVPFileDir(line.c_str(), L"r+", path));
    ASSERT_TRUE(f);
    EXPECT_EQ(std::wstring(path), dir.wfile("SoundSpeedProfile"));

    f.reset(OpenSVPFileDir(line.c_str(), L"wt", path));
    ASSERT_TRUE(f);
    EXPECT_EQ(std::wstring(path), dir.wfile("Svp"));
    EXPECT_TRUE(fileExists(dir.file("Svp")));

    EXPECT_EQ(OpenSVPFileDir(line.c_str(), L"rz", path), nullptr);
    EXPECT_EQ(OpenSVPFileDir(line.c_str(), L"r", nullptr), nullptr);
    EXPECT_EQ(OpenSVPFileDir(nullptr, L"r", path), nullptr);
    wchar_t tiny[4];
    f.reset(OpenSVPFileDirN(line.c_str(), L"r", tiny, 4));
    EXPECT_TRUE(f);
    EXPECT_EQ(std::wcslen(tiny), 3u);
}
