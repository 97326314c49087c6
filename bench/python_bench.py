"""Neighbours and free faces of 998,250 tetrahedra (55^3 cubes cut in six) from Python, against
the same calls from C++ (python_calls_bench, run here) and a numpy sort-based matching.
Usage: PYTHONPATH=build/python/package /usr/bin/python3 bench/python_bench.py build/bench"""

import json
import statistics
import subprocess
import sys
import time

import numpy as np

import tessarium as ts

TETS = np.array([[0, 1, 3, 7], [0, 5, 1, 7], [0, 3, 2, 7], [0, 2, 6, 7], [0, 4, 5, 7], [0, 6, 4, 7]])


def box(n):
    """The same numbering as bench/box_mesh.h: cubes x fastest, six tetrahedra per cube."""
    p = n + 1
    i, j, k = np.meshgrid(np.arange(n), np.arange(n), np.arange(n), indexing="ij")
    base = (i + p * (j + p * k)).transpose(2, 1, 0).ravel()  # x fastest
    c = np.arange(8)
    offset = (c & 1) + p * ((c >> 1 & 1) + p * (c >> 2))
    return (base[:, None, None] + offset[TETS][None]).reshape(-1, 4).astype(np.uint32)


def with_numpy(cells):
    """Faces as 63-bit keys of their sorted nodes, sorted; equal neighbours are inner faces."""
    m = len(cells)
    faces = np.sort(np.concatenate([cells[:, [b for b in range(4) if b != k]] for k in range(4)]), axis=1)
    key = (faces[:, 0].astype(np.int64) << 42) | (faces[:, 1].astype(np.int64) << 21) | faces[:, 2]
    order = np.argsort(key)
    key = key[order]
    same = key[1:] == key[:-1]
    nb = np.full(4 * m, ts.NONE, np.uint32)
    a, b = order[:-1][same], order[1:][same]
    nb[a], nb[b] = b % m, a % m
    single = np.ones(len(key), bool)
    single[1:] &= ~same
    single[:-1] &= ~same
    return nb.reshape(4, m).T, faces[order[single]]


def median_cpu(f, reps=5):
    times = []
    for _ in range(reps):
        t = time.process_time()
        f()
        times.append(time.process_time() - t)
    return statistics.median(times) * 1e3


def main():
    cells = box(55)
    nb = ts.neighbors(cells, "tetra")
    ours_nb, ours_faces = with_numpy(cells)
    assert (np.sort(nb, axis=1) == np.sort(ours_nb, axis=1)).all()
    assert len(ts.free_faces(cells, "tetra", nb)) == len(ours_faces)
    py = median_cpu(lambda: ts.free_faces(cells, "tetra", ts.neighbors(cells, "tetra")))
    npy = median_cpu(lambda: with_numpy(cells), 3)
    out = subprocess.run([sys.argv[1] + "/python_calls_bench", "--benchmark_repetitions=5",
                          "--benchmark_report_aggregates_only", "--benchmark_format=json"],
                         capture_output=True, text=True, check=True)
    rows = json.loads(out.stdout)["benchmarks"]
    cpp = next(r["cpu_time"] for r in rows if r.get("aggregate_name") == "median")
    print("%d tetrahedra, CPU ms (median): python %.0f, C++ %.0f (ratio %.2f), numpy %.0f (%.2fx slower)"
          % (len(cells), py, cpp, py / cpp, npy, npy / py))
    # Nodes renumbered at random (numpy's generator, so against numpy only).
    cells = np.random.default_rng(1).permutation(56 ** 3).astype(np.uint32)[cells]
    py = median_cpu(lambda: ts.free_faces(cells, "tetra", ts.neighbors(cells, "tetra")))
    npy = median_cpu(lambda: with_numpy(cells), 3)
    print("random numbers: python %.0f, numpy %.0f (%.2fx slower)" % (py, npy, npy / py))


if __name__ == "__main__":
    main()
