import itertools

import numpy as np
import pytest

TETS = np.array([[0, 1, 3, 7], [0, 5, 1, 7], [0, 3, 2, 7], [0, 2, 6, 7], [0, 4, 5, 7], [0, 6, 4, 7]])


def box(n, shift=0.0):
    """A box of n^3 unit cubes, each cut into six tetrahedra around its diagonal."""
    p = n + 1
    g = np.arange(p)
    points = np.array([(x + shift, y, z) for z in g for y in g for x in g], dtype=float)
    cells = []
    for k, j, i in itertools.product(range(n), repeat=3):
        corner = [(i + (c & 1)) + p * ((j + (c >> 1 & 1)) + p * (k + (c >> 2))) for c in range(8)]
        cells += [[corner[c] for c in tet] for tet in TETS]
    return points, np.array(cells, dtype=np.uint32)


@pytest.fixture
def cube():
    return box(2)


def sorted_rows(a):
    """Rows sorted within and then among themselves: faces compared as node sets."""
    a = np.sort(np.asarray(a, dtype=np.int64), axis=1)
    return a[np.lexsort(a.T[::-1])]


def tet_faces(cells):
    """All (face nodes sorted, element) of a tetrahedral mesh."""
    faces = np.concatenate([cells[:, [i for i in range(4) if i != k]] for k in range(4)])
    owners = np.tile(np.arange(len(cells)), 4)
    return np.sort(faces.astype(np.int64), axis=1), owners
