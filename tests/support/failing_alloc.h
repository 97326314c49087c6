// Test control of the array allocator: make allocations fail on demand.
#pragma once

#include <cstddef>

namespace test_alloc {

// The next `successes` allocations succeed, every later one fails, until reset().
void fail_after(std::size_t successes);
// Only allocation number `index` (0-based, counted from now) fails, until reset().
void fail_at(std::size_t index);
void reset();
// Allocations asked for since the last reset().
std::size_t requests();
// Blocks handed out and not yet freed.
long live_blocks();

// Scope in which allocations fail after `successes` more.
struct failing_scope {
    explicit failing_scope(std::size_t successes = 0) { fail_after(successes); }
    ~failing_scope() { reset(); }
};

}  // namespace test_alloc
