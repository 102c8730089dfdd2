#include <velmio/paths.h>
#include <velmio/utils.hpp>

#include "support/test_support.h"

#include <cstdlib>
#include <cwchar>
#include <string>

namespace {
// The five parts joined by '|', or "refused".
std::wstring split(const wchar_t *path) {
    MORVAUString r, p, v, d, l;
    if (!VELMIOUtils::pathToPVDL(MORVAUString(path), r, p, v, d, l)) return L"refused";
    return r.str() + L"|" + p.str() + L"|" + v.str() + L"|" + d.str() + L"|" + l.str();
}
std::wstring appended(const wchar_t *path, const wchar_t *name) {
    MORVAUString p(path);
    VELMIOUtils::appendPath(p, MORVAUString(name));
    return p.str();
}
std::wstring taken(wchar_t *copy) {
    std::wstring out = copy ? copy : L"<null>";
    std::free(copy);
    return out;
}
}  // namespace

TEST(LinePaths, SplitsIntoRootProjectVesselDayLine) {
    // Native separators in the root.
    EXPECT_EQ(split(L"C:/Data/Proj/Vessel/2004-123/Line1/"), L"C:/Data|Proj|Vessel|2004-123|Line1");
    EXPECT_EQ(split(L"D:\\root\\P\\V\\D\\L"), L"D:/root|P|V|D|L");
    EXPECT_EQ(split(L"Proj\\Vessel\\Day\\Line"), L"|Proj|Vessel|Day|Line");
    EXPECT_EQ(split(L"/P/V/D/L"), L"/|P|V|D|L");
    for (const wchar_t *tooShort : {L"Vessel\\Day\\Line", L"", L"Line"}) EXPECT_EQ(split(tooShort), L"refused");
}

TEST(LinePaths, FlatPartGettersReturnCopiesOrNull) {
    const wchar_t *path = L"/data/Proj/Boat/2004-123/L7";
    EXPECT_EQ(taken(VELMGetProjectFromPath(path)), L"Proj");
    EXPECT_EQ(taken(VELMGetVesselFromPath(path)), L"Boat");
    EXPECT_EQ(taken(VELMGetDayFromPath(path)), L"2004-123");
    EXPECT_EQ(taken(VELMGetLineFromPath(path)), L"L7");
    EXPECT_EQ(taken(VELMGetLineFromPath(L"a/b")), L"<null>");
    EXPECT_EQ(taken(VELMGetProjectFromPath(nullptr)), L"<null>");
    EXPECT_EQ(taken(VELMGetDayFromPath(L"P/V//L")), L"<null>");  // empty part
}

TEST(LinePaths, AppendPutsExactlyOneNativeSeparator) {
    EXPECT_EQ(appended(L"dir", L"file"), L"dir/file");
    EXPECT_EQ(appended(L"dir\\\\", L"\\\\file"), L"dir/file");
    EXPECT_EQ(appended(L"dir/", L"/file"), L"dir/file");
    EXPECT_EQ(appended(L"", L"file"), L"file");
    EXPECT_EQ(appended(L"/", L"file"), L"/file");
    EXPECT_EQ(appended(L"a", L""), L"a/");
}

TEST(LinePaths, CanonicalPathFoldsDotsAndRefusesLongResults) {
    MORVAUString out;
    ASSERT_TRUE(VELMIOUtils::getCanonicalPath(MORVAUString(L"/a/./b/../c/"), out));
    EXPECT_EQ(out.str(), L"/a/c/");
    ASSERT_TRUE(VELMIOUtils::getCanonicalPath(MORVAUString(L"rel"), out));
    EXPECT_EQ(out.str().front(), L'/');
    EXPECT_FALSE(VELMIOUtils::getCanonicalPath(MORVAUString(L""), out));
    EXPECT_FALSE(VELMIOUtils::getCanonicalPath(MORVAUString(L"/" + std::wstring(600, L'x')), out));
}

TEST(SpeedConversion, DirectionFlagChoosesTheWay) {
    EXPECT_DOUBLE_EQ(convertMSToKnots(10.0, 1), 5.144444444);
    EXPECT_DOUBLE_EQ(convertMSToKnots(5.144444444, 0), 10.0);
}
