#include "core/memory.h"

#include <cstring>

namespace kel {

namespace {
// Per thread: reads on two threads each have their own budget, and a test
// that makes allocations fail reaches only its own thread's.
thread_local long gFailAt = 0;
thread_local long gCount = 0;
constexpr std::size_t kUnbounded = static_cast<std::size_t>(-1);
thread_local std::size_t gBudget = kUnbounded;

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

// A bound inside another gets what is left of the outer one at the most,
// and what it spends is spent for the outer one too.
RecordBudget::RecordBudget(std::size_t bytes) noexcept
    : saved_(gBudget), limit_(gBudget < bytes ? gBudget : bytes) {
    gBudget = limit_;
}

RecordBudget::~RecordBudget() {
    if (saved_ == kUnbounded) {
        gBudget = kUnbounded;
    } else {
        gBudget = saved_ - (limit_ - gBudget);
    }
}

void RecordBudget::refund() noexcept {
    gBudget = limit_;
}

void* allocZeroed(std::size_t count, std::size_t size) noexcept {
    if (size != 0 && count > kUnbounded / size) return nullptr;
    // A block of no bytes is one byte, with room for no record: still a
    // pointer that is not taken for a failed allocation.
    std::size_t bytes = count * size;
    if (bytes == 0) bytes = 1;
    if (refuse(bytes)) return nullptr;
    return std::calloc(bytes, 1);
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
