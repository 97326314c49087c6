#include "quality/quality_elements.h"
#include "quality/pyramid5_quality.h"
#include "tessarium/quality.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

using namespace qv7;
using quality_elements::element;

namespace {

double quality(element const& e, unsigned rows = 3)
{
    dense2D<double> pos;
    dense2D<unsigned> connectM;
    quality_elements::arrays(e, rows, pos, connectM);
    dense1D<double, 8> q;
    EXPECT_EQ(tessarium::shape_qualities(pos, connectM, e.type, q), 0);
    return q.size() == 1 ? q[0] : NAN;
}

// Every node moved by the affine map x -> s R x + t, R given by its columns.
element moved(element e, double const (&R)[9], double s, double const (&t)[3])
{
    for (std::size_t n = 0; n < e.xyz.size(); n += 3) {
        double x[3] = {e.xyz[n], e.xyz[n + 1], e.xyz[n + 2]};
        for (unsigned i = 0; i < 3; ++i) e.xyz[n + i] = s * (R[i] * x[0] + R[3 + i] * x[1] + R[6 + i] * x[2]) + t[i];
    }
    return e;
}

constexpr double MIRROR[9] = {-1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr double IDENTITY[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr double ORIGIN[3] = {0, 0, 0};

bool is_face(element const& e)
{
    return e.type == ET_FACE_T3 || e.type == ET_FACE_Q4;
}

void expect_reflected(double reflected, double q, element_type type)
{
    EXPECT_LT(reflected * q, 0.0) << type;
    if (type == ET_FACE_T3 || type == ET_TETRA4) {
        EXPECT_NEAR(reflected, -q, 1e-9) << type;
    }
}

}  // namespace

TEST(GeometricQuality, IdealMirroredAndCollapsedElements)
{
    for (element const& e : quality_elements::ideal()) {
        element mirror = moved(e, MIRROR, 1.0, ORIGIN), point = moved(e, IDENTITY, 0.0, ORIGIN);
        // 1e-7: a warp factor goes through acos of a cosine that rounding leaves just below 1.
        EXPECT_NEAR(quality(e), 1.0, 1e-7) << e.type;
        // Faces in space have no sign; in the plane, and solids, they have.
        EXPECT_NEAR(quality(mirror), is_face(e) ? 1.0 : -1.0, 1e-7) << e.type;
        EXPECT_EQ(quality(point), 0.0) << e.type;
        // So small that squares underflow: no division by zero, no NaN.
        double tiny = quality(moved(e, IDENTITY, 1e-160, ORIGIN));
        EXPECT_TRUE(tiny >= 0.0 && tiny <= 1.0) << e.type << " " << tiny;
        if (!is_face(e)) continue;
        EXPECT_NEAR(quality(e, 2), 1.0, 1e-15) << e.type;
        EXPECT_NEAR(quality(mirror, 2), -1.0, 1e-15) << e.type;
        EXPECT_EQ(quality(point, 2), 0.0) << e.type;
    }
}

// Four points on a tilted plane: rounding alone decides the first sign, the re-evaluation over
// the even node orders must not report a sizeable negative.
TEST(GeometricQuality, CoplanarTetrahedraAreNotInverted)
{
    std::mt19937 gen(1);
    std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
    for (int trial = 0; trial < 2000; ++trial) {
        element e{ET_TETRA4, {}};
        for (int n = 0; n < 4; ++n) {
            double x = coordinate(gen), y = coordinate(gen);
            e.xyz.insert(e.xyz.end(), {x, y, 0.3 * x - 0.7 * y + 0.1});
        }
        double q = quality(e);
        EXPECT_GE(q, -1e-10);
        EXPECT_LE(q, 1e-6);
    }
    // Edges a and c in line: the face on them has cancelled to no area.
    matrix_fixed<double, 3, 3> M = {{1, 0, 0, 0, 1, 0, 2, 0, 0}};
    bool unsure = false;
    EXPECT_EQ(elfes::tetra4::__geometric_quality1(M, unsure), 0.0);
    EXPECT_TRUE(unsure);
}

TEST(GeometricQuality, TheTwelveNodeOrdersKeepTheExtent)
{
    dense2D<double> pos;
    dense2D<unsigned> connectM;
    quality_elements::arrays({ET_FACE_T3, {0.1, 0.2, 0.3, 1.3, 0.1, 0.2, 0.2, 1.1, 0.4}}, 3, pos, connectM);
    unsigned nodes[3] = {0, 1, 2};
    std::set<std::vector<double>> orders;
    double first = 0.0;
    for (unsigned index = 0; index < 12; ++index) {
        matrix_fixed<double, 3, 3> M;
        elfes::tetra4::get_loc_coordinates(pos, nodes, {0.5, 0.3, 1.7}, index, M);
        double const* m = M.v;  // a . (b x c) on the columns, written out
        double det = m[0] * (m[4] * m[8] - m[5] * m[7]) + m[1] * (m[5] * m[6] - m[3] * m[8]) +
                     m[2] * (m[3] * m[7] - m[4] * m[6]);
        if (index == 0) first = det;
        EXPECT_NEAR(det, first, 1e-14) << index;  // even permutations keep the sign
        orders.insert(std::vector<double>(m, m + 9));
    }
    EXPECT_EQ(orders.size(), 12u);
}

// The top face turned about the vertical axis warps the side faces: the corners stay positive,
// the warp factor pulls the quality down.
TEST(GeometricQuality, WarpedFacesPullSolidsDown)
{
    for (element const& e : {quality_elements::ideal()[4], quality_elements::ideal()[5]}) {
        double previous = quality(e);
        for (double angle : {0.1, 0.2, 0.3}) {
            element twisted = e;
            double c = std::cos(angle), s = std::sin(angle), cx = 0.5,
                   cy = e.type == ET_HEXA8 ? 0.5 : std::sqrt(3.0) / 6;
            for (std::size_t n = twisted.xyz.size() / 2; n < twisted.xyz.size(); n += 3) {
                double x = twisted.xyz[n] - cx, y = twisted.xyz[n + 1] - cy;
                twisted.xyz[n] = cx + c * x - s * y;
                twisted.xyz[n + 1] = cy + s * x + c * y;
            }
            double q = quality(twisted);
            EXPECT_GT(q, 0.0) << e.type;
            EXPECT_LT(q, previous) << e.type << " " << angle;
            previous = q;
        }
    }
}

// Random valid elements: quality in [-1, 1], unchanged by a similarity, of the other sign after a
// reflection where the kind is signed: the opposite value for the measures of one extent, while
// the worst corner of the others becomes the best.
TEST(GeometricQuality, InvariantUnderSimilarities)
{
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int trial = 0; trial < 500; ++trial) {
        for (element e : quality_elements::ideal()) {
            for (double& x : e.xyz) x += 0.15 * unit(gen);
            double a = 3.14159 * unit(gen), b = 3.14159 * unit(gen), s = std::exp(3 * unit(gen));
            double t[3] = {100 * unit(gen), 100 * unit(gen), 100 * unit(gen)};
            // Rotation about z by a, then about x by b.
            double ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
            double R[9] = {ca, cb * sa, sb * sa, -sa, cb * ca, sb * ca, 0, -sb, cb};
            double q = quality(e);
            ASSERT_TRUE(q >= -1.0 && q <= 1.0) << q;
            EXPECT_NEAR(quality(moved(e, R, s, t)), q, 1e-9) << e.type;
            if (!is_face(e)) {
                expect_reflected(quality(moved(e, MIRROR, 1.0, ORIGIN)), q, e.type);
                continue;
            }
            EXPECT_NEAR(quality(moved(e, MIRROR, 1.0, ORIGIN)), q, 1e-9) << e.type;
            double plane[9] = {ca, sa, 0, -sa, ca, 0, 0, 0, 1}, shift[3] = {t[0], t[1], 0};
            for (std::size_t n = 2; n < e.xyz.size(); n += 3) e.xyz[n] = 0.0;
            double q2 = quality(e, 2);
            EXPECT_NEAR(quality(moved(e, plane, s, shift), 2), q2, 1e-9) << e.type;
            expect_reflected(quality(moved(e, MIRROR, 1.0, ORIGIN), 2), q2, e.type);
        }
    }
}

// The split of a hexahedron, written plainly: one pyramid5::geometric_quality per face, with the
// smallest value and the smallest warp factor, stopping at flat.
double plain_split(dense2D<double> const& pos, unsigned const* nodes, double& warp)
{
    double C[3] = {0, 0, 0};
    for (unsigned n = 0; n < 8; ++n)
        for (unsigned i = 0; i < 3; ++i) C[i] += pos(i, nodes[n]);
    unsigned const local_nodes[5] = {0, 1, 2, 3, 4};
    double m = 1.0;
    warp = 1.0;
    for (unsigned b = 0; b < 6 && m > 1e-12; ++b) {
        matrix_fixed<double, 3, 5> local;
        for (unsigned i = 0; i < 3; ++i) {
            for (unsigned k = 0; k < 4; ++k) local(i, k) = pos(i, nodes[elfes::hexa8::FACES[k][b]]);
            local(i, 4) = C[i] * 0.125;
        }
        double w;
        m = std::min(m, elfes::pyramid5::geometric_quality(local, local_nodes, w));
        warp = std::min(warp, w);
    }
    return m;
}

TEST(GeometricQuality, HexahedronSplitIsThatOfItsFacePyramids)
{
    std::mt19937 gen(3);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    element cube = quality_elements::ideal()[5];
    unsigned nodes[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    for (int trial = 0; trial < 3000; ++trial) {
        element e = cube;
        double amplitude = std::pow(10.0, -12 * (unit(gen) + 1) / 2);  // 1 down to 1e-12
        for (double& x : e.xyz) x += amplitude * unit(gen);
        dense2D<double> pos;
        dense2D<unsigned> connectM;
        quality_elements::arrays(e, 3, pos, connectM);
        double warp, plain_warp;
        double m = elfes::hexa8::min_split_quality(pos, nodes, warp), plain_m = plain_split(pos, nodes, plain_warp);
        EXPECT_EQ(m, plain_m);
        EXPECT_EQ(warp, plain_warp);
        // The element's value takes the split's shortcut: the same as from the plain split.
        double S = elfes::hexa8::sum_sqr_sides(pos, nodes);
        double corner = 41.569219381653056 * elfes::hexa8::__min_tet_extent(pos, nodes) / (S * std::sqrt(S));
        corner = std::max(-1.0, std::min(1.0, corner));
        double expected = !(corner > 1e-12) ? corner : plain_m < 1e-12 ? plain_m : corner * plain_warp;
        EXPECT_EQ(elfes::hexa8::geometric_quality(pos, nodes), expected);
    }
}
