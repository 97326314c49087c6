"""Meshes a box with gmsh and writes it to the path given second (format by extension; for .bdf
the field form given first: 0 free, 1 small, 2 large, "-" for other formats). Prints the counts gmsh holds and the sum of
all node coordinates. Exit status 77 without gmsh."""
import sys

try:
    import gmsh
except ImportError:
    sys.exit(77)

form, path = sys.argv[1], sys.argv[2]
gmsh.initialize()
gmsh.option.setNumber("General.Terminal", 0)
gmsh.model.occ.addBox(0.1, 0, 0, 1, 2, 3.3)
gmsh.model.occ.synchronize()
gmsh.option.setNumber("Mesh.MeshSizeMax", 0.7)
if form != "-":
    gmsh.option.setNumber("Mesh.BdfFieldFormat", int(form))
gmsh.model.mesh.generate(3)
gmsh.write(path)
tags, xyz, _ = gmsh.model.mesh.getNodes()
print("nodes", len(tags))
print("coordinates_sum_x1000", round(1000 * sum(xyz)))
for t, name in ((1, "edges"), (2, "triangles"), (4, "tetrahedra")):
    print(name, len(gmsh.model.mesh.getElementsByType(t)[0]))
gmsh.finalize()
