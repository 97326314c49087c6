#include "exchange/node_columns.h"

namespace qv7 {
namespace tessarium {

std::size_t __power_of_two_ceil(std::size_t n) noexcept
{
    std::size_t p = 1;
    if (n == 0) return 0;
    while (p < n) p <<= 1;
    return p;
}

bool __reach_node_column(dense2D<double>& pos, std::size_t ID, std::size_t max_ID)
{
    if (ID == 0 || ID > max_ID) return false;
    std::size_t c = ID - 1;
    if (c < pos.cols()) return true;
    if (c >= pos.capacity() / 3) __reserve_columns(pos, 3, __power_of_two_ceil(c));
    return pos.resize(3, ID, 0.0);
}

}  // namespace tessarium
}  // namespace qv7
