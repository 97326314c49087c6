"""Reads a mesh file with another program's reader and prints what it found: "points N", then
"<cell kind> N" per kind, "nonpositive_<cell kind> K" for cells whose volume (area, length) is
not positive in the reader's own node order and "misplaced_<cell kind> K" for cells whose mid
nodes are not halfway along the edges that order gives them. Exit status 77 when the reader is missing.

usage: read_volumes.py meshio|vtk|gmsh|numpy-stl FILE
"""
import collections
import sys
import warnings

warnings.simplefilter("ignore")

try:
    import numpy as np
except ImportError:
    sys.exit(77)


def need(module):
    try:
        return __import__(module)
    except ImportError:
        sys.exit(77)


# Outward faces of the corner nodes in VTK's order; the wedge as VTK documents it: the normal of
# (0, 1, 2) points away from (3, 4, 5).
VTK_FACES = {
    "tetra": [(0, 2, 1), (0, 1, 3), (1, 2, 3), (0, 3, 2)],
    "pyramid": [(0, 3, 2, 1), (0, 1, 4), (1, 2, 4), (2, 3, 4), (3, 0, 4)],
    "wedge": [(0, 1, 2), (3, 5, 4), (1, 0, 3, 4), (2, 1, 4, 5), (0, 2, 5, 3)],
    "hexahedron": [(0, 3, 2, 1), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)],
}
# Corner kinds of the higher-order cells.
CORNERS = {"line3": "line", "triangle6": "triangle", "quad8": "quad", "quad9": "quad", "tetra10": "tetra",
           "pyramid13": "pyramid", "wedge15": "wedge", "hexahedron20": "hexahedron"}
CORNER_COUNT = {"vertex": 1, "line": 2, "triangle": 3, "quad": 4, "tetra": 4, "pyramid": 5, "wedge": 6,
                "hexahedron": 8}


# gmsh's prism, which meshio takes for its wedge, has the normal of (0, 1, 2) pointing towards
# (3, 4, 5).
GMSH_FACES = dict(VTK_FACES, wedge=[(0, 2, 1), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5)])


def measure(kind, p, faces):
    """Signed volume of a solid from its outward faces, area of a face, length of a line."""
    base = CORNERS.get(kind, kind)
    p = p[:CORNER_COUNT.get(base, len(p))]
    if base in faces:
        volume = 0.0
        for face in faces[base]:
            for k in range(1, len(face) - 1):
                volume += np.dot(p[face[0]], np.cross(p[face[k]], p[face[k + 1]])) / 6.0
        return volume
    if base in ("triangle", "quad"):
        return sum(np.linalg.norm(np.cross(p[k] - p[0], p[k + 1] - p[0])) for k in range(1, len(p) - 1)) / 2
    if base == "line":
        return np.linalg.norm(p[1] - p[0])
    return 1.0


# The edge each mid node of a higher-order cell halves, VTK's order (meshio's too).
MID_EDGES = {
    "line3": [(0, 1)],
    "triangle6": [(0, 1), (1, 2), (2, 0)],
    "quad8": [(0, 1), (1, 2), (2, 3), (3, 0)],
    "quad9": [(0, 1), (1, 2), (2, 3), (3, 0), (0, 2)],
    "tetra10": [(0, 1), (1, 2), (2, 0), (0, 3), (1, 3), (2, 3)],
    "pyramid13": [(0, 1), (1, 2), (2, 3), (3, 0), (0, 4), (1, 4), (2, 4), (3, 4)],
    "wedge15": [(0, 1), (1, 2), (2, 0), (3, 4), (4, 5), (5, 3), (0, 3), (1, 4), (2, 5)],
    "hexahedron20": [(0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4), (0, 4), (1, 5), (2, 6),
                     (3, 7)],
}


# gmsh's own order: edges listed by their lower corner.
GMSH_MID_EDGES = dict(
    MID_EDGES,
    tetra10=[(0, 1), (1, 2), (2, 0), (0, 3), (2, 3), (1, 3)],
    pyramid13=[(0, 1), (0, 3), (0, 4), (1, 2), (1, 4), (2, 3), (2, 4), (3, 4)],
    wedge15=[(0, 1), (0, 2), (0, 3), (1, 2), (1, 4), (2, 5), (3, 4), (3, 5), (4, 5)],
    hexahedron20=[(0, 1), (0, 3), (0, 4), (1, 2), (1, 5), (2, 3), (2, 6), (3, 7), (4, 5), (4, 7), (5, 6), (6, 7)],
)


def mid_nodes_in_place(kind, p, mids):
    edges = mids.get(kind, [])
    first = len(p) - len(edges)
    return all(np.allclose(p[first + k], (p[a] + p[b]) / 2) for k, (a, b) in enumerate(edges))


def report(points, cells, faces, mids):
    print("points %d" % len(points))
    counts, bad, misplaced = collections.Counter(), collections.Counter(), collections.Counter()
    for kind, nodes in cells:
        counts[kind] += 1
        p = points[np.asarray(nodes)]
        if not measure(kind, p, faces) > 0:
            bad[kind] += 1
        if not mid_nodes_in_place(kind, p, mids):
            misplaced[kind] += 1
    for kind in sorted(counts):
        print("%s %d" % (kind, counts[kind]))
    for kind in sorted(bad):
        print("nonpositive_%s %d" % (kind, bad[kind]))
    for kind in sorted(misplaced):
        print("misplaced_%s %d" % (kind, misplaced[kind]))


def with_meshio(path):
    """Also prints "point_data_<name> <components>" and "cell_data_<name> <components>"."""
    meshio = need("meshio")
    m = meshio.read(path)
    for name, values in sorted(m.point_data.items()):
        print("point_data_%s %d" % (name, 1 if values.ndim == 1 else values.shape[1]))
    for name, blocks in sorted(m.cell_data.items()):
        print("cell_data_%s %d" % (name, 1 if blocks[0].ndim == 1 else blocks[0].shape[1]))
    return m.points, [(block.type, row) for block in m.cells for row in block.data]


VTK_KINDS = {1: "vertex", 3: "line", 5: "triangle", 9: "quad", 10: "tetra", 12: "hexahedron", 13: "wedge",
             14: "pyramid", 21: "line3", 22: "triangle6", 23: "quad8", 24: "tetra10", 25: "hexahedron20",
             26: "wedge15", 27: "pyramid13", 28: "quad9"}


def vtk_cells(grid, cells):
    for i in range(grid.GetNumberOfCells()):
        ids = grid.GetCell(i).GetPointIds()
        kind = VTK_KINDS.get(grid.GetCellType(i), str(grid.GetCellType(i)))
        cells.append((kind, [ids.GetId(k) for k in range(ids.GetNumberOfIds())]))


def points_of(grid):
    return np.array([grid.GetPoint(i) for i in range(grid.GetNumberOfPoints())]).reshape(-1, 3)


def with_vtk(path):
    vtk = need("vtk")
    if path.endswith(".case"):
        reader = vtk.vtkGenericEnSightReader()
        reader.SetCaseFileName(path)
    elif path.endswith(".obj"):
        reader = vtk.vtkOBJReader()
        reader.SetFileName(path)
    elif path.endswith(".stl"):
        reader = vtk.vtkSTLReader()
        reader.SetFileName(path)
    else:
        reader = vtk.vtkUnstructuredGridReader()
        reader.SetFileName(path)
    reader.Update()
    out = reader.GetOutput()
    cells = []
    if out.IsA("vtkMultiBlockDataSet"):
        points = np.zeros((0, 3))
        for b in range(out.GetNumberOfBlocks()):
            grid = out.GetBlock(b)
            if grid is not None:
                points = points_of(grid)
                vtk_cells(grid, cells)
        return points, cells
    vtk_cells(out, cells)
    return points_of(out), cells


GMSH_KINDS = {1: "line", 2: "triangle", 3: "quad", 4: "tetra", 5: "hexahedron", 6: "wedge", 7: "pyramid",
              8: "line3", 9: "triangle6", 10: "quad9", 11: "tetra10", 15: "vertex", 16: "quad8", 17: "hexahedron20",
              18: "wedge15", 19: "pyramid13"}


def with_gmsh(path):
    gmsh = need("gmsh")
    gmsh.initialize()
    gmsh.option.setNumber("General.Terminal", 0)
    gmsh.open(path)
    tags, coords, _ = gmsh.model.mesh.getNodes()
    index = {int(t): k for k, t in enumerate(tags)}
    points = np.asarray(coords).reshape(-1, 3)
    cells = []
    types, _, nodes = gmsh.model.mesh.getElements()
    for t, n in zip(types, nodes):
        kind = GMSH_KINDS.get(int(t), "gmsh%d" % t)
        for row in np.asarray(n, dtype=np.int64).reshape(-1, gmsh.model.mesh.getElementProperties(t)[3]):
            row = [index[int(v)] for v in row]
            cells.append((kind, row))
    gmsh.finalize()
    return points, cells


def with_numpy_stl(path):
    need("stl")
    from stl import mesh
    m = mesh.Mesh.from_file(path)
    points = m.vectors.reshape(-1, 3)
    return points, [("triangle", [3 * k, 3 * k + 1, 3 * k + 2]) for k in range(len(m.vectors))]


def main():
    reader = {"meshio": with_meshio, "vtk": with_vtk, "gmsh": with_gmsh, "numpy-stl": with_numpy_stl}[sys.argv[1]]
    points, cells = reader(sys.argv[2])
    report(np.asarray(points, dtype=float), cells, VTK_FACES if sys.argv[1] == "vtk" else GMSH_FACES,
           GMSH_MID_EDGES if sys.argv[1] == "gmsh" else MID_EDGES)


main()
