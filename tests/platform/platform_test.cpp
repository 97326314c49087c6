#include "tessarium/histogram.h"
#include "tessarium/lapack.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace qv7;

TEST(Histogram, CountsBinsAndOutliers)
{
    misc::histogram plain;
    plain.process(2.0);
    plain.process(-1.0);
    EXPECT_EQ(plain.count(), 2u);
    EXPECT_EQ(plain.min(), -1.0);
    EXPECT_EQ(plain.max(), 2.0);
    EXPECT_EQ(plain.sum(), 1.0);
    EXPECT_EQ(plain.bin_count(), 0u);

    misc::histogram h({0.0, 0.5, 1.0});
    for (double v : {-0.1, 0.0, 0.49, 0.5, 0.99, 1.0, 3.0}) h.process(v);
    h.process(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(h.count(), 8u);
    EXPECT_EQ(h.nan_count(), 1u);
    EXPECT_EQ(h.underflow(), 1u);
    EXPECT_EQ(h.bin(0), 2u);
    EXPECT_EQ(h.bin(1), 2u);
    EXPECT_EQ(h.overflow(), 2u);
    EXPECT_FALSE(std::isnan(h.sum()));
}

TEST(Dspev, EigenPairsOfPackedSymmetricMatrix)
{
    // [2 1 0; 1 2 0; 0 0 5] in packed upper storage: eigenvalues 1, 3, 5.
    double ap[6] = {2, 1, 2, 0, 0, 5};
    double w[3], z[9], work[9];
    long info = -1;
    lapack::dspev('V', 'U', 3, ap, w, z, 3, work, info);
    ASSERT_EQ(info, 0);
    EXPECT_NEAR(w[0], 1.0, 1e-14);
    EXPECT_NEAR(w[1], 3.0, 1e-14);
    EXPECT_NEAR(w[2], 5.0, 1e-14);
    // The eigenvector of 5 is the third axis, up to sign.
    EXPECT_NEAR(std::fabs(z[8]), 1.0, 1e-14);
    EXPECT_NEAR(std::fabs(z[0]), std::sqrt(0.5), 1e-14);
}
