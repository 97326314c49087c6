import numpy as np
import pytest

import tessarium as ts

try:
    from scipy.spatial import cKDTree
except ImportError:
    cKDTree = None


def tet_edges(cells):
    return np.concatenate([cells[:, [i, j]] for i in range(4) for j in range(i + 1, 4)])


def test_jacobians_and_quality(cube):
    points, cells = cube
    a, b, c, d = (points[cells[:, k]] for k in range(4))
    six_volumes = np.linalg.det(np.stack([b - a, c - a, d - a], axis=1))
    jac = ts.jacobians(points, cells, "tetra")
    np.testing.assert_allclose(np.abs(jac), np.abs(six_volumes))
    assert len(set(np.sign(jac * six_volumes))) == 1
    regular = np.array([[1, 1, 1], [1, -1, -1], [-1, 1, -1], [-1, -1, 1]], float)
    flat = regular * [1, 1, 0]
    q = ts.quality(np.vstack([regular, flat]), [[0, 1, 2, 3], [4, 5, 6, 7]], "tetra")
    np.testing.assert_allclose(np.abs(q), [1, 0], atol=1e-12)


def test_size_map_is_the_mean_edge_length_per_element(cube):
    points, cells = cube
    e = tet_edges(cells)
    length = np.linalg.norm(points[e[:, 0]] - points[e[:, 1]], axis=1)
    total = np.bincount(e.ravel(), np.repeat(length, 2), len(points))
    count = np.bincount(e.ravel(), minlength=len(points))
    np.testing.assert_allclose(ts.size_map(points, cells, "tetra", power=1), total / count)


def test_edge_lengths_with_a_uniform_size(cube):
    points, cells = cube
    e = np.unique(np.sort(tet_edges(cells), axis=1), axis=0)
    length = np.linalg.norm(points[e[:, 0]] - points[e[:, 1]], axis=1)
    h = np.full(len(points), 0.5)
    stats = ts.edge_lengths(points, cells, "tetra", h, bins=[0, 2.5, 3.0, 4.0])
    assert stats["edges"] == len(e)
    np.testing.assert_allclose(stats["sum"], (length / 0.5).sum())
    np.testing.assert_array_equal(stats["counts"], np.histogram(length / 0.5, [0, 2.5, 3.0, 4.0])[0])
    np.testing.assert_allclose(ts.h_shock(points, e, h), 0, atol=1e-12)
    assert (ts.h_shock(points, e, h * (1 + points[:, 0])) > 0).any()


def test_merge_nodes_and_weld():
    rng = np.random.default_rng(7)
    centres = rng.uniform(0, 100, (40, 3))
    label = rng.integers(0, 40, 200)
    points = centres[label] + rng.uniform(-1e-4, 1e-4, (200, 3))
    survivors = ts.merge_nodes(points, 1e-3)
    if cKDTree is not None:
        groups = cKDTree(points).query_ball_point(points, 1e-3)
        expected = [min(g) for g in groups]
    else:
        expected = [np.nonzero(label == l)[0].min() for l in label]
    np.testing.assert_array_equal(survivors, expected)
    # A soup of two triangles sharing an edge welds to 4 points.
    soup = np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0], [1, 0, 0], [1, 1, 0], [0, 1, 1e-9]])
    p, c = ts.weld(soup, np.arange(6).reshape(2, 3), "triangle", 1e-6)
    assert p.shape == (4, 3) and c.shape == (2, 3) and len(np.unique(c)) == 4


@pytest.mark.parametrize("nodes", [None, [1, 3]])
def test_transforms(nodes):
    rng = np.random.default_rng(3)
    p = rng.normal(size=(5, 3))
    sel = np.arange(5) if nodes is None else np.array(nodes)
    c = np.array([0.5, -1.0, 2.0])
    expect = p.copy()
    expect[sel] += [1, 2, 3]
    np.testing.assert_allclose(ts.translate(p, [1, 2, 3], nodes), expect)
    expect = p.copy()
    expect[sel] = c + (p[sel] - c) * 2.5
    np.testing.assert_allclose(ts.zoom(p, c, 2.5, nodes), expect)
    turn = np.array([[0, -1, 0], [1, 0, 0], [0, 0, 1]])  # a quarter turn about z
    expect = p.copy()
    expect[sel] = c + (p[sel] - c) @ turn.T
    np.testing.assert_allclose(ts.rotate(p, c, [0, 0, np.pi / 2], nodes), expect, atol=1e-12)
    expect2 = p[:, :2].copy()
    expect2[sel] = c[:2] + (p[sel, :2] - c[:2]) @ turn[:2, :2].T
    np.testing.assert_allclose(ts.rotate(p[:, :2], c[:2], np.pi / 2, nodes), expect2, atol=1e-12)


def test_node_detector():
    rng = np.random.default_rng(11)
    pts = rng.uniform(0, 1, (300, 3))
    det = ts.NodeDetector(pts)
    assert np.shares_memory(det.points, pts) and len(det) == 300
    q = rng.uniform(0, 1, (50, 3))
    expected = np.argmin(((q[:, None, :] - pts[None]) ** 2).sum(-1), axis=1)
    np.testing.assert_array_equal(det.find_closest(q), expected)
    lo = q - 0.1
    hi = q + 0.1
    for found, a, b in zip(det.find_in_box(lo, hi), lo, hi):
        inside = np.nonzero(((pts >= a) & (pts <= b)).all(axis=1))[0]
        np.testing.assert_array_equal(np.sort(found), inside)
    # Converted once: a Fortran-order array is copied, and the copy is what the detector reads.
    f = np.asfortranarray(pts)
    assert not np.shares_memory(ts.NodeDetector(f).points, f)


def test_gradation_bounds_every_edge_shock(cube):
    points, cells = cube
    e = np.unique(np.sort(tet_edges(cells), axis=1), axis=0)
    length = np.linalg.norm(points[e[:, 0]] - points[e[:, 1]], axis=1)
    sizes = np.random.default_rng(5).uniform(0.25, 4.0, len(points))

    def shock(h):  # isotropic shock of an edge: exp(|h2 - h1| / L) - 1
        return np.expm1(np.abs(h[e[:, 0]] - h[e[:, 1]]) / length)

    expected = np.zeros(len(points))
    np.maximum.at(expected, e, shock(sizes)[:, None])
    np.testing.assert_allclose(ts.h_shock(points, e, sizes), expected, rtol=1e-12)
    # Shrinking only, every edge can be brought to the bound.
    graded, changed = ts.bound_gradation(points, cells, "tetra", sizes, 0.3, direction=-1)
    assert shock(graded).max() <= 0.3 * (1 + 1e-9) and (graded <= sizes).all()
    assert changed == (graded != sizes).sum() > 0
    graded, _ = ts.bound_gradation(points, cells, "tetra", sizes, 0.3, frozen=[0, 5])
    assert graded[0] == sizes[0] and graded[5] == sizes[5]
