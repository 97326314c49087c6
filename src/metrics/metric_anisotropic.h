// TEMPORARY STUB, NOT TO COMMIT
#pragma once
#include "tessarium/fixed.h"
namespace qv7 {
constexpr double DBL_LIMIT = 1.7976931348623157e308;
constexpr double SIZE_TINY = 0x1p-511;
constexpr double SIZE_HUGE = 0x1p512;
template <unsigned D> struct metric_anisotropic : symmetric_fixed<double, D> {
  static bool minimum_metric(metric_anisotropic const&, metric_anisotropic const&, metric_anisotropic&);
  static bool maximum_metric(metric_anisotropic const&, metric_anisotropic const&, metric_anisotropic&);
  static bool interpolation(double, metric_anisotropic const&, metric_anisotropic const&, metric_anisotropic&);
};
}
