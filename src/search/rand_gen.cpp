#include "search/rand_gen.h"

namespace qv7 {

namespace {
constexpr unsigned shift_words = 397;
constexpr std::uint64_t twist_constant = 0x9908B0DFu;
constexpr std::uint64_t upper_bit = 0x80000000u;
constexpr std::uint64_t lower_bits = 0x7FFFFFFFu;
constexpr std::uint64_t word_mask = 0xFFFFFFFFu;
}  // namespace

rand_gen::rand_gen(unsigned seed) noexcept
{
    state[0] = seed;
    for (unsigned i = 1; i < n_words; ++i)
        state[i] = (1812433253u * (state[i - 1] ^ (state[i - 1] >> 30)) + i) & word_mask;
    __twist();
}

rand_gen::rand_gen(rand_gen const& other) noexcept
{
    *this = other;
}

rand_gen& rand_gen::operator=(rand_gen const& other) noexcept
{
    if (this == &other) return *this;
    for (unsigned i = 0; i < n_words; ++i) state[i] = other.state[i];
    next = state + (other.next - other.state);
    left = other.left;
    return *this;
}

// Regenerates the whole block in place, in index order, and restarts the draws at word 0.
void rand_gen::__twist() noexcept
{
    for (unsigned i = 0; i < n_words; ++i) {
        std::uint64_t y = (state[i] & upper_bit) | (state[(i + 1) % n_words] & lower_bits);
        state[i] = state[(i + shift_words) % n_words] ^ (y >> 1) ^ ((y & 1) ? twist_constant : 0);
    }
    next = state;
    left = n_words;
}

std::uint32_t rand_gen::operator()() noexcept
{
    if (left == 0) __twist();
    --left;
    std::uint64_t y = *next++;
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680u;
    y ^= (y << 15) & 0xEFC60000u;
    y ^= y >> 18;
    return static_cast<std::uint32_t>(y & word_mask);
}

}  // namespace qv7
