import numpy as np

import tessarium as ts
from conftest import box, sorted_rows, tet_faces


def matched_faces(cells):
    """Independent sort-based matching: the free faces, and the element pairs across inner faces."""
    faces, owners = tet_faces(cells)
    order = np.lexsort(faces.T[::-1])
    faces, owners = faces[order], owners[order]
    same = (faces[1:] == faces[:-1]).all(axis=1)
    pairs = {(owners[i], owners[i + 1]) for i in np.nonzero(same)[0]}
    pairs |= {(b, a) for a, b in pairs}
    single = np.ones(len(faces), bool)
    single[1:][same] = False
    single[:-1][same] = False
    return faces[single], pairs


def test_neighbors_and_free_faces_match_sorting(cube):
    points, cells = cube
    free, pairs = matched_faces(cells)
    nb = ts.neighbors(cells, "tetra")
    assert nb.shape == (len(cells), 4) and nb.dtype == np.uint32
    found = {(e, n) for e, row in enumerate(nb) for n in row if n != ts.NONE}
    assert found == pairs
    faces = ts.free_faces(cells, "tetra", nb)
    np.testing.assert_array_equal(sorted_rows(faces), sorted_rows(free))
    elements, local = ts.free_face_ids(cells, "tetra")
    assert len(elements) == len(free) and (nb[elements, local] == ts.NONE).all()
    owner, _ = ts.skin_owners(faces, cells, "tetra", nb)
    assert all(set(f) <= set(cells[e]) for f, e in zip(faces, owner))


def test_outputs_own_library_storage(cube):
    _, cells = cube
    nb = ts.neighbors(cells, "tetra")
    # The array is a view on the library's block, which a capsule keeps alive.
    assert not nb.flags.owndata and type(nb.base).__name__ == "PyCapsule"
    pieces = ts.subdomains(cells, "tetra", nb)
    assert len(pieces) == 1 and type(pieces[0].base.base).__name__ == "PyCapsule"


def test_subdomains_of_two_boxes():
    _, a = box(2)
    _, b = box(1)
    cells = np.concatenate([a, b + 27])
    pieces = ts.subdomains(cells, "tetra")
    assert [len(p) for p in pieces] == [len(a), len(b)]
    np.testing.assert_array_equal(np.sort(np.concatenate(pieces)), np.arange(len(cells)))


def test_edges_are_unique_sorted_pairs(cube):
    _, cells = cube
    pairs = np.concatenate([cells[:, [i, j]] for i in range(4) for j in range(i + 1, 4)])
    expected = np.unique(np.sort(pairs, axis=1), axis=0)
    np.testing.assert_array_equal(ts.edges(cells, "tetra"), expected)


def test_remove_degenerate_and_unused_nodes():
    cells = np.array([[0, 1, 2], [3, 3, 4], [2, 5, 6], [6, 7, 6]], dtype=np.uint32)
    kept, index = ts.remove_degenerate(cells)
    np.testing.assert_array_equal(kept, cells[[0, 2]])
    np.testing.assert_array_equal(index, [0, ts.NONE, 1, ts.NONE])
    points = np.arange(24.0).reshape(8, 3)
    p, c, new = ts.remove_unused_nodes(points, kept)
    used = np.unique(kept)
    np.testing.assert_array_equal(p, points[used])
    np.testing.assert_array_equal(used[c], kept)
    assert (new[used] == np.arange(len(used))).all() and (np.delete(new, used) == ts.NONE).all()
