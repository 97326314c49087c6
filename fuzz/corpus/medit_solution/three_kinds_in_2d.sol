MeshVersionFormatted 2
Dimension 2
# sizes
SolAtVertices
2
3 1 2 3
0.5 1 2 3 4 5
0.25 6 7 8 9 10
End
