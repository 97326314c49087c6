// Bounds the gradation of a size map with a sharp jump: small sizes in a ball, large ones around
// it, on a tetrahedral cube. Writes the mesh and both maps as Medit files (open the .mesh with the
// .sol of the same name in a viewer) and prints the largest edge shock before and after.
//   grade_size_map [output directory]
#include <tessarium/tessarium.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

using namespace qv7;

namespace {

// n^3 cubes over [0, 1]^3, six tetrahedra each around the diagonal from corner 0 to corner 7.
void make_cube(unsigned n, dense2D<double>& pos, dense2D<unsigned>& tetras)
{
    unsigned const p = n + 1;
    pos.resize(3, std::size_t(p) * p * p);
    for (std::size_t v = 0; v < pos.cols(); ++v) {
        pos(0, v) = double(v % p) / n;
        pos(1, v) = double(v / p % p) / n;
        pos(2, v) = double(v / p / p) / n;
    }
    unsigned const tets[6][4] = {{0, 1, 3, 7}, {0, 5, 1, 7}, {0, 3, 2, 7}, {0, 2, 6, 7}, {0, 4, 5, 7}, {0, 6, 4, 7}};
    tetras.resize(4, std::size_t(n) * n * n * 6);
    std::size_t e = 0;
    for (unsigned k = 0; k < n; ++k)
        for (unsigned j = 0; j < n; ++j)
            for (unsigned i = 0; i < n; ++i)
                for (auto const& t : tets) {
                    for (unsigned r = 0; r < 4; ++r)
                        tetras(r, e) = (i + (t[r] & 1)) + p * ((j + (t[r] >> 1 & 1)) + p * (k + (t[r] >> 2)));
                    ++e;
                }
}

double largest_shock(dense2D<double> const& pos, dense2D<unsigned> const& edges, dense1D<double, 8> const& sizes)
{
    dense1D<double, 8> shock;
    tessarium::H_shock(pos, edges, sizes, shock);
    return shock.empty() ? 0.0 : *std::max_element(shock.begin(), shock.end());
}

}  // namespace

int main(int argc, char** argv)
{
    std::string dir = argc > 1 ? std::string(argv[1]) + "/" : "";
    dense2D<double> pos;
    dense2D<unsigned> tetras, edges;
    make_cube(30, pos, tetras);
    edges.resize(2, 0);
    if (tessarium::copy_edges(tetras, ET_TETRA4, edges) < 0) return 1;

    // Size 0.005 within 0.2 of the centre, 0.1 elsewhere.
    dense1D<double, 8> sizes(pos.cols());
    for (std::size_t v = 0; v < pos.cols(); ++v) {
        double dx = pos(0, v) - 0.5, dy = pos(1, v) - 0.5, dz = pos(2, v) - 0.5;
        sizes[v] = std::sqrt(dx * dx + dy * dy + dz * dz) < 0.2 ? 0.005 : 0.1;
    }
    double const bound = 0.5;
    std::printf("%zu nodes, %zu tetrahedra, %zu edges\n", pos.cols(), tetras.cols(), edges.cols());
    std::printf("largest edge shock before: %g\n", largest_shock(pos, edges, sizes));
    if (tessarium::medit_output((dir + "jump.mesh").c_str(), pos, tetras, ET_TETRA4) < 0 ||
        tessarium::medit_scalar((dir + "jump.sol").c_str(), 3, sizes) < 0)
        return 1;

    // Sizes may shrink only: the small sizes of the ball spread outwards until the jump is gentle.
    int changed = tessarium::bound_metric_gradations(pos, tetras, ET_TETRA4, {}, true, -1, bound, sizes);
    if (changed < 0) return 1;
    std::printf("bound %g: %d nodes changed\n", bound, changed);
    std::printf("largest edge shock after: %g\n", largest_shock(pos, edges, sizes));
    if (tessarium::medit_output((dir + "graded.mesh").c_str(), pos, tetras, ET_TETRA4) < 0 ||
        tessarium::medit_scalar((dir + "graded.sol").c_str(), 3, sizes) < 0)
        return 1;
    std::printf("wrote %sjump.mesh/.sol and %sgraded.mesh/.sol\n", dir.c_str(), dir.c_str());
    return 0;
}
