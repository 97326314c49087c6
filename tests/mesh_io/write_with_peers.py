"""Writes a small mesh of every linear and quadratic cell kind with another program, then prints
what it wrote: "points N", "<kind> N" per meshio kind name, and "sum_milli S", a thousand times the
sum of all coordinates.
Usage: write_with_peers.py <writer> <path>, writer one of meshio-ascii, meshio-binary (any format
meshio knows by the path's extension), meshio22-ascii, meshio22-binary (gmsh 2.2), vtk-ascii,
vtk-binary, gmsh22-ascii, gmsh22-binary, gmsh41-ascii, gmsh41-binary. Exit status 77 when the
writer is not installed."""
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


# gmsh's type numbers, and its order of the mid nodes where it differs from VTK's.
GMSH_TYPES = {"line": 1, "triangle": 2, "quad": 3, "tetra": 4, "pyramid": 7, "wedge": 6, "hexahedron": 5,
              "triangle6": 9, "tetra10": 11}
GMSH_ORDER = {"tetra10": [0, 1, 2, 3, 4, 5, 6, 7, 9, 8]}


def write_with_gmsh(path, points, cells, version, binary):
    try:
        import gmsh
    except ImportError:
        sys.exit(77)
    gmsh.initialize()
    gmsh.option.setNumber("General.Terminal", 0)
    entities = {dim: gmsh.model.addDiscreteEntity(dim) for dim in (1, 2, 3)}
    gmsh.model.mesh.addNodes(3, entities[3], list(range(1, len(points) + 1)), points.ravel().tolist())
    for k, (name, _, nodes) in enumerate(cells):
        nodes = [nodes[i] for i in GMSH_ORDER.get(name, range(len(nodes)))]
        dim = 1 if name == "line" else 2 if name in ("triangle", "quad", "triangle6") else 3
        gmsh.model.mesh.addElementsByType(entities[dim], GMSH_TYPES[name], [k + 1], [n + 1 for n in nodes])
    gmsh.option.setNumber("Mesh.MshFileVersion", version)
    gmsh.option.setNumber("Mesh.Binary", binary)
    gmsh.write(path)
    gmsh.finalize()


def main():
    writer, path = sys.argv[1], sys.argv[2]
    points, cells = mesh_arrays()
    binary = writer.endswith("binary")
    if writer.startswith("gmsh"):
        write_with_gmsh(path, points, cells, 2.2 if writer.startswith("gmsh22") else 4.1, int(binary))
    elif writer.startswith("meshio"):
        try:
            import meshio
        except ImportError:
            sys.exit(77)
        blocks = [(name, np.array([nodes])) for name, _, nodes in cells]
        with open(os.devnull, "w") as quiet, contextlib.redirect_stdout(quiet), contextlib.redirect_stderr(quiet):
            if writer.startswith("meshio22"):
                meshio.write(path, meshio.Mesh(points, blocks), file_format="gmsh22", binary=binary)
            else:  # meshio takes .msh for another format unless told
                kind = {"file_format": "gmsh"} if path.endswith(".msh") else {}
                meshio.write(path, meshio.Mesh(points, blocks), binary=binary, **kind)
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
