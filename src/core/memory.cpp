#include "core/memory.h"

#include <cstring>

namespace kel {

namespace {
long gFailAt = 0;
long gCount = 0;

// Whether this allocation is the one a test asked to fail.
bool injectFailure() noexcept {
    ++gCount;
    return gFailAt > 0 && gCount == gFailAt;
}
}  // namespace

void* allocZeroed(std::size_t count, std::size_t size) noexcept {
    if (injectFailure()) return nullptr;
    return std::calloc(count == 0 ? 1 : count, size == 0 ? 1 : size);
}

char* dupBytes(const char* s, std::size_t n) noexcept {
    if (injectFailure()) return nullptr;
    auto* copy = static_cast<char*>(std::malloc(n + 1));
    if (!copy) return nullptr;
    std::memcpy(copy, s, n);
    copy[n] = 0;
    return copy;
}

namespace fault {
void failAllocation(long n) noexcept {
    gFailAt = n;
    gCount = 0;
}
long allocations() noexcept {
    return gCount;
}
}  // namespace fault

}  // namespace kel
