// The operations the profile families share are made from lists; each must
// reach its own family's checks, which a null handle shows by the code block.
#include <velmio/observed_depths.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

#define VELMIO_SHARED_CALLS(P)                                                                                     \
    P##BgnSeqWriteLineSegment(nullptr, L"a"), P##EndSeqWriteProfile(nullptr), P##EndSeqWriteLineSegment(nullptr, 0), \
        P##EndSeqWriteSummary(nullptr, 0), P##SetSummaryStatus(nullptr, 0), P##SetLineSegmentStatus(nullptr, 1, 0),  \
        P##Close(nullptr)

TEST(ProfileEntry, SharedOperationsAnswerANullHandleWithTheirFamilysCode) {
    const unsigned n = 0;
    unsigned u;
    double d;
    wchar_t *name;
    const struct {
        const char *family;
        int block;
        std::vector<int> codes;
    } cases[] = {
        {"ObservedDepths", 5000200,
         {VELMIO_SHARED_CALLS(ObservedDepths), ObservedDepthsBgnSeqWriteSummary(nullptr),
          ObservedDepthsSetToolType(nullptr, 1), ObservedDepthsSummary(nullptr, &u, &u, &u, &u, &d, &d, &d, &d, &u),
          ObservedDepthsLineSegment(nullptr, 1, &name, &u, &u, &d, &d, &d, &d, &u),
          ObservedDepthsReadProfiles(nullptr, 1, n, &u, &u, &d, &d, &d, &u)}},
        {"SLRange", 5001900,
         {VELMIO_SHARED_CALLS(SLRange), SLRangeBgnSeqWriteSummary(nullptr, 1), SLRangeSetToolType(nullptr, 1),
          SLRangeSummary(nullptr, &u, &u, &u, &u, &d, &d, &u), SLRangeLineSegment(nullptr, 1, &name, &u, &u, &d, &d, &u),
          SLRangeReadProfiles(nullptr, 1, n, &u, &u, &d, &d, &d, &u)}},
        {"TPE", 5002700,
         {VELMIO_SHARED_CALLS(TPE), TPEBgnSeqWriteSummary(nullptr),
          TPELineSegment(nullptr, 1, &name, &u, &u, &d, &d, &u)}},
        {"ProcessedDepths", 5000300,
         {VELMIO_SHARED_CALLS(ProcessedDepths), ProcessedDepthsBgnSeqWriteSummary(nullptr, 1),
          ProcessedDepthsSetToolType(nullptr, 1),
          ProcessedDepthsSummary(nullptr, &u, &u, &u, &u, &d, &d, &d, &d, &u),
          ProcessedDepthsLineSegment(nullptr, 1, &name, &u, &u, &d, &d, &d, &d, &u)}},
        {"SideScan", 5000900,
         {VELMIO_SHARED_CALLS(SideScan), SideScanBgnSeqWriteSummary(nullptr, 1),
          SideScanLineSegment(nullptr, 1, &name, &u, &u, &d, &d, &u)}},
    };
    for (const auto &c : cases)
        for (std::size_t i = 0; i < c.codes.size(); ++i) EXPECT_EQ(c.codes[i], c.block + 12) << c.family << " call " << i;
}

}  // namespace
