// Reading a cast of each format under failing file operations: a read
// either fails with a documented code or holds exactly the cast written,
// never a cast cut short at a failed read.
#include <velmio/svp.hpp>

#include "fault_sweep.h"
#include "support/test_support.h"

#include <memory>

using namespace velmio::test;

namespace {

double velocityAt(SvpFile &cast, double time, double depth) {
    double v = 0.0;
    return cast.GetSvpValue(time, depth, v) == 0 ? v : -1.0;
}

template <class Format>
void sweepRead(const std::string &path) {
    {
        Format cast(widen(path).c_str());
        cast.SetSvpSection(0.0, L"", L"");
        for (int i = 0; i < 10; ++i) cast.AddSvpValue(0.0, 1.0 + i, 1480.0 + i);
        ASSERT_EQ(cast.UpdateDataFile(), 0);
    }
    std::unique_ptr<Format> cast;
    sweepFaults([] {},
                [&] {
                    cast.reset(new Format(widen(path).c_str()));
                    return cast->ReadInData();
                },
                [&](int code) {
                    if (code != 0) return;
                    for (int i = 0; i < 10; ++i) EXPECT_EQ(velocityAt(*cast, 0.0, 1.0 + i), 1480.0 + i) << i;
                });
}

TEST(SvpReadFaults, EachFormatFailsOrReadsTheWholeCast) {
    TempDir dir;
    sweepRead<VelmSvpFile>(dir.file("cast.svp"));
    sweepRead<CHSSvpFile>(dir.file("cast.chs"));
    sweepRead<RANSvpFile_Dat>(dir.file("cast.dat"));
    sweepRead<RANSvpFile_Edf>(dir.file("cast.edf"));
}

}  // namespace
