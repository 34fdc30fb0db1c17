// Every block the library allocates comes from here: one entry point for
// the C allocator, so that a test build can make its n-th allocation fail
// and prove that every reader cleans up after a failure.
//
// Library code allocates with the C allocator only, so nothing here throws
// and no exception can reach the C interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace kel {

// calloc of count blocks of size bytes. A count of 0 gives a block of one
// byte, with room for no record but not null (the "block of size 0" that
// readers hand out). Null when the allocation fails or is refused.
void* allocZeroed(std::size_t count, std::size_t size) noexcept;
// A terminated heap copy of the first n bytes of s.
char* dupBytes(const char* s, std::size_t n) noexcept;

// A zero-filled block of n records of T (a 0-byte block for n == 0).
template <class T>
T* allocRecords(std::size_t n) noexcept {
    return static_cast<T*>(allocZeroed(n, sizeof(T)));
}

// A loop bound taken from a record, kept inside its array: a count below 0
// counts as 0, one above the array's capacity as the capacity, and a
// missing array as empty. The host may leave any count in a record.
inline int countWithin(int32_t count, int capacity = INT32_MAX) noexcept {
    return count < 0 ? 0 : count > capacity ? capacity : count;
}
template <class T>
int countWithin(const T* array, int32_t count, int capacity = INT32_MAX) noexcept {
    return array ? countWithin(count, capacity) : 0;
}

struct FreeDeleter {
    void operator()(void* p) const noexcept { std::free(p); }
};
// A block from the C allocator, released with free.
template <class T>
using HeapPtr = std::unique_ptr<T, FreeDeleter>;

// A bound on what the records of one read may allocate, in force on the
// reading thread while an instance lives: an allocation past it fails, and
// the reader takes its allocation-failure path (1 and a cleared record). It
// keeps a small hostile file from making a reader claim gigabytes of zeroed
// records. Bounds nest: a read inside a folder load gets what is left of
// the load's bound at the most, and what it keeps is spent for the load too.
class RecordBudget {
public:
    static constexpr std::size_t kBytes = std::size_t{32} << 20;       // one read
    static constexpr std::size_t kFolderBytes = std::size_t{1} << 30;  // one folder load
    explicit RecordBudget(std::size_t bytes = kBytes) noexcept;
    ~RecordBudget();
    RecordBudget(const RecordBudget&) = delete;
    RecordBudget& operator=(const RecordBudget&) = delete;
    // Gives back all that was spent under this bound, once what it paid for
    // has been released (a failed read), so an enclosing bound is not
    // charged for it.
    void refund() noexcept;

private:
    std::size_t saved_;  // the enclosing bound's remainder when this one began
    std::size_t limit_;  // this bound's own remainder when it began
};

// Fault injection for tests: after failAllocation(n), the n-th allocation
// from now on fails (n <= 0: none does). allocations() counts the
// allocations made since the last failAllocation call. Both count the
// calling thread's allocations only.
namespace fault {
void failAllocation(long n) noexcept;
long allocations() noexcept;
}  // namespace fault

}  // namespace kel
