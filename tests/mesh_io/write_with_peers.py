"""Writes a small mesh of every linear and quadratic cell kind with another program, then prints
what it wrote: "points N", "<kind> N" per meshio kind name, and "sum_milli S", a thousand times the
sum of all coordinates.
Usage: write_with_peers.py <writer> <path>, writer one of meshio-ascii, meshio-binary, vtk-ascii,
vtk-binary (any format meshio knows by the path's extension). Exit status 77 when the writer is
not installed."""
import contextlib
import os
import sys

try:
    import numpy as np
except ImportError:
    sys.exit(77)

# A row of cells along x, each on points of its own: meshio kind name, VTK type, corners, and
# for the quadratic kinds the corner pairs of their mid nodes.
TRIANGLE = [[0, 0, 0], [1, 0, 0], [0, 1, 0]]
TETRA = TRIANGLE + [[0, 0, 1]]
CELLS = [
    ("line", 3, [[0, 0, 0], [1, 0, 0]], []),
    ("triangle", 5, TRIANGLE, []),
    ("quad", 9, [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], []),
    ("tetra", 10, TETRA, []),
    ("pyramid", 14, [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0.5, 0.5, 1]], []),
    ("wedge", 13, [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [0, 1, 1]], []),
    ("hexahedron", 12, [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [1, 1, 1], [0, 1, 1]], []),
    ("triangle6", 22, TRIANGLE, [(0, 1), (1, 2), (2, 0)]),
    ("tetra10", 24, TETRA, [(0, 1), (1, 2), (2, 0), (0, 3), (1, 3), (2, 3)]),
]


def mesh_arrays():
    points, cells = [], []
    for k, (name, code, corners, mids) in enumerate(CELLS):
        p = [np.array(c, dtype=float) + [2.5 * k + 0.1, 0.3, 1.0 / 3.0] for c in corners]
        p += [(p[a] + p[b]) / 2 for a, b in mids]
        cells.append((name, code, list(range(len(points), len(points) + len(p)))))
        points += p
    return np.array(points), cells


def main():
    writer, path = sys.argv[1], sys.argv[2]
    points, cells = mesh_arrays()
    binary = writer.endswith("binary")
    if writer.startswith("meshio"):
        try:
            import meshio
        except ImportError:
            sys.exit(77)
        blocks = [(name, np.array([nodes])) for name, _, nodes in cells]
        with open(os.devnull, "w") as quiet, contextlib.redirect_stdout(quiet), contextlib.redirect_stderr(quiet):
            meshio.write(path, meshio.Mesh(points, blocks), binary=binary)
    else:
        try:
            import vtk
        except ImportError:
            sys.exit(77)
        grid, vpoints = vtk.vtkUnstructuredGrid(), vtk.vtkPoints()
        vpoints.SetDataTypeToDouble()
        for p in points:
            vpoints.InsertNextPoint(*p)
        grid.SetPoints(vpoints)
        for _, code, nodes in cells:
            grid.InsertNextCell(code, len(nodes), nodes)
        w = vtk.vtkUnstructuredGridWriter()
        w.SetInputData(grid)
        w.SetFileName(path)
        if binary:
            w.SetFileTypeToBinary()
        w.Write()
    print("points", len(points))
    for name, _, _ in cells:
        print(name, 1)
    print("sum_milli", round(1000 * float(points.sum())))


main()
