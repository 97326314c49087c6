// The array instantiations that the library needs, compiled once here.
#include "tessarium/array_ops.h"
#include "tessarium/dynamic_array.h"

#include <utility>

namespace qv7 {

template class vector_num<unsigned, 8>;
template class vector_num<int, 8>;
template class vector_num<double, 8>;
template class vector_num<short, 8>;
template class vector_num<signed char, 8>;
template class vector_num<unsigned long, 8>;
template class vector_num<std::pair<unsigned, unsigned>, 8>;
template class vector_num<std::pair<unsigned long, unsigned long>, 8>;
template class vector_num<dense2D<unsigned>, 8>;

template class dense1D<unsigned, 8>;
template class dense1D<int, 8>;
template class dense1D<double, 8>;
template class dense1D<short, 8>;
template class dense1D<signed char, 8>;
template class dense1D<unsigned long, 8>;
template class dense1D<std::pair<unsigned, unsigned>, 8>;
template class dense1D<std::pair<unsigned long, unsigned long>, 8>;
template class dense1D<dense2D<unsigned>, 8>;

template class dense2D<double>;
template class dense2D<unsigned>;

template class dynamic_array<unsigned, 3>;

}  // namespace qv7
