#include "metrics/log_mean.h"
#include "tessarium/metric_measures.h"

namespace qv7 {
namespace tessarium {

int edge_quality(double length, double h1, double h2, double& q)
{
    if (0.0 >= h1) return -2;
    if (0.0 >= h2) return -3;
    double m = log_mean(h1, h2);
    q = m > 0.0 ? length / m : 0.0;
    return 0;
}

}  // namespace tessarium
}  // namespace qv7
