"""Writes the inputs of the command-line benchmark into a folder: box_1M.bdf, a small-field NASTRAN
deck of about 1M tetrahedra (six per cell of a 55^3 grid), and torus_5M.stl, a closed binary STL
torus of 5,000,000 facets (1250 x 2000 quadrangles, two triangles each)."""
import sys

import numpy as np


def box_deck(path, n=55):
    g = np.linspace(0.0, 1.0, n + 1)
    z, y, x = np.meshgrid(g, g, g, indexing="ij")
    with open(path, "w") as f:
        f.write("BEGIN BULK\n")
        ids = np.arange(1, (n + 1) ** 3 + 1)
        rows = zip(ids, x.ravel(), y.ravel(), z.ravel())
        f.writelines("GRID    %8d        %8.6f%8.6f%8.6f\n" % r for r in rows)
        i, j, k = np.meshgrid(np.arange(n), np.arange(n), np.arange(n), indexing="ij")
        base = (i * (n + 1) + j) * (n + 1) + k + 1
        c = [base + dz * (n + 1) ** 2 + dy * (n + 1) + dx
             for dz, dy, dx in [(0, 0, 0), (0, 0, 1), (0, 1, 1), (0, 1, 0),
                                (1, 0, 0), (1, 0, 1), (1, 1, 1), (1, 1, 0)]]
        c = np.stack([a.ravel() for a in c], axis=1)
        tets = [(0, 1, 2, 6), (0, 2, 3, 6), (0, 3, 7, 6), (0, 7, 4, 6), (0, 4, 5, 6), (0, 5, 1, 6)]
        t = np.concatenate([c[:, list(q)] for q in tets])
        eids = np.arange(1, len(t) + 1)
        f.writelines("CTETRA  %8d       1%8d%8d%8d%8d\n" % (e, *r) for e, r in zip(eids, t))
        f.write("ENDDATA\n")


def torus_stl(path, nu=1250, nv=2000):
    u = np.linspace(0.0, 2 * np.pi, nu, endpoint=False)
    v = np.linspace(0.0, 2 * np.pi, nv, endpoint=False)
    U, V = np.meshgrid(u, v, indexing="ij")
    p = np.stack([(2 + np.cos(V)) * np.cos(U), (2 + np.cos(V)) * np.sin(U), np.sin(V)], axis=-1)
    a = p
    b = np.roll(p, -1, axis=0)
    c = np.roll(np.roll(p, -1, axis=0), -1, axis=1)
    d = np.roll(p, -1, axis=1)
    tri = np.concatenate([np.stack([a, b, c], axis=2).reshape(-1, 3, 3),
                          np.stack([a, c, d], axis=2).reshape(-1, 3, 3)])
    rec = np.zeros(len(tri), dtype=[("n", "<f4", 3), ("v", "<f4", (3, 3)), ("a", "<u2")])
    rec["v"] = tri
    with open(path, "wb") as f:
        f.write(b"torus".ljust(80, b" "))
        f.write(np.uint32(len(tri)).tobytes())
        f.write(rec.tobytes())


if __name__ == "__main__":
    folder = sys.argv[1] if len(sys.argv) > 1 else "."
    box_deck(folder + "/box_1M.bdf")
    torus_stl(folder + "/torus_5M.stl")
