"""Times VTK's vtkMeshQuality on the meshes of quality_bench: the same jittered box of cubes, as
998,250 tetrahedra (radius ratio) and as 1,000,000 hexahedra (scaled Jacobian and shape). Only the filter's
Update() is timed, one thread, median of 5 runs, in wall and in process CPU time (the machine is
shared: CPU time is what compares with the CPU column of quality_bench). Run with Debian's /usr/bin/python3."""
import statistics
import time

import numpy as np
import vtk
from vtk.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray

FREQ = np.array([[1.3, 2.1, 0.7, 0.0], [0.9, 1.7, 2.3, 1.0], [2.2, 0.5, 1.9, 2.0]])
TETS = np.array([[0, 3, 1, 7], [0, 1, 5, 7], [0, 2, 3, 7], [0, 6, 2, 7], [0, 5, 4, 7], [0, 4, 6, 7]])
HEXA = np.array([[0, 1, 3, 2, 4, 5, 7, 6]])


def nodes(n):
    p = n + 1
    k, j, i = np.meshgrid(np.arange(p), np.arange(p), np.arange(p), indexing="ij")
    i, j, k = i.ravel(), j.ravel(), k.ravel()
    grid = np.stack([i, j, k], axis=1).astype(float)
    for a in range(3):
        f = FREQ[a]
        grid[:, a] += 0.1 * np.sin(f[0] * i + f[1] * j + f[2] * k + f[3])
    return grid


def elements(n, table):
    p = n + 1
    k, j, i = np.meshgrid(np.arange(n), np.arange(n), np.arange(n), indexing="ij")
    base = np.stack([i.ravel(), j.ravel(), k.ravel()], axis=1)
    corners = table[None, :, :]
    ci = base[:, None, None, 0] + (corners & 1)
    cj = base[:, None, None, 1] + (corners >> 1 & 1)
    ck = base[:, None, None, 2] + (corners >> 2)
    return (ci + p * (cj + p * ck)).reshape(-1, table.shape[1])


def grid(n, table, cell_type):
    points = vtk.vtkPoints()
    points.SetData(numpy_to_vtk(nodes(n), deep=True))
    conn = elements(n, table).astype(np.int64)
    count = conn.shape[1]
    offsets = np.arange(0, conn.size + 1, count, dtype=np.int64)
    cells = vtk.vtkCellArray()
    cells.SetData(numpy_to_vtkIdTypeArray(offsets, deep=True), numpy_to_vtkIdTypeArray(conn.ravel(), deep=True))
    ug = vtk.vtkUnstructuredGrid()
    ug.SetPoints(points)
    ug.SetCells(cell_type, cells)
    return ug


def time_quality(ug, set_measure, runs=5):
    quality = vtk.vtkMeshQuality()
    quality.SetInputData(ug)
    set_measure(quality)
    wall, cpu = [], []
    for _ in range(runs):
        quality.Modified()
        start, start_cpu = time.perf_counter(), time.process_time()
        quality.Update()
        wall.append(time.perf_counter() - start)
        cpu.append(time.process_time() - start_cpu)
    values = quality.GetOutput().GetCellData().GetArray("Quality")
    return statistics.median(wall), statistics.median(cpu), ug.GetNumberOfCells(), values.GetRange()


def main():
    vtk.vtkSMPTools.Initialize(1)
    print("VTK", vtk.vtkVersion.GetVTKVersion())
    hexa = grid(100, HEXA, vtk.VTK_HEXAHEDRON)
    cases = [("tetra radius ratio", grid(55, TETS, vtk.VTK_TETRA), lambda q: q.SetTetQualityMeasureToRadiusRatio()),
             ("hexa scaled Jacobian", hexa, lambda q: q.SetHexQualityMeasureToScaledJacobian()),
             ("hexa shape", hexa, lambda q: q.SetHexQualityMeasureToShape())]
    for name, ug, measure in cases:
        wall, cpu, cells, bounds = time_quality(ug, measure)
        print("%s: %d cells, median Update() %.1f ms wall, %.1f ms CPU, range %s" % (name, cells, wall * 1e3,
                                                                                     cpu * 1e3, bounds))


if __name__ == "__main__":
    main()
