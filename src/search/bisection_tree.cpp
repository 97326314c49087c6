// The two trees that the library uses, compiled once here.
#include "search/bisection_tree.h"

namespace qv7 {

template class bisection_tree<dense2D<double>, 2>;
template class bisection_tree<dense2D<double>, 3>;

}  // namespace qv7
