"""Finite-element mesh utilities on numpy arrays.

Points are ``(n, 3)`` or ``(n, 2)`` arrays of float64, cells ``(m, k)`` arrays of node indices
(uint32), one row per element, ``k`` nodes in the library's local order. Arrays of exactly that
dtype in C order are read in place; any other dtype or order is converted once. Results are numpy
arrays on the library's own storage (no copy on the way out). ``NONE`` (0xFFFFFFFF) marks no
element, no neighbour, no node.

Element types are named as in meshio ("triangle", "quad", "tetra", "pyramid", "wedge",
"hexahedron", "line", "triangle6", "tetra10", ...) or "face_mix" / "solid_mix" for padded
mixed arrays of 4 / 8 columns.

Bad input raises ValueError (shapes, dtypes, indices, NaN), MemoryError or OSError (files).
The GIL is released while the library works.
"""

import numpy as np

from . import _tessarium as _t
from .mesh import Mesh, read, write, from_meshio, to_meshio, TYPES

NONE = _t.NONE
__version__ = _t.version()

__all__ = ["NONE", "Mesh", "read", "write", "from_meshio", "to_meshio", "neighbors", "free_faces",
           "free_face_ids", "skin_owners", "subdomains", "edges", "quality", "jacobians", "size_map",
           "edge_lengths", "h_shock", "bound_gradation", "merge_nodes", "remove_degenerate", "remove_unused_nodes", "weld",
           "translate", "rotate", "zoom", "NodeDetector"]

_MIXED = {TYPES["face_mix"], TYPES["solid_mix"], TYPES["edge_mix"]}


def _type(cell_type):
    if isinstance(cell_type, str):
        if cell_type not in TYPES:
            raise ValueError("unknown element type %r; one of %s" % (cell_type, ", ".join(sorted(TYPES))))
        return TYPES[cell_type]
    value = int(cell_type)
    if not 0 < value < 23:
        raise ValueError("unknown element type %r" % (cell_type,))
    return value


def _points(points):
    a = np.asarray(points)
    if a.ndim != 2 or a.shape[1] not in (2, 3):
        raise ValueError("points must be an (n, 2) or (n, 3) array, not of shape %s" % (a.shape,))
    if a.dtype.kind not in "fiu":
        raise ValueError("points must hold numbers, not %s" % a.dtype)
    a = np.ascontiguousarray(a, dtype=np.float64)
    if not np.isfinite(a).all():
        raise ValueError("points hold NaN or infinite coordinates")
    return a


def _indices(a, what, ndim=2, limit=None, none_ok=False):
    """a as C-order uint32, refusing what would wrap: other ranks, non-integers, negatives, values
    beyond 32 bits, and (given limit) node indices >= limit other than NONE where none_ok."""
    a = np.asarray(a)
    if a.ndim != ndim:
        raise ValueError("%s must be a %d-dimensional array, not of shape %s" % (what, ndim, a.shape))
    if a.size == 0:
        return np.zeros(a.shape, dtype=np.uint32)
    if a.dtype.kind not in "iu":
        raise ValueError("%s must hold integers, not %s" % (what, a.dtype))
    if a.dtype != np.uint32:
        if a.min() < 0:
            raise ValueError("%s hold a negative index" % what)
        if a.max() > NONE:
            raise ValueError("%s hold an index beyond 32 bits" % what)
    a = np.ascontiguousarray(a, dtype=np.uint32)
    if limit is not None:
        used = a[a != NONE] if none_ok else a
        if used.size and used.max() >= limit:
            raise ValueError("%s hold node %d, beyond the %d points" % (what, used.max(), limit))
    return a


def _cells(cells, cell_type, points=None):
    t = _type(cell_type)
    limit = None if points is None else len(points)
    return _indices(cells, "cells", 2, limit, t in _MIXED), t


def neighbors(cells, cell_type, non_manifold=False):
    """The element across each local boundary: an (m, b) uint32 array, NONE on a free boundary.

    A boundary shared by more than two elements has no neighbour unless ``non_manifold``.
    """
    c, t = _cells(cells, cell_type)
    return _t.neighbors(c, t, bool(non_manifold))


def _neighbors_of(c, t, nb):
    return _t.neighbors(c, t, False) if nb is None else _indices(nb, "neighbors")


def free_faces(cells, cell_type, neighbors=None):
    """The free boundaries (faces of solids, edges of faces), one row each with its nodes.

    ``neighbors`` as returned by :func:`neighbors`; computed when not given.
    """
    c, t = _cells(cells, cell_type)
    return _t.free_faces(c, t, _neighbors_of(c, t, neighbors))


def _split_ids(ids, stride):
    ids = ids.astype(np.int64)
    found = ids != NONE
    elements = np.where(found, ids // max(stride, 1), -1)
    local = np.where(found, ids % max(stride, 1), -1)
    return elements, local


def free_face_ids(cells, cell_type, neighbors=None):
    """The free boundaries as (element, local boundary number) arrays."""
    c, t = _cells(cells, cell_type)
    ids, stride = _t.free_face_ids(c, t, _neighbors_of(c, t, neighbors))
    return _split_ids(ids, stride)


def skin_owners(faces, cells, cell_type, neighbors=None):
    """For each face row of ``faces`` (a skin, rows as :func:`free_faces` gives), the element and
    local boundary it is; -1 for a face of no element."""
    c, t = _cells(cells, cell_type)
    f = _indices(faces, "faces", 2, None, True)
    nb = _neighbors_of(c, t, neighbors)
    # The walk keeps one element per node up to the highest node: number the nodes compactly.
    used = np.unique(np.concatenate([c[c != NONE], f[f != NONE]]))
    c, f = (np.where(a == NONE, NONE, np.searchsorted(used, a)).astype(np.uint32) for a in (c, f))
    ids, stride = _t.skin_owners(f, c, t, nb)
    return _split_ids(ids, stride)


def subdomains(cells, cell_type, neighbors=None):
    """The pieces that hang together across boundaries: a list of element index arrays, each
    piece from its lowest element, breadth first."""
    c, t = _cells(cells, cell_type)
    nb = _neighbors_of(c, t, neighbors)
    if nb.shape[0] != c.shape[0]:
        raise ValueError("neighbors must have one row per cell")
    if nb.size and (nb[nb != NONE] >= len(nb)).any():
        raise ValueError("neighbors name elements beyond the cells")
    indices, offsets = _t.subdomains(nb)
    return np.split(indices, offsets[1:-1]) if len(offsets) > 1 else []


def edges(cells, cell_type):
    """The unique edges as an (e, 2) array, smaller node first, rows in ascending order."""
    c, t = _cells(cells, cell_type)
    return _t.edges(c, t)


def quality(points, cells, cell_type):
    """Shape quality per element in [-1, 1]: 1 ideal, 0 flat, negative inverted."""
    p = _points(points)
    c, t = _cells(cells, cell_type, p)
    return _t.qualities(p, c, t)


def jacobians(points, cells, cell_type):
    """Jacobian per element: six times the volume of a tetrahedron, twice the area of a triangle."""
    p = _points(points)
    c, t = _cells(cells, cell_type, p)
    return _t.jacobians(p, c, t)


def size_map(points, cells, cell_type, power=1.0):
    """A size per node from the lengths of the edges at it: their power mean (0: shortest,
    inf: longest). Nodes that no edge reaches get 0."""
    p = _points(points)
    c, t = _cells(cells, cell_type, p)
    power = float(power)
    if np.isnan(power):
        raise ValueError("power is NaN")
    return _t.size_map(p, c, t, min(power, np.finfo(float).max))


def _sizes(sizes, n):
    s = np.ascontiguousarray(sizes, dtype=np.float64)
    if s.ndim != 1 or len(s) != n:
        raise ValueError("sizes must be a 1-dimensional array of one size per point (%d)" % n)
    return s


def edge_lengths(points, cells, cell_type, sizes, bins=(0.0, 0.5, 0.7071, 1.4142, 2.0)):
    """Histogram of the metric lengths of the edges (length over the sizes at its ends; 1 fits).

    Returns a dict: edges, counts (per bin), underflow, overflow, min, max, sum.
    """
    p = _points(points)
    c, t = _cells(cells, cell_type, p)
    b = [float(x) for x in bins]
    if any(not np.isfinite(x) for x in b) or any(x >= y for x, y in zip(b, b[1:])):
        raise ValueError("bins must be finite and increasing")
    return _t.edge_lengths(p, c, t, _sizes(sizes, len(p)), b)


def h_shock(points, edges, sizes):
    """Per node, the largest growth of the size per unit metric length along its edges, less one."""
    p = _points(points)
    e = _indices(edges, "edges", 2, len(p))
    if e.size and e.shape[1] != 2:
        raise ValueError("edges must be an (e, 2) array")
    return _t.h_shock(p, e, _sizes(sizes, len(p)))


def bound_gradation(points, cells, cell_type, sizes, bound=0.3, frozen=None, direction=0):
    """The size map with every edge's shock (growth of the size per unit metric length, less one)
    brought down to ``bound``, worst edge first. ``sizes``: one size per point, or one packed
    tensor per point (n, 3) in 2D, (n, 6) in 3D. ``frozen``: nodes that keep their size;
    ``direction``: 0 either way, 1 sizes only grow, -1 only shrink. Returns (sizes, nodes changed).
    """
    p = _points(points)
    c, t = _cells(cells, cell_type, p)
    s = np.ascontiguousarray(sizes, dtype=np.float64)
    if len(s) != len(p) or s.ndim not in (1, 2):
        raise ValueError("sizes must have one entry (or tensor row) per point")
    bound = float(bound)
    if not bound >= 0:
        raise ValueError("bound must be a number >= 0")
    nodes = _indices([] if frozen is None else frozen, "frozen", 1, len(p))
    f = _t.bound_gradation_sizes if s.ndim == 1 else _t.bound_gradation_tensors
    return f(p, c, t, s, bound, nodes, True, int(direction))


def merge_nodes(points, tol):
    """The survivor of each node: of a group of nodes within ``tol`` of one another the first listed
    stays (survivor[i] == i)."""
    p = _points(points)
    tol = float(tol)
    if not tol >= 0:
        raise ValueError("tol must be a number >= 0")
    return _t.merge_nodes(p, tol)


def remove_degenerate(cells, strict=False):
    """Drops the rows that hold a node twice. Returns (cells, new_index), new_index[i] the new row
    of row i or NONE."""
    return _t.remove_degenerate(_indices(cells, "cells"), bool(strict))


def remove_unused_nodes(points, cells, keep=0):
    """Drops the points no cell uses (the first ``keep`` always stay) and renumbers the cells.
    Returns (points, cells, new_index); new_index is empty when nothing could go."""
    p = _points(points)
    c = _indices(cells, "cells", 2, len(p), True)
    return _t.remove_unused_nodes(p, c, int(keep))


def weld(points, cells, cell_type, tol):
    """Merges the points within ``tol``, drops the cells that collapse and the points left unused.
    Returns (points, cells)."""
    p = _points(points)
    c, _ = _cells(cells, cell_type, p)
    survivors = np.append(merge_nodes(p, tol), np.uint32(NONE))  # NONE stays NONE
    c, _ = remove_degenerate(survivors[np.where(c == NONE, len(p), c)])
    p, c, _ = remove_unused_nodes(p, c)
    return p, c


def _vector(v, n, what):
    a = np.asarray(v, dtype=np.float64).ravel()
    if len(a) != n or not np.isfinite(a).all():
        raise ValueError("%s must be %d finite numbers" % (what, n))
    return a.tolist()


def _nodes(nodes):
    return None if nodes is None else _indices(nodes, "nodes", 1)


def translate(points, vector, nodes=None):
    """A copy of the points moved by ``vector`` (2 or 3 numbers); only ``nodes`` if given."""
    p = _points(points)
    d = len(np.ravel(vector))
    f = _t.translate2 if d == 2 else _t.translate3
    return f(p, _vector(vector, 3 if d != 2 else 2, "vector"), _nodes(nodes))


def rotate(points, center, rotation, nodes=None):
    """A copy of the points turned about ``center``: by an angle in radians (2D center) or by a
    rotation vector, axis times angle (3D center)."""
    p = _points(points)
    if len(np.ravel(center)) == 2:
        angle = float(rotation)
        if not np.isfinite(angle):
            raise ValueError("angle must be finite")
        return _t.rotate2(p, _vector(center, 2, "center"), angle, _nodes(nodes))
    return _t.rotate3(p, _vector(center, 3, "center"), _vector(rotation, 3, "rotation"), _nodes(nodes))


def zoom(points, center, factor, nodes=None):
    """A copy of the points scaled by ``factor`` about ``center`` (2 or 3 numbers)."""
    p = _points(points)
    d = 2 if len(np.ravel(center)) == 2 else 3
    factor = float(factor)
    if not np.isfinite(factor):
        raise ValueError("factor must be finite")
    return (_t.zoom2 if d == 2 else _t.zoom3)(p, _vector(center, d, "center"), factor, _nodes(nodes))


class NodeDetector:
    """Closest-node and box searches over points. The points array is kept and read in place
    (converted once if not C-order float64); ``nodes`` restricts the search to those indices."""

    def __init__(self, points, nodes=None):
        p = _points(points)
        self._d = _t.NodeDetector(p, None if nodes is None else _indices(nodes, "nodes", 1, len(p)))

    @property
    def points(self):
        return self._d.points

    def __len__(self):
        return len(self._d)

    def _queries(self, q, what):
        a = np.asarray(q, dtype=np.float64)
        if a.ndim == 1:
            a = a[None, :]
        if a.ndim != 2 or a.shape[1] not in (2, 3):
            raise ValueError("%s must be (q, 2) or (q, 3)" % what)
        if not np.isfinite(a).all():
            raise ValueError("%s hold NaN or infinite coordinates" % what)
        return np.ascontiguousarray(a)

    def find_closest(self, queries):
        """The closest node to each query point (q, 2) or (q, 3); NONE when there is none."""
        return self._d.find_closest(self._queries(queries, "queries"))

    def find_in_box(self, lo, hi):
        """For each box [lo[i], hi[i]] (ends included), the array of the nodes inside."""
        a, b = self._queries(lo, "lo"), self._queries(hi, "hi")
        if a.shape != b.shape:
            raise ValueError("lo and hi must have the same shape")
        ids, offsets = self._d.find_in_box(a, b)
        return np.split(ids, offsets[1:-1]) if len(a) else []
