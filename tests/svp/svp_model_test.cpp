#include "svp/svp_test_support.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

using namespace velmio::test;

namespace {

const double kT1 = 1000.0, kT2 = 2000.0;

VelmSvpFile twoCasts() {
    VelmSvpFile f;
    f.SetSvpSection(kT1, L"45:07:24.50", L"-63:30:0.00");
    f.AddSvpValue(kT1, 0.0, 1480.0);
    f.AddSvpValue(kT1, 5.0, 1490.0);
    f.SetSvpSection(kT2, L"", L"");
    f.AddSvpValue(kT2, 1.0, 1500.0);
    return f;
}

}  // namespace

TEST(SvpModel, LookupsReportEachMissingOrRemovedLevel) {
    VelmSvpFile empty;
    double v = 0.0;
    EXPECT_EQ(empty.GetSvpValue(kT1, 0.0, v), 5016005);
    EXPECT_EQ(empty.RemoveSection(kT1), 5016005);

    VelmSvpFile f = twoCasts();
    EXPECT_EQ(f.GetSvpValue(kT1 + 0.5, 5.0, v), 5016005);  // times match exactly
    EXPECT_EQ(f.SetSvpValue(kT1, 7.0, 1495.0), 5016006);  // replaces but never inserts
    EXPECT_EQ(f.GetSvpValue(kT1, 7.0, v), 5016006);
    EXPECT_EQ(f.RemoveSvpValue(kT1, 7.0), 5016006);
    ASSERT_EQ(f.SetSvpValue(kT1, 5.0, 1495.0), 0);
    EXPECT_EQ(f.GetSvpValue(kT1, 5.0, v), 0);
    EXPECT_EQ(v, 1495.0);

    ASSERT_EQ(f.RemoveSvpValue(kT1, 5.0), 0);
    EXPECT_EQ(f.GetSvpValue(kT1, 5.0, v), 5016004);
    EXPECT_EQ(f.SetSvpValue(kT1, 5.0, 1.0), 5016004);

    ASSERT_EQ(f.RemoveSection(kT1), 0);
    MORVAUString lat, lon;
    EXPECT_EQ(f.GetSvpValue(kT1, 0.0, v), 5016003);
    EXPECT_EQ(f.SetSvpValue(kT1, 0.0, 1.0), 5016003);
    EXPECT_EQ(f.GetSvpSection(kT1, lat, lon), 5016003);
    EXPECT_EQ(f.AddSvpValue(kT1, 9.0, 1.0), 5016003);
    EXPECT_EQ(f.GetSvpSection(kT2, lat, lon), 0);
    EXPECT_TRUE(lat.empty());
}

TEST(SvpModel, DepthToleranceIsAdjustable) {
    VelmSvpFile f = twoCasts();
    double v = 0.0;
    EXPECT_EQ(f.GetSvpValue(kT1, 5.0009, v), 0);
    EXPECT_EQ(f.GetSvpValue(kT1, 5.002, v), 5016006);
    EXPECT_EQ(f.SetEpsilon(-1.0), -1);
    EXPECT_EQ(f.SetEpsilon(0.01), 0);
    EXPECT_EQ(f.GetSvpValue(kT1, 5.002, v), 0);
}

TEST(SvpModel, RemovedEntriesComeBackOnlyThroughSetOrAdd) {
    VelmSvpFile f = twoCasts();
    double v = 0.0;
    f.RemoveSvpValue(kT1, 5.0);
    EXPECT_EQ(f.AddSvpValue(kT1, 5.0, 1499.0), 0);
    EXPECT_EQ(f.GetSvpValue(kT1, 5.0, v), 0);
    EXPECT_EQ(v, 1499.0);
    EXPECT_EQ(liveCasts(f)[0].values.size(), 2u);  // revived, not appended

    f.RemoveSection(kT1);
    EXPECT_EQ(f.SetSvpSection(kT1, L"1:00:00", L"2:00:00"), 0);
    std::vector<Cast> casts = liveCasts(f);
    ASSERT_EQ(casts.size(), 2u);
    EXPECT_EQ(casts[0].latitude, L"1:00:00");
    EXPECT_TRUE(casts[0].values.empty());
}

TEST(SvpModel, PositionTextsConvertToSignedDegrees) {
    EXPECT_NEAR(SvpFile::LLDGStringToDouble(L"12:30:15"), 12.5041667, 1e-7);
    EXPECT_NEAR(SvpFile::LLDGStringToDouble(L"-12:30:15.50"), -(12.5 + 15.5 / 3600), 1e-12);
    EXPECT_EQ(SvpFile::LLDGStringToDouble(L"-0:30:00"), -0.5);
    EXPECT_EQ(SvpFile::LLDGStringToDouble(L"045.25"), 45.25);
    EXPECT_EQ(SvpFile::LLDGStringToDouble(L"12 30 00"), 12.5);
    EXPECT_EQ(SvpFile::LLDGStringToDouble(L""), 0.0);
    EXPECT_EQ(SvpFile::LLDGStringToDouble(L"x:30:y"), 0.5);
}

TEST(SvpModel, CopiesOwnTheirLists) {
    VelmSvpFile original = twoCasts();
    original.SetFileName(L"a.svp");
    VelmSvpFile copy(original);
    VelmSvpFile assigned;
    assigned.SetSvpSection(5.0, L"", L"");
    assigned = original;
    copy.SetSvpValue(kT1, 0.0, 1.0);
    assigned.RemoveSection(kT2);

    double v = 0.0;
    original.GetSvpValue(kT1, 0.0, v);
    EXPECT_EQ(v, 1480.0);
    EXPECT_EQ(liveCasts(original).size(), 2u);
    EXPECT_EQ(liveCasts(assigned).size(), 1u);
    MORVAUString name;
    assigned.GetFileName(name);
    EXPECT_EQ(name.str(), L"a.svp");
}
