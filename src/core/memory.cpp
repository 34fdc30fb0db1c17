#include "core/memory.h"

#include <cstring>

namespace kel {

namespace {
constexpr std::size_t kUnbounded = static_cast<std::size_t>(-1);

// Per thread: reads on two threads each have their own budget, and a test
// that makes allocations fail reaches only its own thread's. One object, so
// that an allocation looks up the thread's storage once, not once a field.
struct Allocations {
    long failAt = 0;
    long count = 0;
    std::size_t budget = kUnbounded;
};
thread_local Allocations gThread;

// Whether this allocation of bytes must fail: it is the one a test asked to
// fail, or it does not fit the budget of the read in progress.
bool refuse(std::size_t bytes) noexcept {
    Allocations& t = gThread;
    // Every field read at once, so that the thread's storage is looked up
    // once whichever way this goes.
    long count = ++t.count;
    long failAt = t.failAt;
    std::size_t budget = t.budget;
    bool refused = (failAt > 0 && count == failAt) || (budget != kUnbounded && bytes > budget);
    if (!refused && budget != kUnbounded) t.budget = budget - bytes;
    return refused;
}
}  // namespace

// A bound inside another gets what is left of the outer one at the most,
// and what it spends is spent for the outer one too.
RecordBudget::RecordBudget(std::size_t bytes) noexcept
    : saved_(gThread.budget), limit_(gThread.budget < bytes ? gThread.budget : bytes) {
    gThread.budget = limit_;
}

RecordBudget::~RecordBudget() {
    std::size_t& budget = gThread.budget;
    if (saved_ == kUnbounded) {
        budget = kUnbounded;
    } else {
        budget = saved_ - (limit_ - budget);
    }
}

void RecordBudget::refund() noexcept {
    gThread.budget = limit_;
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
    gThread.failAt = n;
    gThread.count = 0;
}
long allocations() noexcept {
    return gThread.count;
}
}  // namespace fault

}  // namespace kel
