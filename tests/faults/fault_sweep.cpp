#include "fault_sweep.h"

#include <velmio/messages.hpp>

#include "platform/fault_injection.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace velmio::test {

namespace {

using velmio::platform::FileOp;

const char *const kOpNames[] = {"open", "read", "write", "seek", "flush", "sync", "close", "rename"};
constexpr int kErrors[] = {ENOSPC, EIO, EACCES};

std::uint64_t g_total = 0;

// Documented: the message bundle has a sentence for it.
bool documented(int code) {
    MORVAUString sentence;
    return VELMIOUtils::findErrorMessage(code, sentence) == 0;
}

// The total is what shows that the sweeps did reach the operations.
class TotalReport : public ::testing::Environment {
public:
    void TearDown() override {
        std::printf("fault sweeps failed %llu file operations in all\n", static_cast<unsigned long long>(g_total));
    }
};
const auto *const g_report = ::testing::AddGlobalTestEnvironment(new TotalReport);

}  // namespace

std::uint64_t sweepFaults(const std::function<void()> &prepare, const std::function<int()> &run,
                          const std::function<void(int code)> &judge) {
    constexpr int kOps = static_cast<int>(FileOp::Count);
    std::uint64_t counts[kOps];
    prepare();
    velmio::platform::countFaultableOperations();
    const int clean = run();
    for (int op = 0; op < kOps; ++op) counts[op] = velmio::platform::faultableOperations(static_cast<FileOp>(op));
    velmio::platform::disarmFaults();
    EXPECT_EQ(clean, 0) << "the writer fails without a fault";
    judge(clean);

    std::uint64_t failed = 0;
    for (int op = 0; op < kOps; ++op)
        for (std::uint64_t nth = 1; nth <= counts[op]; ++nth)
            for (int error : kErrors) {
                SCOPED_TRACE(::testing::Message() << kOpNames[op] << " " << nth << " of " << counts[op] << " fails with "
                                                  << std::strerror(error));
                prepare();
                // The writers' complaints would drown the report.
                ::testing::internal::CaptureStdout();
                velmio::platform::armFault(static_cast<FileOp>(op), nth, error);
                const int code = run();
                velmio::platform::disarmFaults();
                ::testing::internal::GetCapturedStdout();
                if (code != 0) {
                    EXPECT_TRUE(documented(code)) << code << " has no sentence";
                }
                judge(code);
                ++failed;
                if (::testing::Test::HasFatalFailure()) return failed;
            }
    g_total += failed;
    std::printf("%llu file operations failed in turn\n", static_cast<unsigned long long>(failed));
    return failed;
}

}  // namespace velmio::test
