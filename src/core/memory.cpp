#include "core/memory.h"

#include <cstring>

namespace kel {

namespace {
long gFailAt = 0;
long gCount = 0;
constexpr std::size_t kUnbounded = static_cast<std::size_t>(-1);
std::size_t gBudget = kUnbounded;

// Whether this allocation of bytes must fail: it is the one a test asked to
// fail, or it does not fit the budget of the read in progress.
bool refuse(std::size_t bytes) noexcept {
    ++gCount;
    if (gFailAt > 0 && gCount == gFailAt) return true;
    if (gBudget == kUnbounded) return false;
    if (bytes > gBudget) return true;
    gBudget -= bytes;
    return false;
}
}  // namespace

// A read inside another read gets what is left of the outer budget at the
// most, and what it spends is spent for the outer read too.
RecordBudget::RecordBudget() noexcept : saved_(gBudget) {
    if (gBudget > kBytes) gBudget = kBytes;
}

RecordBudget::~RecordBudget() {
    if (saved_ == kUnbounded) {
        gBudget = kUnbounded;
    } else {
        std::size_t limit = saved_ < kBytes ? saved_ : kBytes;
        std::size_t spent = limit - gBudget;
        gBudget = saved_ - spent;
    }
}

void* allocZeroed(std::size_t count, std::size_t size) noexcept {
    if (count == 0) count = 1;
    if (size == 0) size = 1;
    if (count > kUnbounded / size || refuse(count * size)) return nullptr;
    return std::calloc(count, size);
}

char* dupBytes(const char* s, std::size_t n) noexcept {
    if (refuse(n + 1)) return nullptr;
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
