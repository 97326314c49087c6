import numpy as np
import pytest

import tessarium as ts
from conftest import box


def test_write_read_round_trip(tmp_path, cube):
    points, cells = cube
    m = ts.Mesh(points, [("tetra", cells)], cell_data={"ref": [np.arange(len(cells)) % 3 + 1]})
    ts.write(tmp_path / "box.bdf", m)
    back = ts.read(tmp_path / "box.bdf")
    np.testing.assert_allclose(back.points, points)
    assert [name for name, _ in back.cells] == ["tetra"]
    np.testing.assert_array_equal(back.cells[0][1], cells)
    np.testing.assert_array_equal(back.cell_data["ref"][0], m.cell_data["ref"][0])


def test_meshio_both_ways(tmp_path, cube):
    meshio = pytest.importorskip("meshio")
    points, cells = cube
    m = ts.Mesh(points, [("tetra", cells)], point_data={"x": points[:, 0]})
    ts.write(tmp_path / "box.vtk", m)
    theirs = meshio.read(tmp_path / "box.vtk")
    ours = m.to_meshio()
    np.testing.assert_array_equal(theirs.cells_dict["tetra"], ours.cells_dict["tetra"])
    # meshio's positive tetrahedra are the library's positive ones.
    a, b, c, d = (points[ours.cells_dict["tetra"][:, k]] for k in range(4))
    vtk_sign = np.sign(np.linalg.det(np.stack([b - a, c - a, d - a], axis=1)))
    np.testing.assert_array_equal(vtk_sign, np.sign(ts.jacobians(points, cells, "tetra")))
    back = ts.from_meshio(theirs)
    np.testing.assert_array_equal(back.cells[0][1], cells)
    np.testing.assert_allclose(back.point_data["x"], points[:, 0])
    ts.write(tmp_path / "again.bdf", ours)  # a meshio.Mesh is accepted as it is


def test_file_errors(tmp_path):
    with pytest.raises(OSError):
        ts.read(tmp_path / "missing.stl")
    (tmp_path / "bad.stl").write_bytes(b"solid x\n facet normal 0 0 1\n outer loop\n vertex 0 0\n")
    with pytest.raises(ValueError):
        ts.read(tmp_path / "bad.stl")
    points, cells = box(1)
    with pytest.raises(OSError):
        ts.write(tmp_path / "no" / "such" / "dir.vtk", ts.Mesh(points, [("tetra", cells)]))
    with pytest.raises(ValueError):
        ts.write(tmp_path / "x.unknown", ts.Mesh(points, [("tetra", cells)]))
