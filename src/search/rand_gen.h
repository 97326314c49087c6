// The library's one source of randomness: a 32-bit Mersenne twister, and the shuffle driven by it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace qv7 {

class rand_gen {
public:
    static constexpr unsigned n_words = 624;

    explicit rand_gen(unsigned seed = 1) noexcept;
    rand_gen(rand_gen const& other) noexcept;
    rand_gen& operator=(rand_gen const& other) noexcept;

    // One tempered 32-bit draw.
    std::uint32_t operator()() noexcept;
    // A draw reduced modulo n (n > 0).
    unsigned long operator()(unsigned long n) noexcept { return (*this)() % n; }

private:
    void __twist() noexcept;

    std::uint64_t state[n_words];  // 32-bit values
    std::uint64_t* next;
    std::uint32_t left;
};

// Draws once for every position but the last, also when the draw leaves the element in place,
// so that the permutation depends on the length alone.
template <class RandomIt>
void random_shuffle(RandomIt first, RandomIt last, rand_gen& gen)
{
    if (last - first < 2) return;
    unsigned long n = static_cast<unsigned long>(last - first);
    for (unsigned long i = 0; i + 1 < n; ++i) {
        unsigned long k = gen(n - i);
        using std::swap;
        swap(first[i], first[i + k]);
    }
}

}  // namespace qv7
