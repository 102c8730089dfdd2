#include "platform/large_buffer.h"

#include <cstdlib>

#include <sys/mman.h>

namespace velmio::platform {

namespace {
constexpr std::size_t kHugePage = std::size_t{2} << 20;
}

unsigned char *allocLargeBuffer(std::size_t n) noexcept {
    if (n < kHugePage) return static_cast<unsigned char *>(std::malloc(n ? n : 1));
    if (n > static_cast<std::size_t>(-1) - kHugePage) return nullptr;
    const std::size_t rounded = (n + kHugePage - 1) / kHugePage * kHugePage;
    void *p = std::aligned_alloc(kHugePage, rounded);
#ifdef MADV_HUGEPAGE
    // Only advice: without huge pages the buffer works the same, slower to fill.
    if (p) ::madvise(p, rounded, MADV_HUGEPAGE);
#endif
    return static_cast<unsigned char *>(p);
}

void freeLargeBuffer(unsigned char *p) noexcept { std::free(p); }

}  // namespace velmio::platform
