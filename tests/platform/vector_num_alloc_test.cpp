// The library's own raw allocator (the test executable replaces it for the arrays): a move between
// blocks, small or mapped, copies exactly the bytes asked for, whatever the offset and length.
#define __vector_num_alloc __platform_alloc
#define __vector_num_free __platform_free
#define __vector_num_move __platform_move
#include "../../src/platform/vector_num_alloc.cpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

using namespace qv7::math1;

TEST(PlatformAllocator, MovesTheBytesOfSmallAndMappedBlocks)
{
    constexpr std::size_t MiB = std::size_t(1) << 20;
    struct sizes {
        std::size_t from, to, offset, bytes;
    } const cases[] = {{1000, 2000, 8, 992},
                       {40 * MiB, 80 * MiB, 0, 40 * MiB},
                       {40 * MiB, 80 * MiB, 15, 40 * MiB - 15},
                       {50 * MiB, 100 * MiB, 8, 3 * MiB + 5},
                       {1000, 40 * MiB, 0, 1000},
                       {40 * MiB, 100 * MiB, 0, 1 * MiB}};
    for (sizes const& c : cases) {
        char* from = static_cast<char*>(__platform_alloc(c.from));
        char* to = static_cast<char*>(__platform_alloc(c.to));
        ASSERT_TRUE(from && to);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(from) % 16, 0u);
        for (std::size_t k = 0; k < c.from; k += 4093) from[k] = char(k * 7 + 1);
        from[c.from - 1] = 'z';
        to[c.offset + c.bytes] = 'q';  // just behind: stays
        __platform_move(to, from, c.offset, c.bytes);
        for (std::size_t k = c.offset; k < c.offset + c.bytes; ++k) {
            if (k % 4093 == 0) {
                ASSERT_EQ(to[k], char(k * 7 + 1)) << k;
            }
        }
        if (c.offset + c.bytes == c.from) {
            EXPECT_EQ(to[c.from - 1], 'z');
        }
        EXPECT_EQ(to[c.offset + c.bytes], 'q');
        __platform_free(from);
        __platform_free(to);
    }
    __platform_free(nullptr);
}

}  // namespace
