"""STL_input against VTK's STL reader and admesh on the files of `stl_bench --make DIR`, run in
turn in the same session: medians of CPU time (user + system) over RUNS rounds, and their ratios.
CPU time, not wall time, since the shared machine is loaded by other work.

    /usr/bin/python3 bench/soup_compare.py build/bench/stl_bench [RUNS]

STL_input and VTK are timed inside their processes (reading and welding only, VTK's import left
out); admesh -e is timed as a whole process (read, exact edge check, statistics).
"""
import os
import resource
import statistics
import subprocess
import sys
import tempfile

VTK_READ = r"""
import sys, time, vtk
path, clean = sys.argv[1], sys.argv[2] == "clean"
start = time.process_time()
reader = vtk.vtkSTLReader()
reader.SetFileName(path)
reader.SetMerging(0 if clean else 1)
out = reader
if clean:
    out = vtk.vtkCleanPolyData()
    out.SetInputConnection(reader.GetOutputPort())
    out.SetTolerance(1e-4)
out.Update()
print("%.4f %d" % (time.process_time() - start, out.GetOutput().GetNumberOfPoints()))
"""


def seconds(command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    out = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    whole = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    first = out.split()[0] if out.strip() else ""
    try:
        return float(first), out
    except ValueError:
        return whole, out


def main():
    bench = sys.argv[1]
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    with tempfile.TemporaryDirectory() as d:
        subprocess.run([bench, "--make", d], check=True)
        cases = [
            ("binary 1M", "torus_1M.stl", [("VTK reader, merging", "merge"), ("admesh -e", "admesh")]),
            ("binary 5M", "torus_5M.stl", [("VTK reader, merging", "merge"), ("admesh -e", "admesh")]),
            ("text 1M", "torus_1M_text.stl", [("VTK reader, merging", "merge")]),
            ("jittered 1M", "jitter_1M.stl", [("VTK reader + vtkCleanPolyData 1e-4", "clean")]),
        ]
        print("| work | STL_input | peer | peer median | ratio |")
        print("|---|---|---|---|---|")
        for name, file, peers in cases:
            path = os.path.join(d, file)
            commands = {"tessarium": [bench, "--read", path]}
            for _, kind in peers:
                if kind == "admesh":
                    commands[kind] = ["admesh", "-e", path]
                else:
                    commands[kind] = ["/usr/bin/python3", "-c", VTK_READ, path, kind]
            times = {k: [] for k in commands}
            for _ in range(runs):
                for k, command in commands.items():
                    times[k].append(seconds(command)[0])
            ours = statistics.median(times["tessarium"])
            for label, kind in peers:
                theirs = statistics.median(times[kind])
                print("| %s | %.3f s | %s | %.3f s | %.2f |" % (name, ours, label, theirs, ours / theirs))
            sys.stdout.flush()


if __name__ == "__main__":
    main()
