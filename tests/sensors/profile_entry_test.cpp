// The operations the profile families share are made from lists; each must
// reach its own family's checks, which a null handle shows by the code block
// (Close and the bulk header reads name their family apart from its entry).
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
    unsigned u;
    double d;
    const struct {
        const char *family;
        int block;
        std::vector<int> codes;
    } cases[] = {
        {"ObservedDepths", 5000200,
         {VELMIO_SHARED_CALLS(ObservedDepths), ObservedDepthsReadProfiles(nullptr, 1, 0, &u, &u, &d, &d, &d, &u)}},
        {"SLRange", 5001900, {VELMIO_SHARED_CALLS(SLRange), SLRangeReadProfiles(nullptr, 1, 0, &u, &u, &d, &d, &d, &u)}},
        {"TPE", 5002700, {VELMIO_SHARED_CALLS(TPE)}},
        {"ProcessedDepths", 5000300, {VELMIO_SHARED_CALLS(ProcessedDepths)}},
        {"SideScan", 5000900, {VELMIO_SHARED_CALLS(SideScan)}},
    };
    for (const auto &c : cases)
        for (std::size_t i = 0; i < c.codes.size(); ++i) EXPECT_EQ(c.codes[i], c.block + 12) << c.family << " call " << i;
}

}  // namespace
