"""Reads a mesh file with another program's reader and prints what it found, one line per count:
"points N" and "<cell type> N". Exit status 77 when the reader is not installed here.

usage: read_back.py meshio|vtk|gmsh|ensight FILE
"""
import collections
import sys


def missing():
    sys.exit(77)


def with_meshio(path):
    try:
        import meshio
    except ImportError:
        missing()
    mesh = meshio.read(path)
    counts = collections.Counter()
    for block in mesh.cells:
        counts[block.type] += len(block.data)
    return len(mesh.points), counts


VTK_NAMES = {1: "vertex", 2: "polyvertex", 3: "line", 5: "triangle", 9: "quad", 10: "tetra",
             12: "hexahedron", 13: "wedge", 14: "pyramid"}


def cell_counts(grid):
    counts = collections.Counter()
    for i in range(grid.GetNumberOfCells()):
        counts[VTK_NAMES.get(grid.GetCellType(i), str(grid.GetCellType(i)))] += 1
    return counts


def with_vtk(path):
    try:
        import vtk
    except ImportError:
        missing()
    reader = vtk.vtkUnstructuredGridReader()
    reader.SetFileName(path)
    reader.Update()
    grid = reader.GetOutput()
    return grid.GetNumberOfPoints(), cell_counts(grid)


def with_ensight(path):
    """An EnSight 6 geometry file, through a case file written beside it."""
    try:
        import vtk
    except ImportError:
        missing()
    import os
    case = path + ".case"
    with open(case, "w") as out:
        out.write("FORMAT\ntype: ensight\nGEOMETRY\nmodel: %s\n" % os.path.basename(path))
    reader = vtk.vtkEnSight6Reader()
    reader.SetCaseFileName(case)
    reader.Update()
    blocks = reader.GetOutput()
    counts = collections.Counter()
    points = 0
    for b in range(blocks.GetNumberOfBlocks()):
        grid = blocks.GetBlock(b)
        if grid is None:
            continue
        points = max(points, grid.GetNumberOfPoints())
        counts.update(cell_counts(grid))
    return points, counts


GMSH_NAMES = {1: "line", 2: "triangle", 3: "quad", 4: "tetra", 5: "hexahedron", 6: "wedge", 7: "pyramid",
              8: "line3", 9: "triangle6", 10: "quad9", 11: "tetra10", 12: "hexahedron27", 13: "wedge18",
              14: "pyramid14", 15: "vertex", 16: "quad8", 17: "hexahedron20", 18: "wedge15", 19: "pyramid13"}


def with_gmsh(path):
    try:
        import gmsh
    except ImportError:
        missing()
    gmsh.initialize()
    gmsh.option.setNumber("General.Terminal", 0)
    gmsh.open(path)
    tags, _, _ = gmsh.model.mesh.getNodes()
    counts = collections.Counter()
    types, elements, _ = gmsh.model.mesh.getElements()
    for t, e in zip(types, elements):
        counts[GMSH_NAMES.get(t, str(t))] += len(e)
    gmsh.finalize()
    return len(tags), counts


def main():
    reader = {"meshio": with_meshio, "vtk": with_vtk, "gmsh": with_gmsh, "ensight": with_ensight}[sys.argv[1]]
    points, counts = reader(sys.argv[2])
    print("points %d" % points)
    for name in sorted(counts):
        print("%s %d" % (name, counts[name]))


main()
