"""Reads Fluent case files (and the .dat beside each) with VTK's reader and prints
what it found, in a line format the fluentgen tests parse:

    FILE <path>
    BLOCK <index> <cells> <points>
    CELL <vtk type> <measure> <n> <point id> ... (point id = Fluent node number - 1; measure:
                                                 signed area or volume by VTK's own faces, nan
                                                 for polygons and polyhedra)
    POINT <id> <x> <y> <z>                      (only points that cells use)
    ARRAY <name> <components> <tuples>
    <value> ...                                  (one tuple a line)
    END

Usage: vtk_read.py CASE [CASE ...]; exit status 3 when vtk cannot be imported.
"""
import sys

try:
    import vtk
except ImportError:
    sys.exit(3)

vtk.vtkObject.GlobalWarningDisplayOff()


def measure(cell):
    """Signed area (triangle, quad) or volume (by the divergence over VTK's faces)."""
    t = cell.GetCellType()
    if t in (5, 9):
        pts = [cell.GetPoints().GetPoint(k) for k in range(cell.GetNumberOfPoints())]
        n = len(pts)
        return sum(pts[k][0] * pts[(k + 1) % n][1] - pts[(k + 1) % n][0] * pts[k][1] for k in range(n)) / 2.0
    if t in (10, 12, 13, 14):
        v = 0.0
        for f in range(cell.GetNumberOfFaces()):
            face = cell.GetFace(f)
            p = [face.GetPoints().GetPoint(k) for k in range(face.GetNumberOfPoints())]
            for k in range(1, len(p) - 1):
                a, b, c = p[0], p[k], p[k + 1]
                v += (a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0])
                      + a[2] * (b[0] * c[1] - b[1] * c[0])) / 6.0
        return v
    return float("nan")


def dump(path, out):
    reader = vtk.vtkFLUENTReader()
    reader.SetFileName(path)
    reader.EnableAllCellArrays()
    reader.Update()
    mb = reader.GetOutput()
    out.write("FILE %s\n" % path)
    for b in range(mb.GetNumberOfBlocks()):
        grid = mb.GetBlock(b)
        if grid is None:
            out.write("BLOCK %d 0 0\n" % b)
            continue
        ncells = grid.GetNumberOfCells()
        out.write("BLOCK %d %d %d\n" % (b, ncells, grid.GetNumberOfPoints()))
        used = set()
        ids = vtk.vtkIdList()
        for c in range(ncells):
            grid.GetCellPoints(c, ids)
            pts = [ids.GetId(k) for k in range(ids.GetNumberOfIds())]
            used.update(pts)
            out.write("CELL %d %.17g %d %s\n" % (grid.GetCellType(c), measure(grid.GetCell(c)), len(pts),
                                                " ".join(str(p) for p in pts)))
        points = grid.GetPoints()
        for p in sorted(used):
            x, y, z = points.GetPoint(p)
            out.write("POINT %d %.17g %.17g %.17g\n" % (p, x, y, z))
        data = grid.GetCellData()
        for a in range(data.GetNumberOfArrays()):
            arr = data.GetArray(a)
            nc = arr.GetNumberOfComponents()
            nt = arr.GetNumberOfTuples()
            out.write("ARRAY %s %d %d\n" % (arr.GetName(), nc, nt))
            for t in range(nt):
                out.write(" ".join("%.17g" % arr.GetComponent(t, k) for k in range(nc)) + "\n")
    out.write("END\n")


def main():
    for path in sys.argv[1:]:
        dump(path, sys.stdout)
    sys.stdout.flush()


if __name__ == "__main__":
    main()
