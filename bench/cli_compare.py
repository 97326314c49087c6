"""Whole-process timings of the tessarium program against meshio and gmsh on the files of
cli_inputs.py: medians of wall and CPU (user + system) time over five runs, interleaved.
Usage: /usr/bin/python3 bench/cli_compare.py TESSARIUM FOLDER"""
import os
import resource
import statistics
import subprocess
import sys
import time

exe, folder = sys.argv[1], sys.argv[2]
meshio = [sys.executable, "-c", "import sys; from meshio._cli import main; sys.exit(main())", "convert"]
commands = {
    "tessarium convert": [exe, "convert", "box_1M.bdf", "out_t.vtk"],
    "meshio convert": meshio + ["box_1M.bdf", "out_m.vtk"],
    "meshio convert --ascii": meshio + ["--ascii", "box_1M.bdf", "out_ma.vtk"],
    "gmsh -0 -o": ["gmsh", "-0", "box_1M.bdf", "-o", "out_g.vtk"],
    "tessarium info (5M-facet STL)": [exe, "info", "torus_5M.stl"],
}
times = {name: [] for name in commands}
for _ in range(5):
    for name, cmd in commands.items():
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        start = time.perf_counter()
        subprocess.run(cmd, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        wall = time.perf_counter() - start
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        cpu = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
        times[name].append((wall, cpu))
base = statistics.median(c for _, c in times["tessarium convert"])
print("| Command | Median wall | Median CPU | CPU ratio to tessarium convert |")
print("|---|---|---|---|")
for name, t in times.items():
    wall, cpu = statistics.median(w for w, _ in t), statistics.median(c for _, c in t)
    ratio = "" if name.startswith("tessarium") else "%.1fx" % (cpu / base)
    print("| `%s` | %.2f s | %.2f s | %s |" % (name, wall, cpu, ratio))
for f in ("out_t.vtk", "out_m.vtk", "out_ma.vtk", "out_g.vtk"):
    os.remove(os.path.join(folder, f))
