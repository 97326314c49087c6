"""meshio reading the files of exact_readers_bench (run that first): median of 3 reads, in ms,
timed around meshio.read alone. Run with /usr/bin/python3."""
import statistics
import sys
import time

import meshio

DEFAULT = ["small.bdf", "free.bdf", "obj.obj", "mesh.mesh", "vtk.vtk", "msh.msh", "binary.msh", "meshb.meshb"]
for name in sys.argv[1:] or ["/tmp/tessarium_bench_exact_" + f for f in DEFAULT]:
    times = []
    for _ in range(3):
        start = time.perf_counter()
        m = meshio.read(name)
        times.append(1000 * (time.perf_counter() - start))
    cells = sum(len(c.data) for c in m.cells)
    print(f"{name}: {statistics.median(times):.0f} ms, {len(m.points)} points, {cells} cells")
