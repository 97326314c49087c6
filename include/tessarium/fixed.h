// Small fixed-size vectors and matrices: plain aggregates, copied by value.
#pragma once

#include "export.h"
#include <cstddef>

TESSARIUM_EXPORT_BEGIN
namespace qv7 {

template <class T, unsigned N>
struct vector_fixed {
    T v[N];
    T& operator[](std::size_t i) noexcept { return v[i]; }
    T const& operator[](std::size_t i) const noexcept { return v[i]; }
    static constexpr unsigned size() noexcept { return N; }
};

// Column-major: element (i, j) at position i + M * j.
template <class T, unsigned M, unsigned N>
struct matrix_fixed {
    T v[M * N];
    T& operator[](std::size_t k) noexcept { return v[k]; }
    T const& operator[](std::size_t k) const noexcept { return v[k]; }
    T& operator()(std::size_t i, std::size_t j) noexcept { return v[i + M * j]; }
    T const& operator()(std::size_t i, std::size_t j) const noexcept { return v[i + M * j]; }
    static constexpr unsigned rows() noexcept { return M; }
    static constexpr unsigned cols() noexcept { return N; }
};

// Packed upper triangle by columns: element (i, j), i <= j, at position j * (j + 1) / 2 + i.
template <class T, unsigned N>
struct symmetric_fixed {
    T v[N * (N + 1) / 2];
    T& operator[](std::size_t k) noexcept { return v[k]; }
    T const& operator[](std::size_t k) const noexcept { return v[k]; }
    T& operator()(std::size_t i, std::size_t j) noexcept { return v[__pos(i, j)]; }
    T const& operator()(std::size_t i, std::size_t j) const noexcept { return v[__pos(i, j)]; }
    static constexpr std::size_t __pos(std::size_t i, std::size_t j) noexcept
    {
        return i <= j ? j * (j + 1) / 2 + i : i * (i + 1) / 2 + j;
    }
    static constexpr unsigned dim() noexcept { return N; }
};

}  // namespace qv7
TESSARIUM_EXPORT_END
