"""A mesh as plain arrays, read and written in one call, and passed to and from meshio."""

import numpy as np

from . import _tessarium as _t

# Element type values by meshio's cell names (and the library's padded mixed arrays).
TYPES = {
    "vertex": 1, "edge_mix": 2, "line": 3, "line3": 4, "face_mix": 5, "triangle": 6, "quad": 7,
    "triangle6": 8, "quad8": 9, "quad9": 10, "solid_mix": 11, "tetra": 12, "tetra10": 13, "pyramid": 14,
    "pyramid13": 15, "pyramid14": 16, "wedge": 17, "wedge15": 18, "wedge18": 19, "hexahedron": 20,
    "hexahedron20": 21, "hexahedron27": 22,
}
_NAMES = {v: k for k, v in TYPES.items()}

# Block references (property IDs, groups) travel as this integer cell data.
REF = "ref"


class Mesh:
    """Points (n, 3) or (n, 2) float64; cells a list of (type_name, (m, k) uint32 array) in the
    library's node order; point_data {name: (n,) or (n, c) array}; cell_data {name: [one array per
    block]}, "ref" holding the block references; point_ids None or the file's node numbers."""

    def __init__(self, points, cells, point_data=None, cell_data=None, point_ids=None):
        self.points = np.asarray(points)
        items = cells.items() if isinstance(cells, dict) else cells
        self.cells = [(str(name), np.asarray(block)) for name, block in items]
        self.point_data = dict(point_data or {})
        self.cell_data = {k: list(v) for k, v in (cell_data or {}).items()}
        self.point_ids = point_ids
        self.passed_over = []  # (what, count) the file held that the mesh does not, or the reverse

    def __repr__(self):
        blocks = ", ".join("%s: %d" % (n, len(c)) for n, c in self.cells)
        return "<tessarium.Mesh, %d points, %s>" % (len(self.points), blocks or "no cells")

    def to_meshio(self):
        return to_meshio(self)


def _per_block(values, sizes):
    return np.split(values, np.cumsum(sizes)[:-1]) if sizes else []


def read(path, binary=False):
    """Reads a mesh file, the format from its extension (.stl .obj .bdf .nas .dat .neu .mesh .vtk
    .case). OSError when it cannot be opened, ValueError when malformed."""
    points, ids, blocks, node_fields, element_fields, passed = _t.read(str(path), bool(binary))
    dim = points.shape[1]
    cells = [(_NAMES[t], c) for t, c, _ in blocks]
    sizes = [len(c) for _, c in cells]
    cell_data = {name: [v[:, 0] if v.shape[1] == 1 else v for v in _per_block(values, sizes)]
                 for name, values in element_fields}
    if any(len(r) for _, _, r in blocks):
        cell_data[REF] = [r if len(r) else np.zeros(len(c), np.uint32) for _, c, r in blocks]
    point_data = {name: v[:, 0] if v.shape[1] == 1 else v for name, v in node_fields}
    m = Mesh(points if dim else points.reshape(0, 3), cells, point_data, cell_data, ids)
    m.passed_over = passed
    return m


def _field(values, n, what):
    v = np.asarray(values)
    if v.dtype.kind not in "fiub":
        raise ValueError("%s must hold numbers" % what)
    v = np.ascontiguousarray(v, dtype=np.float64)
    v = v.reshape(len(v), -1) if v.ndim == 1 else v
    if v.ndim != 2 or len(v) != n:
        raise ValueError("%s must have %d rows, not shape %s" % (what, n, v.shape))
    return v


def write(path, mesh, portable=True, binary=False):
    """Writes a Mesh (or a meshio.Mesh) to a file, the format from the extension. ``portable``
    writes what other programs read; ``portable=False`` the library's own exact format functions.
    Returns what the format could not hold, as (what, count) pairs."""
    from . import _points, _cells, _indices
    if not isinstance(mesh, Mesh):
        mesh = from_meshio(mesh)
    points = _points(mesh.points)
    blocks = []
    for i, (name, block) in enumerate(mesh.cells):
        c, t = _cells(block, name, points)
        refs = mesh.cell_data.get(REF)
        r = None if refs is None else _indices(refs[i], "references", 1)
        if r is not None and len(r) != len(c):
            raise ValueError("references of block %d must have one entry per cell" % i)
        blocks.append((t, c, r))
    node_fields = [(k, _field(v, len(points), "point data %r" % k)) for k, v in mesh.point_data.items()]
    total = sum(len(c) for _, c, _ in blocks)
    element_fields = []
    for k, per_block in mesh.cell_data.items():
        if k == REF:
            continue
        if len(per_block) != len(blocks):
            raise ValueError("cell data %r must have one array per block" % k)
        parts = [_field(v, len(c), "cell data %r" % k) for v, (_, c, _) in zip(per_block, blocks)]
        widths = {p.shape[1] for p in parts}
        if len(widths) > 1:
            raise ValueError("cell data %r has blocks of different widths" % k)
        element_fields.append((k, np.concatenate(parts) if parts else np.zeros((total, 1))))
    ids = None if mesh.point_ids is None else _indices(mesh.point_ids, "point_ids", 1)
    return _t.write(str(path), points, ids, blocks, node_fields, element_fields, not portable, bool(binary))


def _vtk_order(name):
    order = _t.vtk_order(TYPES[name]) if name in TYPES else None
    if order is None:
        raise ValueError("cells of type %r have no agreed node order with meshio" % name)
    return np.asarray(order)


def to_meshio(mesh):
    """The mesh as a meshio.Mesh, cells in meshio's (VTK's) node order."""
    import meshio
    cells = [(name, np.ascontiguousarray(c[:, _vtk_order(name)])) for name, c in mesh.cells]
    cell_data = {k: list(v) for k, v in mesh.cell_data.items()}
    return meshio.Mesh(mesh.points, cells, point_data=dict(mesh.point_data), cell_data=cell_data)


def from_meshio(m):
    """A Mesh from a meshio.Mesh (or anything with points, cells, point_data and cell_data)."""
    cells = []
    for block in m.cells:
        name, data = (block.type, block.data) if hasattr(block, "type") else block
        cells.append((name, np.ascontiguousarray(np.asarray(data)[:, np.argsort(_vtk_order(name))])))
    return Mesh(m.points, cells, getattr(m, "point_data", None), getattr(m, "cell_data", None))
