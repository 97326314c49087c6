// The shared, reference-counted storage block behind dense1D and dense2D.
#pragma once

#include "export.h"
#include "ref_counted.h"

#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

// Default-constructs every object of [begin, end). On an exception from a constructor,
// destroys what was built and returns false.
template <class T>
bool __vec_construction(T* begin, T* end) noexcept
{
    T* p = begin;
    try {
        for (; p != end; ++p) ::new (static_cast<void*>(p)) T();
    } catch (...) {
        while (p != begin) (--p)->~T();
        return false;
    }
    return true;
}

template <class T, unsigned Align = 8>
class vector_num : public math1::ref_counted {
public:
    // Alignment of the first element: the smallest multiple of sizeof(T) not below Align.
    static constexpr std::size_t alignment = ((Align + sizeof(T) - 1) / sizeof(T)) * sizeof(T);
    static constexpr std::uint16_t not_owned = 65535;
    // Elements that are handles need construction and release; all others are moved as words.
    static constexpr bool plain = std::is_trivially_copyable<T>::value;

    vector_num() = default;
    ~vector_num() override
    {
        if constexpr (!plain) {
            if (data) __destroy_elements(data, capacity);
        }
        if (data && shift != not_owned) math1::__vector_num_free(reinterpret_cast<char*>(data) - shift);
        data = nullptr;
        capacity = 0;
        shift = 0;
    }

    // Replaces the storage by one of at least max(capacity * factor, 2, new_min) elements,
    // keeping the first `keep` elements of the block. False, with nothing changed, on failure.
    bool __grow(unsigned long new_min, unsigned long keep, unsigned long factor) noexcept
    {
        constexpr unsigned long max64 = std::numeric_limits<unsigned long>::max();
        if (factor != 0 && capacity > max64 / factor) return false;
        unsigned long wanted = capacity * factor;
        if (wanted < 2) wanted = 2;
        if (wanted < new_min) wanted = new_min;
        if (sizeof(T) > 1 && wanted > max64 / sizeof(T)) return false;
        std::size_t bytes = wanted * sizeof(T);
        if (bytes > max64 - (alignment - 1)) return false;
        bytes += alignment - 1;

        char* raw = static_cast<char*>(math1::__vector_num_alloc(bytes));
        if (!raw) return false;
        std::uintptr_t aligned =
            (reinterpret_cast<std::uintptr_t>(raw) + alignment - 1) & ~static_cast<std::uintptr_t>(alignment - 1);
        std::uint16_t new_shift = static_cast<std::uint16_t>((aligned - reinterpret_cast<std::uintptr_t>(raw)) & 0xFF);
        T* new_data = reinterpret_cast<T*>(raw + new_shift);
        std::uint64_t new_capacity = (bytes - new_shift) / sizeof(T);

        if (keep > capacity) keep = capacity;
        if (keep > new_capacity) keep = new_capacity;
        if constexpr (plain) {
            if (data && keep && shift != not_owned && shift == new_shift)
                math1::__vector_num_move(raw, reinterpret_cast<char*>(data) - shift, shift, keep * sizeof(T));
            else if (data && keep)
                std::memcpy(static_cast<void*>(new_data), data, keep * sizeof(T));
        } else {
            for (std::uint64_t i = 0; i < keep; ++i) ::new (static_cast<void*>(new_data + i)) T(data[i]);
            if (!__vec_construction(new_data + keep, new_data + new_capacity)) {
                __destroy_elements(new_data, keep);
                math1::__vector_num_free(raw);
                return false;
            }
            if (data) __destroy_elements(data, capacity);
        }
        if (data && shift != not_owned) math1::__vector_num_free(reinterpret_cast<char*>(data) - shift);
        data = new_data;
        shift = new_shift;
        capacity = new_capacity;
        return true;
    }

    T* data = nullptr;
    std::uint64_t capacity = 0;
    std::uint16_t shift = 0;

private:
    static void __destroy_elements(T* p, std::uint64_t n) noexcept
    {
        for (std::uint64_t i = 0; i < n; ++i) p[i].~T();
    }
};

}  // namespace qv7
TESSARIUM_EXPORT_END
