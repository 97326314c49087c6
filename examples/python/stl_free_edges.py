"""Reads an STL file, welds it, reports its free edges, pieces and worst triangle, and writes it
as VTK (and, when meshio is installed, hands it to meshio).

    PYTHONPATH=build/python/package /usr/bin/python3 examples/python/stl_free_edges.py [in.stl] [out.vtk]
"""

import os
import sys

import numpy as np

import tessarium as ts

here = os.path.dirname(os.path.abspath(__file__))
source = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "data", "cube.stl")
target = sys.argv[2] if len(sys.argv) > 2 else "welded.vtk"

mesh = ts.read(source)  # the STL reader welds the soup already
triangles = mesh.cells[0][1]
points, triangles = ts.weld(mesh.points, triangles, "triangle", tol=1e-9)
free = ts.free_faces(triangles, "triangle")
pieces = ts.subdomains(triangles, "triangle")
quality = ts.quality(points, triangles, "triangle")
print("%s: %d points, %d triangles, %d pieces" % (source, len(points), len(triangles), len(pieces)))
print("free edges: %d%s" % (len(free), "" if len(free) else " (closed surface)"))
print("worst triangle %d, quality %.3f" % (np.argmin(quality), quality.min()))

out = ts.Mesh(points, [("triangle", triangles)], cell_data={"quality": [quality]})
ts.write(target, out)
print("wrote", target)
try:
    m = out.to_meshio()
    print("meshio:", m)
except ImportError:
    pass
