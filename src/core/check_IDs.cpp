#include "tessarium/element_type.h"

namespace qv7 {
namespace tessarium {
namespace {

// True when no p[i] + offset reaches bound (unsigned wrap-around). Scans in blocks without
// branches so that long runs vectorise, and stops at the first block that fails.
bool all_shifted_below(unsigned const* p, std::size_t count, unsigned offset, unsigned bound) noexcept
{
    constexpr std::size_t block = 256;
    std::size_t i = 0;
    for (; i + block <= count; i += block) {
        unsigned bad = 0;
        for (std::size_t k = 0; k < block; ++k) bad |= unsigned(p[i + k] + offset >= bound);
        if (bad) return false;
    }
    for (; i < count; ++i)
        if (p[i] + offset >= bound) return false;
    return true;
}

bool all_below(unsigned const* p, std::size_t count, unsigned n) noexcept
{
    return all_shifted_below(p, count, 0, n);
}

// v < n or v == NONE_ID is v + 1 <= n in wrapped arithmetic, for any n below NONE_ID.
bool valid_or_none(unsigned const* p, std::size_t count, unsigned n) noexcept
{
    return all_shifted_below(p, count, 1, n + 1);
}

// Triangles end at a NONE_ID in row 3.
bool face_mix_column_valid(unsigned const* c, unsigned n) noexcept
{
    return all_below(c, 3, n) && (c[3] < n || c[3] == NONE_ID);
}

// The first NONE_ID, in row 4, 5 or 6, ends the solid; every later row must hold NONE_ID.
bool solid_mix_column_valid(unsigned const* c, unsigned n) noexcept
{
    for (unsigned i = 0; i < 8; ++i) {
        if (c[i] < n) continue;
        if (c[i] != NONE_ID || i < 4 || i > 6) return false;
        for (unsigned k = i + 1; k < 8; ++k)
            if (c[k] != NONE_ID) return false;
        return true;
    }
    return true;
}

template <class ColumnTest>
bool all_columns(dense2D<unsigned> const& connect, ColumnTest test) noexcept
{
    for (std::size_t j = 0; j < connect.cols(); ++j)
        if (!test(connect.col(j))) return false;
    return true;
}

}  // namespace

bool check_IDs(dense1D<unsigned, 8> const& IDs, unsigned n) noexcept
{
    if (IDs.empty() || n == NONE_ID) return true;
    return valid_or_none(IDs.data(), IDs.size(), n);
}

bool check_IDs(dense2D<unsigned> const& connect, unsigned n) noexcept
{
    if (connect.empty() || n == NONE_ID) return true;
    if (connect.ld() == connect.rows()) return valid_or_none(connect.col(0), connect.rows() * connect.cols(), n);
    return all_columns(connect, [&](unsigned const* c) { return valid_or_none(c, connect.rows(), n); });
}

bool check_IDs(dense2D<unsigned> const& connect, element_type type, unsigned n) noexcept
{
    if (connect.empty()) return true;
    std::size_t rows = connect.rows();
    type = __narrow(type, rows);
    bool shape_ok = type == ET_SOLID_MIX ? rows == 8 : type == ET_FACE_MIX ? rows == 4 : rows == nbr_nodes(type);
    if (!shape_ok || n == NONE_ID) return shape_ok;
    switch (type) {
    case ET_FACE_MIX:
        return all_columns(connect, [n](unsigned const* c) { return face_mix_column_valid(c, n); });
    case ET_SOLID_MIX:
        return all_columns(connect, [n](unsigned const* c) { return solid_mix_column_valid(c, n); });
    default:
        if (connect.ld() == rows) return all_below(connect.col(0), rows * connect.cols(), n);
        return all_columns(connect, [&](unsigned const* c) { return all_below(c, rows, n); });
    }
}

}  // namespace tessarium
}  // namespace qv7
