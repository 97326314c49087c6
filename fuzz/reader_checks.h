// What every reader of grouped meshes must leave behind, whatever its input; a breach aborts.
#pragma once

#include "tessarium/dense1D.h"
#include "tessarium/dense2D.h"

#include <cstdint>
#include <cstdlib>
#include <istream>
#include <sstream>
#include <string>

// Node IDs up to 2^20: a fuzzed ID may then ask for at most 24 MB of coordinates.
constexpr std::size_t fuzz_max_ID = std::size_t(1) << 20;

inline void require(bool condition)
{
    if (!condition) std::abort();
}

// Runs read(stream, pos, connectM, indices, FEs, per_element, max_ID) on the input and checks
// the results; returns the reader's result.
template <class Reader>
int read_and_check(std::uint8_t const* data, std::size_t size, Reader read)
{
    std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
    qv7::dense2D<double> pos;
    qv7::dense2D<unsigned> connectM;
    qv7::dense1D<unsigned, 8> indices, per_element;
    qv7::dense1D<int, 8> FEs;
    int result = read(in, pos, connectM, indices, FEs, per_element, fuzz_max_ID);
    require(indices.size() >= 2 && indices[indices.size() - 1] == connectM.cols());
    require(per_element.size() == connectM.cols() && connectM.rows() <= 20);
    require(pos.empty() || (pos.rows() == 3 && pos.cols() <= fuzz_max_ID));
    for (std::size_t g = 0; g + 1 < indices.size(); ++g) require(indices[g] <= indices[g + 1]);
    return result;
}
