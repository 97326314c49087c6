"""Times other programs' writers on the mesh of writers_bench.cpp (56^3 cubes, six tetrahedra
each, same node numbering), as MB of file written per second of wall time, median of a few runs.
Run with /usr/bin/python3, beside build/bench/writers_bench, on the same machine.
"""
import os
import statistics
import sys
import time

import numpy as np

N = 56
RUNS = 3
OUT = "/tmp/tessarium_compare_"


def mesh():
    idx = np.arange(N + 1, dtype=np.float64) / N
    z, y, x = np.meshgrid(idx, idx, idx, indexing="ij")
    points = np.stack([x.ravel(), y.ravel(), z.ravel()], axis=1)

    def node(i, j, k):
        return i + (N + 1) * (j + (N + 1) * k)

    k, j, i = np.meshgrid(np.arange(N), np.arange(N), np.arange(N), indexing="ij")
    i, j, k = i.ravel(), j.ravel(), k.ravel()
    c = [node(i, j, k), node(i + 1, j, k), node(i + 1, j + 1, k), node(i, j + 1, k),
         node(i, j, k + 1), node(i + 1, j, k + 1), node(i + 1, j + 1, k + 1), node(i, j + 1, k + 1)]
    cut = [(0, 1, 2, 6), (0, 2, 3, 6), (0, 3, 7, 6), (0, 7, 4, 6), (0, 4, 5, 6), (0, 5, 1, 6)]
    tets = np.stack([np.stack([c[a] for a in t], axis=1) for t in cut], axis=1).reshape(-1, 4)
    return points, tets.astype(np.int64)


def timed(name, path, write):
    seconds = []
    for _ in range(RUNS):
        start = time.perf_counter()
        write(path)
        seconds.append(time.perf_counter() - start)
    size = os.path.getsize(path)
    median = statistics.median(seconds)
    print("%-28s %7.1f MB  %8.0f ms  %7.1f MB/s" % (name, size / 1e6, median * 1e3, size / 1e6 / median))
    os.remove(path)


def main():
    points, tets = mesh()
    print("%d nodes, %d tetrahedra" % (len(points), len(tets)))
    try:
        import meshio
        m = meshio.Mesh(points, [("tetra", tets)])
        timed("meshio medit (ascii)", OUT + "m.mesh", lambda p: meshio.write(p, m, file_format="medit"))
        timed("meshio vtk (ascii)", OUT + "m.vtk", lambda p: meshio.write(p, m, file_format="vtk", binary=False))
    except ImportError:
        print("meshio not installed")
    try:
        import vtk
        from vtk.util import numpy_support
        grid = vtk.vtkUnstructuredGrid()
        pts = vtk.vtkPoints()
        pts.SetData(numpy_support.numpy_to_vtk(points, deep=True))
        grid.SetPoints(pts)
        flat = np.hstack([np.full((len(tets), 1), 4, dtype=np.int64), tets]).ravel()
        cells = vtk.vtkCellArray()
        cells.SetCells(len(tets), numpy_support.numpy_to_vtkIdTypeArray(flat, deep=True))
        grid.SetCells(vtk.VTK_TETRA, cells)

        def write_vtk(path):
            writer = vtk.vtkUnstructuredGridWriter()
            writer.SetFileName(path)
            writer.SetInputData(grid)
            writer.SetFileTypeToASCII()
            writer.Write()

        timed("VTK UnstructuredGridWriter", OUT + "v.vtk", write_vtk)
    except ImportError:
        print("VTK not installed")


if __name__ == "__main__":
    sys.exit(main())
