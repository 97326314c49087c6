$ A small mixed block for the mesh_quality example: four hexahedra whose shared top
$ node is raised (their top faces warp), a pyramid, a wedge, three tetrahedra (the last
$ one numbered the wrong way round) and a few faces on the bottom.
BEGIN BULK
GRID,1,,0.,0.,0.
GRID,2,,1.,0.,0.
GRID,3,,2.,0.,0.
GRID,4,,0.,1.,0.
GRID,5,,1.,1.,0.
GRID,6,,2.,1.,0.
GRID,7,,0.,2.,0.
GRID,8,,1.,2.,0.
GRID,9,,2.,2.,0.
GRID,10,,0.,0.,1.
GRID,11,,1.,0.,1.
GRID,12,,2.,0.,1.
GRID,13,,0.,1.,1.
GRID,14,,1.,1.,1.3
GRID,15,,2.,1.,1.
GRID,16,,0.,2.,1.
GRID,17,,1.,2.,1.
GRID,18,,2.,2.,1.
GRID,19,,0.5,0.5,1.7
GRID,20,,0.,1.,2.
GRID,21,,1.,2.,2.
GRID,22,,0.,2.,2.
GRID,23,,1.5,0.5,1.8
GRID,24,,1.7,1.7,1.6
$ Bottom faces
CQUAD4,1,1,1,4,5,2
CQUAD4,2,1,2,5,6,3
CTRIA3,3,1,4,7,8
CTRIA3,4,1,5,8,9
$ The block
CHEXA,5,2,1,2,5,4,10,11,+
+,14,13
CHEXA,6,2,2,3,6,5,11,12,+
+,15,14
CHEXA,7,2,4,5,8,7,13,14,+
+,17,16
CHEXA,8,2,5,6,9,8,14,15,+
+,18,17
$ On top
CPYRA,9,3,10,11,14,13,19
CPENTA,10,3,13,17,16,20,21,22
CTETRA,11,3,11,12,15,23
CTETRA,12,3,11,15,14,23
CTETRA,13,3,15,17,18,24
ENDDATA
