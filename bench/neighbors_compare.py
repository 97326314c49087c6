"""get_neighbors beside VTK's surface filter on the tetrahedra of N^3 cubes (six per cube, the mesh
of connectivity_bench), each in a fresh process: CPU time and peak resident memory of the whole
process, mesh included. Medians of RUNS runs, taken in turn.

    /usr/bin/python3 bench/neighbors_compare.py build/bench/connectivity_bench [RUNS]
"""
import statistics
import subprocess
import sys

VTK_SURFACE = r"""
import resource, sys, time
import numpy as np
import vtk
from vtk.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray
n = int(sys.argv[1])
p = n + 1
idx = np.arange(p, dtype=np.float64)
z, y, x = np.meshgrid(idx, idx, idx, indexing="ij")
points = np.stack([x.ravel(), y.ravel(), z.ravel()], axis=1)
k, j, i = [a.ravel() for a in np.meshgrid(np.arange(n), np.arange(n), np.arange(n), indexing="ij")]
corner = lambda c: (i + (c & 1)) + p * ((j + (c >> 1 & 1)) + p * (k + (c >> 2)))
tets = [(0, 1, 3, 7), (0, 5, 1, 7), (0, 3, 2, 7), (0, 2, 6, 7), (0, 4, 5, 7), (0, 6, 4, 7)]
cells = np.stack([np.stack([corner(c) for c in t], axis=1) for t in tets], axis=1).reshape(-1, 4)
del x, y, z, k, j, i
ids = np.hstack([np.full((len(cells), 1), 4, dtype=np.int64), cells]).ravel()
del cells
grid = vtk.vtkUnstructuredGrid()
vpoints = vtk.vtkPoints()
vpoints.SetData(numpy_to_vtk(points, deep=1))
grid.SetPoints(vpoints)
ca = vtk.vtkCellArray()
ca.SetCells(len(ids) // 5, numpy_to_vtkIdTypeArray(ids, deep=1))
del ids
grid.SetCells(vtk.VTK_TETRA, ca)
surface = vtk.vtkDataSetSurfaceFilter()
surface.SetInputData(grid)
start = time.process_time()
surface.Update()
seconds = time.process_time() - start
print("%.4f %d %.1f" % (seconds, grid.GetNumberOfCells(), resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024.0))
"""


def run(command):
    out = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()
    return float(out[0]), int(out[1]), float(out[2])


def main():
    bench = sys.argv[1]
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    print("| tetrahedra | get_neighbors CPU | peak | VTK surface filter CPU | peak | peak ratio |")
    print("|---|---|---|---|---|---|")
    for n in (55, 109):
        ours, theirs = [], []
        for _ in range(runs):
            ours.append(run([bench, "--scale", str(n)]))
            theirs.append(run(["/usr/bin/python3", "-c", VTK_SURFACE, str(n)]))
        t, m = statistics.median(r[0] for r in ours), statistics.median(r[2] for r in ours)
        vt, vm = statistics.median(r[0] for r in theirs), statistics.median(r[2] for r in theirs)
        print("| %d | %.2f s | %.0f MiB | %.2f s | %.0f MiB | %.2f |" % (ours[0][1], t, m, vt, vm, m / vm))
        sys.stdout.flush()


if __name__ == "__main__":
    main()
