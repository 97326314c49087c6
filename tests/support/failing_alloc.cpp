// Replaces the library's raw allocator in the test executable.
#include "support/failing_alloc.h"

#include "tessarium/ref_counted.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {
std::atomic<std::size_t> budget{std::numeric_limits<std::size_t>::max()};
std::atomic<std::size_t> asked{0};
std::atomic<long> live{0};
constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> single_failure{none};
}  // namespace

namespace test_alloc {
void fail_after(std::size_t successes)
{
    budget = successes;
    asked = 0;
}
void fail_at(std::size_t index)
{
    reset();
    single_failure = index;
}
void reset()
{
    budget = none;
    single_failure = none;
    asked = 0;
}
std::size_t requests()
{
    return asked;
}
long live_blocks()
{
    return live;
}
}  // namespace test_alloc

namespace qv7 {
namespace math1 {

void* __vector_num_alloc(std::size_t bytes) noexcept
{
    if (asked++ == single_failure) return nullptr;
    std::size_t left = budget.load();
    while (left != std::numeric_limits<std::size_t>::max()) {
        if (left == 0) return nullptr;
        if (budget.compare_exchange_weak(left, left - 1)) break;
    }
    void* p = std::malloc(bytes);
    if (p) ++live;
    return p;
}

void __vector_num_free(void* raw) noexcept
{
    if (raw) --live;
    std::free(raw);
}

void __vector_num_move(void* to_raw, void* from_raw, std::size_t offset, std::size_t bytes) noexcept
{
    std::memcpy(static_cast<char*>(to_raw) + offset, static_cast<char*>(from_raw) + offset, bytes);
}

}  // namespace math1
}  // namespace qv7
