// Raw storage of the array blocks. Small blocks come from malloc; large ones are mappings of their
// own, aligned to 2 MiB and open to huge pages, so that the kernel fills them with far fewer faults,
// and so that growing one into another can move its pages instead of copying them.
#include "tessarium/ref_counted.h"

#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace qv7 {
namespace math1 {
namespace {

constexpr std::size_t huge_page = std::size_t(2) << 20;
constexpr std::size_t large = std::size_t(32) << 20;
// In front of every block: the length of its mapping, 0 for a malloc block. The block starts this
// far into its mapping, so two large blocks lie alike within their huge pages.
constexpr std::size_t header = 64;

std::size_t& mapping_length(void* raw) noexcept
{
    return *reinterpret_cast<std::size_t*>(static_cast<char*>(raw) - 16);
}

char* round_up(char* p, std::size_t to) noexcept
{
    return reinterpret_cast<char*>((reinterpret_cast<std::uintptr_t>(p) + to - 1) & ~std::uintptr_t(to - 1));
}

void* map_large(std::size_t bytes) noexcept
{
    if (bytes > ~std::size_t(0) / 2) return nullptr;
    std::size_t length = (bytes + header + huge_page - 1) & ~(huge_page - 1);
    void* got = mmap(nullptr, length + huge_page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (got == MAP_FAILED) return nullptr;
    char* start = static_cast<char*>(got);
    char* map = round_up(start, huge_page);
    if (map != start) munmap(start, static_cast<std::size_t>(map - start));
    if (map + length != start + length + huge_page)
        munmap(map + length, static_cast<std::size_t>(start + length + huge_page - (map + length)));
    madvise(map, length, MADV_HUGEPAGE);
    void* raw = map + header;
    mapping_length(raw) = length;
    return raw;
}

}  // namespace

void* __vector_num_alloc(std::size_t bytes) noexcept
{
    if (bytes >= large) return map_large(bytes);
    if (bytes > ~std::size_t(0) - 16) return nullptr;
    void* p = std::malloc(bytes + 16);
    if (!p) return nullptr;
    void* raw = static_cast<char*>(p) + 16;
    mapping_length(raw) = 0;
    return raw;
}

void __vector_num_free(void* raw) noexcept
{
    if (!raw) return;
    std::size_t length = mapping_length(raw);
    if (length)
        munmap(static_cast<char*>(raw) - header, length);
    else
        std::free(static_cast<char*>(raw) - 16);
}

// Whole huge pages of two large blocks are moved by the kernel, the rest is copied.
void __vector_num_move(void* to_raw, void* from_raw, std::size_t offset, std::size_t bytes) noexcept
{
    char* to = static_cast<char*>(to_raw) + offset;
    char* from = static_cast<char*>(from_raw) + offset;
    char* first = round_up(from, huge_page);
    char* last = reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(from + bytes) & ~(huge_page - 1));
    if (!mapping_length(to_raw) || !mapping_length(from_raw) || last <= first) {
        std::memcpy(to, from, bytes);
        return;
    }
    std::size_t before = static_cast<std::size_t>(first - from), middle = static_cast<std::size_t>(last - first);
    std::memcpy(to, from, before);
    if (mremap(first, middle, middle, MREMAP_MAYMOVE | MREMAP_FIXED, to + before) == MAP_FAILED)
        std::memcpy(to + before, first, middle);
    std::memcpy(to + before + middle, last, bytes - before - middle);
}

}  // namespace math1
}  // namespace qv7
