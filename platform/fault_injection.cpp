#include "platform/fault_injection.h"

#include <atomic>
#include <cerrno>

namespace velmio::platform {

namespace {
constexpr int kOps = static_cast<int>(FileOp::Count);
std::atomic<bool> g_active{false};
std::atomic<int> g_op{-1};  // the kind that fails; -1 counts only
std::atomic<std::uint64_t> g_nth{0};
std::atomic<int> g_error{0};
std::atomic<std::uint64_t> g_seen[kOps];

void reset() noexcept {
    for (auto &s : g_seen) s.store(0, std::memory_order_relaxed);
}
}  // namespace

bool injectFault(FileOp op) noexcept {
    if (!g_active.load(std::memory_order_relaxed)) return false;
    const int k = static_cast<int>(op);
    const std::uint64_t n = g_seen[k].fetch_add(1, std::memory_order_relaxed) + 1;
    if (g_op.load(std::memory_order_relaxed) != k || n != g_nth.load(std::memory_order_relaxed)) return false;
    errno = g_error.load(std::memory_order_relaxed);
    return true;
}

void armFault(FileOp op, std::uint64_t nth, int error) noexcept {
    reset();
    g_op.store(static_cast<int>(op), std::memory_order_relaxed);
    g_nth.store(nth, std::memory_order_relaxed);
    g_error.store(error, std::memory_order_relaxed);
    g_active.store(true, std::memory_order_release);
}

void countFaultableOperations() noexcept {
    reset();
    g_op.store(-1, std::memory_order_relaxed);
    g_active.store(true, std::memory_order_release);
}

void disarmFaults() noexcept { g_active.store(false, std::memory_order_release); }

std::uint64_t faultableOperations(FileOp op) noexcept {
    return g_seen[static_cast<int>(op)].load(std::memory_order_relaxed);
}

}  // namespace velmio::platform
