"""Runs the tessarium program on the shipped sample files and on small decks written here.
Usage: cli_test.py TESSARIUM EXAMPLES_DATA"""
import json
import math
import os
import subprocess
import sys
import tempfile

exe, data = sys.argv[1], sys.argv[2]
tmp = tempfile.mkdtemp()
failures = []


def run(*args):
    p = subprocess.run([exe, *args], capture_output=True, text=True, cwd=tmp)
    return p.returncode, p.stdout, p.stderr


def check(cond, what):
    if not cond:
        failures.append(what)


def info(path):
    code, out, err = run("info", "--json", path)
    check(code == 0, "info %s: %s" % (path, err))
    return json.loads(out) if code == 0 else {}


def deck(name, grids, cards):
    """A free-field NASTRAN deck: grids as coordinates, cards as (name, nodes) with 1-based nodes."""
    lines = ["BEGIN BULK"]
    lines += ["GRID,%d,,%r,%r,%r" % (i + 1, *p) for i, p in enumerate(grids)]
    lines += ["%s,%d,1,%s" % (c, e + 1, ",".join(map(str, n))) for e, (c, n) in enumerate(cards)]
    with open(os.path.join(tmp, name), "w") as f:
        f.write("\n".join(lines + ["ENDDATA", ""]))
    return name


unit = [(0.0, 0.0, 0.0), (1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0)]

# Shipped samples: counts taken from the files' own cards, geometry from their construction.
sample = os.path.join(data, "quality_block.nas")
with open(sample) as f:
    cards = [line.split(",")[0].split()[0].rstrip("*") for line in f if line[:1].isalpha()]
j = info(sample)
check(j.get("nodes") == cards.count("GRID"), "quality_block nodes")
check(j.get("types", {}).get("tetrahedra") == cards.count("CTETRA"), "quality_block tetrahedra")
check(j.get("types", {}).get("hexahedra") == cards.count("CHEXA"), "quality_block hexahedra")
j = info(os.path.join(data, "cube.stl"))
check(j.get("bounding_box") == {"min": [0, 0, 0], "max": [1, 1, 1]}, "cube box")
check((j.get("free_edges"), j.get("non_manifold_edges"), j.get("pieces")) == (0, 0, 1), "cube closed")
check(info(os.path.join(data, "three_parts.stl")).get("pieces") == 3, "three parts")

# Three and four triangles on one edge: one non-manifold edge, two free edges per triangle.
for k in (3, 4):
    fan = [(0.0, 0.0, 0.0), (0.0, 0.0, 1.0)] + [(1.0, float(i), 0.0) for i in range(k)]
    j = info(deck("fan%d.bdf" % k, fan, [("CTRIA3", (1, 2, 3 + i)) for i in range(k)]))
    check((j.get("non_manifold_edges"), j.get("free_edges")) == (1, 2 * k), "fan of %d" % k)

# A soup: triangle (4,5,6) repeats nodes 2 and 3 of (1,2,3), triangle (1,1,2) is degenerate, node 7 unused.
soup = unit[:3] + [unit[1], unit[2], (1.0, 1.0, 0.0), (5.0, 5.0, 5.0)]
deck("soup.bdf", soup, [("CTRIA3", (1, 2, 3)), ("CTRIA3", (4, 6, 5)), ("CTRIA3", (1, 1, 2))])
j = info("soup.bdf")
check((j.get("unused_nodes"), j.get("duplicate_nodes", {}).get("coincident")) == (1, 2), "soup before")
code, out, err = run("repair", "soup.bdf", "fixed.obj")
check(code == 0 and out.startswith("merged 2 nodes") and "removed 1 degenerate elements and 3 unused nodes: "
      "4 nodes, 2 elements" in out, "repair said: " + out + err)
j = info("fixed.obj")
check((j.get("nodes"), j.get("elements"), j.get("free_edges")) == (4, 2, 4), "repaired soup")

# Round trips read back.
for out in ("cube.obj", "cube.bdf", "cube.neu", "cube_bin.stl"):
    extra = ["--binary"] if out.endswith(".stl") else []
    code, _, err = run("convert", os.path.join(data, "cube.stl"), out, *extra)
    j = info(out)
    check(code == 0 and (j.get("nodes"), j.get("elements")) == (26, 48), "round trip " + out + err)
code, _, _ = run("convert", "--faithful", sample, "block.bdf")
check(code == 0 and info("block.bdf").get("types") == info(sample).get("types"), "faithful round trip")

# Two tetrahedra on one face: a skin of 6 triangles on 5 nodes; the second, regular, is inverted (-1).
deck("two.bdf", unit + [(1.0, 1.0, 1.0)], [("CTETRA", (1, 2, 3, 4)), ("CTETRA", (2, 4, 3, 5))])
for args in (["skin", "two.bdf", "skin.obj"], ["convert", "--skin", "two.bdf", "skin2.obj"]):
    code, _, err = run(*args)
    j = info(args[-1])
    check(code == 0 and (j.get("nodes"), j.get("types")) == (5, {"triangles": 6}), " ".join(args) + err)
deck("tet.bdf", unit, [("CTETRA", (1, 2, 3, 4))])
code, out, _ = run("quality", "--worst", "1", "two.bdf")
check(code == 0 and "1 inverted" in out and out.splitlines()[-1].split() == ["2", "tetrahedra", "-1"],
      "quality: " + out)

# Transforms: box of the unit cube scaled by 2 then moved by x + 1; a mirror keeps elements right side out.
run("transform", "--scale", "2", "--translate", "1", "0", "0", os.path.join(data, "cube.stl"), "moved.stl")
check(info("moved.stl").get("bounding_box") == {"min": [1, 0, 0], "max": [3, 2, 2]}, "transform box")
run("transform", "--mirror", "1", "0", "0", "tet.bdf", "mirrored.bdf")
j = info("mirrored.bdf")
check(j.get("inverted") == 0 and j.get("bounding_box", {}).get("min") == [-1, 0, 0], "mirror")

# Grading: triangles (1,2,3) frozen by reference 7, node 4 at distance 1 from nodes 2 and 3 of size 1.
# With sizes 1 and h over length 1 the growth per unit metric length is exp(h - 1), so a bound of
# 0.5 on the shock brings h = 10 down to 1 + ln 1.5.
grids = [(0.0, 0.0, 0.0), (1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (1.0, 1.0, 0.0)]
lines = ["BEGIN BULK"] + ["GRID,%d,,%r,%r,%r" % (i + 1, *p) for i, p in enumerate(grids)]
with open(os.path.join(tmp, "g.bdf"), "w") as f:
    f.write("\n".join(lines + ["CTRIA3,1,7,1,2,3", "CTRIA3,2,1,2,4,3", "ENDDATA", ""]))
with open(os.path.join(tmp, "g.sol"), "w") as f:
    f.write("MeshVersionFormatted 2\nDimension 3\nSolAtVertices\n4\n1 1\n0.1\n1\n1\n10\nEnd\n")
code, out, err = run("grade", "--bound", "0.5", "--frozen-refs", "7", "g.bdf", "g.sol", "graded.sol")
with open(os.path.join(tmp, "graded.sol")) as f:
    sizes = [float(w) for w in f.read().split("SolAtVertices")[1].split()[3:7]]
check(code == 0 and sizes[:3] == [0.1, 1, 1] and abs(sizes[3] - (1 + math.log(1.5))) < 1e-12, "grade %s" % sizes)

# Refusals: exit code, and one line on stderr that names the problem.
with open(os.path.join(tmp, "text.stl"), "w") as f:
    f.write("hello\n")
for args, code, first in [
    ([], 2, "tessarium: "),
    (["info", "missing.stl"], 1, "tessarium: missing.stl"),
    (["info", "."], 1, "tessarium: ."),
    (["info", "text.stl"], 1, "tessarium: text.stl"),
    (["convert", "tet.bdf", "out.xyz"], 1, "tessarium: out.xyz"),
    (["convert", "tet.bdf", "no/such/dir/out.obj"], 1, "tessarium: no/such/dir/out.obj"),
    (["convert", "--bogus", "tet.bdf", "x.obj"], 2, "tessarium: "),
    (["repair", "--tol", "1", "--rel-tol", "1", "tet.bdf", "x.obj"], 2, "tessarium: "),
    (["transform", "--rotate", "0", "0", "0", "90", "tet.bdf", "x.obj"], 1, "tessarium: --rotate"),
    (["transform", "--rotate", "1", "2", "tet.bdf", "x.obj"], 2, "tessarium: "),
    (["frobnicate"], 2, "tessarium: "),
    (["grade", "--bound", "0.5", "g.bdf", "tet.bdf", "x.sol"], 1, "tessarium: tet.bdf: not a Medit solution"),
    (["grade", "g.bdf", "g.sol", "x.sol"], 2, "tessarium: "),
]:
    got, out, err = run(*args)
    lines = err.splitlines()
    check(got == code and len(lines) == 1 and lines[0].startswith(first) and out == "",
          "%s: exit %d, stderr %r" % (args, got, err))
leftovers = [n for n in os.listdir(tmp) if n in ("out.xyz", "x.obj") or n.startswith(".")]
check(not leftovers, "files left behind: %s" % leftovers)

for sub in ("info", "convert", "skin", "repair", "quality", "transform", "grade"):
    code, out, _ = run(sub, "--help")
    check(code == 0 and "Example: tessarium " + sub in out, sub + " --help")
code, out, _ = run("--version")
check(code == 0 and out.startswith("tessarium "), "--version")

for f in failures:
    print("FAILED:", f)
sys.exit(1 if failures else 0)
