#include "nodes/node_moves.h"
#include "tessarium/transforms.h"

namespace qv7 {
namespace tessarium {
namespace {

template <unsigned D>
double dot(double const* a, vector_fixed<double, D> const& P, vector_fixed<double, D> const& N)
{
    double s = 0.0;
    for (unsigned k = 0; k < D; ++k) s += (a[k] - P[k]) * N[k];
    return s;
}

template <unsigned D>
int __copy_sym_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, D> const& P,
                    vector_fixed<double, D> const& N, dense2D<unsigned> const& connect)
{
    if (pos.empty()) return 0;
    double q = dot(N.v, vector_fixed<double, D>{}, N);
    if (q == 0.0) return -4;
    std::size_t first_copy = pos.cols();
    if (int status = copy_mesh(pos, connectM, connect); status < 0) return status;
    if (!__grow_rows<D>(pos)) return -199;
    double scale = -2.0 / q;
    for (std::size_t j = first_copy; j < pos.cols(); ++j) {
        double* p = pos.col(j);
        double t = dot(p, P, N) * scale;
        for (unsigned k = 0; k < D; ++k) p[k] += t * N[k];
    }
    return 0;
}

}  // namespace

int copy_sym_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, 2> const& P,
                  vector_fixed<double, 2> const& N, dense2D<unsigned> const& connect)
{
    return __copy_sym_mesh(pos, connectM, P, N, connect);
}

int copy_sym_mesh(dense2D<double>& pos, dense2D<unsigned>& connectM, vector_fixed<double, 3> const& P,
                  vector_fixed<double, 3> const& N, dense2D<unsigned> const& connect)
{
    return __copy_sym_mesh(pos, connectM, P, N, connect);
}

}  // namespace tessarium
}  // namespace qv7
