#include "metrics/metric_columns.h"

namespace qv7 {
namespace tessarium {
namespace {

template <unsigned D>
int iso_to_aniso_columns(dense1D<double, 8> const& sizes, dense2D<double>& tensors)
{
    if (sizes.empty() && tensors.empty()) return 0;
    if (tensors.rows() != D * (D + 1) / 2 || tensors.cols() < sizes.size()) return -2;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        double h = sizes[i];
        if (!(h > 0.0)) continue;  // left as it was, unlike metric_iso_to_aniso
        symmetric_fixed<double, D> M;
        metric_iso_to_aniso(h, M);
        __store_metric<D>(M, tensors, i);
    }
    return 0;
}

matrix_fixed<double, 3, 2> load_basis(dense2D<double> const& bases, std::size_t j)
{
    matrix_fixed<double, 3, 2> B;
    std::copy(bases.col(j), bases.col(j) + 6, B.v);
    return B;
}

}  // namespace

int metrics_iso_to_aniso2d(dense1D<double, 8> const& sizes, dense2D<double>& tensors)
{
    return iso_to_aniso_columns<2>(sizes, tensors);
}

int metrics_iso_to_aniso3d(dense1D<double, 8> const& sizes, dense2D<double>& tensors)
{
    return iso_to_aniso_columns<3>(sizes, tensors);
}

int metrics_iso_to_aniso2d(dense1D<double, 8> const& sizes, dense2D<double> const& bases, dense2D<double>& tensors)
{
    if (sizes.empty() && bases.empty() && tensors.empty()) return 0;
    if (bases.rows() != 6 || bases.cols() != sizes.size()) return -2;
    if (tensors.rows() != 3 || tensors.cols() < sizes.size()) return -3;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        symmetric_fixed<double, 2> M;
        metric_iso_to_aniso2d(sizes[i], load_basis(bases, i), M);
        __store_metric<2>(M, tensors, i);
    }
    return 0;
}

int metrics_aniso3d_to_aniso2d(dense2D<double> const& tensors3d, dense2D<double> const& bases, dense2D<double>& tensors)
{
    if (tensors3d.empty() && bases.empty() && tensors.empty()) return 0;
    if (tensors3d.rows() != 6) return -1;
    if (bases.rows() != 6 || bases.cols() != tensors3d.cols()) return -2;
    if (tensors.rows() != 3 || tensors.cols() < tensors3d.cols()) return -3;
    for (std::size_t j = 0; j < tensors3d.cols(); ++j) {
        symmetric_fixed<double, 2> M;
        metric_aniso3d_to_aniso2d(__load_metric<3>(tensors3d, j), load_basis(bases, j), M);
        __store_metric<2>(M, tensors, j);
    }
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
