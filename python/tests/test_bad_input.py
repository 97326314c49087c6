import numpy as np
import pytest

import tessarium as ts
from conftest import box

P, C = box(1)
NAN = P.copy()
NAN[3, 1] = np.nan

CASES = [
    (ts.neighbors, (C[:, :3], "tetra")),                 # too few nodes per cell
    (ts.neighbors, (C.astype(float), "tetra")),          # not integers
    (ts.neighbors, (C, "tetrahedron")),                  # unknown type
    (ts.neighbors, (C.ravel(), "tetra")),                # not 2D
    (ts.free_faces, (C, "tetra", np.zeros((2, 4), np.uint32))),  # neighbors of another mesh
    (ts.quality, (P, C.astype(np.int64) - 1, "tetra")),  # negative index
    (ts.quality, (P, C + 100, "tetra")),                 # index beyond the points
    (ts.quality, (NAN, C, "tetra")),                     # NaN coordinate
    (ts.quality, (P[:, :1], C, "tetra")),                # one coordinate
    (ts.merge_nodes, (P, -1.0)),
    (ts.merge_nodes, (P, np.nan)),
    (ts.size_map, (P, C, "tetra", -1.0)),
    (ts.edge_lengths, (P, C, "tetra", np.ones(3))),      # sizes for too few points
    (ts.h_shock, (P, [[0, 99]], np.ones(len(P)))),
    (ts.translate, (P, [1, np.nan, 0])),
    (ts.NodeDetector, (P, [0, 99])),
    (ts.subdomains, (C, "tetra", np.full((len(C), 4), 999, np.uint32))),
]


@pytest.mark.parametrize("f, args", CASES)
def test_refused_with_value_error(f, args):
    with pytest.raises(ValueError):
        f(*args)


@pytest.mark.parametrize("seed", range(40))
def test_random_arrays_never_crash(seed):
    """Random shapes, dtypes, index ranges and NaNs: a result or a ValueError, nothing else."""
    rng = np.random.default_rng(seed)
    n = int(rng.integers(0, 12))
    points = rng.normal(size=(n, int(rng.choice([2, 3]))))
    if rng.random() < 0.2 and n:
        points[rng.integers(n)] = np.nan
    kind = str(rng.choice(["triangle", "quad", "tetra", "hexahedron", "wedge", "face_mix", "solid_mix"]))
    width = int(rng.integers(1, 9))
    cells = rng.integers(-2, n + 3, size=(int(rng.integers(0, 20)), width)).astype(rng.choice([np.int64, np.uint32]))
    if rng.random() < 0.3 and cells.size:
        cells[cells < 0] = 0
        cells.flat[rng.integers(cells.size)] = ts.NONE
    calls = [
        lambda: ts.free_faces(cells, kind), lambda: ts.free_face_ids(cells, kind),
        lambda: ts.subdomains(cells, kind), lambda: ts.edges(cells, kind),
        lambda: ts.quality(points, cells, kind), lambda: ts.jacobians(points, cells, kind),
        lambda: ts.size_map(points, cells, kind), lambda: ts.remove_degenerate(cells),
        lambda: ts.remove_unused_nodes(points, cells), lambda: ts.weld(points, cells, kind, 0.1),
        lambda: ts.edge_lengths(points, cells, kind, np.abs(rng.normal(size=n))),
        lambda: ts.NodeDetector(points).find_closest(rng.normal(size=(3, 3))),
        lambda: ts.skin_owners(cells, cells, kind),
    ]
    for call in calls:
        try:
            call()
        except ValueError:
            pass
