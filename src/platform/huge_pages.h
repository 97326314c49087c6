// Asks the system to back a range of memory with large pages, where it can: a hint only.
#pragma once

#include <cstddef>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace qv7 {

// Bytes in a large page, and the alignment a range needs to be covered by them.
constexpr std::size_t huge_page_bytes = std::size_t(1) << 21;

inline void __advise_huge_pages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t bytes) noexcept
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    madvise(start, bytes, MADV_HUGEPAGE);  // refused advice changes nothing
#endif
}

}  // namespace qv7
