#!/usr/bin/python3
"""Checks fluentload's VTK export of a case and data pair against VTK's own
Fluent reader (vtk.vtkFLUENTReader).

  check_pair_export.py CASE DATA OUT.vtm [--no-vtk-data] [--one-of=ID,ID,...]

CASE and DATA are plain files of one base name in one folder, as VTK's
reader wants a pair. The export is read back with VTK's XML readers, and:

  - its first blocks, one per cell zone, hold the cells VTK's reader builds,
    cell by cell, compared by the coordinates of their points (VTK's cells
    from tests/casefile/vtk_cells.py);
  - every cell array VTK's reader gives for a cell zone is among the cell
    arrays of the export's block, component by component, value for value
    (VTK's arrays from tests/datafile/fluent_arrays.py), except the arrays
    of sections whose numbers run into their end marker, which the loader
    refuses; with --no-vtk-data (a pair VTK's reader cannot read) the arrays
    are not compared; with --one-of=ID,ID,... (field ids that Fluent names
    alike, such as 103 and 500, both "Turbulent Viscosity": one variable
    shows the first of them in a zone) one of those fields of a block
    suffices;
  - every three-dimensional cell of every block has a positive volume as
    vtkCellSizeFilter computes it.

Prints a line of what it compared; exits 1 after the first kind of
difference, with what differs.
"""

import os
import subprocess
import sys
import tempfile

import numpy
import vtk
from vtk.util.numpy_support import vtk_to_numpy

HERE = os.path.dirname(os.path.abspath(__file__))
TESTS = os.path.dirname(HERE)


def fail(text):
    print("FAIL: " + text)
    sys.exit(1)


def read_export(vtm):
    reader = vtk.vtkXMLMultiBlockDataReader()
    reader.SetFileName(vtm)
    reader.Update()
    output = reader.GetOutput()
    blocks = [output.GetBlock(b) for b in range(output.GetNumberOfBlocks())]
    if not blocks or any(b is None for b in blocks):
        fail("the export %s does not open as a multiblock data set of zones" % vtm)
    return blocks


def vtk_cells(case, folder):
    """VTK's cells: its global points and, per cell zone, the point ids of each cell."""
    out = os.path.join(folder, "vtk-cells.txt")
    subprocess.run(["/usr/bin/python3", os.path.join(TESTS, "casefile", "vtk_cells.py"), case, out], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    with open(out) as f:
        words = f.read().split("\n")
    count = int(words[0].split()[1])
    points = numpy.array([[float(v) for v in line.split()] for line in words[1:1 + count]], dtype=numpy.float32)
    at = 1 + count
    blocks = []
    nblocks = int(words[at].split()[1])
    at += 1
    for _ in range(nblocks):
        ncells = int(words[at].split()[2])
        at += 1
        cells = [[int(v) for v in line.split()[1:]] for line in words[at:at + ncells]]
        at += ncells
        blocks.append(cells)
    return points, blocks


def dump(mode, name, folder):
    out = os.path.join(folder, mode + ".txt")
    subprocess.run(["/usr/bin/python3", os.path.join(TESTS, "datafile", "fluent_arrays.py"), mode, name, out],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    items = []
    with open(out) as f:
        for line in f:
            line = line.rstrip("\n")
            if line and (line[0].isdigit() or line[0] in "-." or line in ("nan", "inf")):
                items[-1][1].append(float(line))
            else:
                items.append((line.split(), []))
    return items


def cell_point_set(grid, cell):
    ids = grid.GetCell(cell).GetPointIds()
    points = grid.GetPoints()
    return {tuple(numpy.float32(points.GetPoint(ids.GetId(k)))) for k in range(ids.GetNumberOfIds())}


def check_cells(export, points, vtk_blocks):
    compared = 0
    for b, cells in enumerate(vtk_blocks):
        grid = export[b]
        if grid.GetNumberOfCells() != len(cells):
            fail("block %d has %d cells, VTK's reader %d" % (b, grid.GetNumberOfCells(), len(cells)))
        for c, ids in enumerate(cells):
            theirs = {tuple(points[i]) for i in ids}
            ours = cell_point_set(grid, c)
            if ours != theirs:
                fail("cell %d of block %d has the points %s, VTK's reader %s" % (c + 1, b, sorted(ours),
                                                                                sorted(theirs)))
            compared += 1
    return compared


def cell_zone_ids(case):
    """The ids of the cell zones of a case, in file order (the order of VTK's blocks)."""
    import re
    with open(case, "rb") as f:
        data = f.read()
    ids = []
    for m in re.finditer(rb"\((?:20|30)?12\s*\(\s*([0-9a-fA-F]+)\s+[0-9a-fA-F]+\s+[0-9a-fA-F]+\s+[0-9a-fA-F]+",
                         data):
        zone = int(m.group(1), 16)
        if zone > 0 and zone not in ids:
            ids.append(zone)
    return ids


def check_arrays(export, case, data, folder, alike):
    raw = [words for words, _ in dump("raw", data, folder) if words and words[0] == "field"]
    zones = cell_zone_ids(case)
    # Sections the loader refuses: numbers that run two bytes or more into
    # the end marker; the section behind such a one is not seen at all.
    refused = set()
    for words in raw:
        if int(words[7]) <= -2:
            refused.add((int(words[3]), int(words[2])))
    # VTK's names: the distinct field ids of the cell zones in data file
    # order, fields of two components left out; its k-th name is the k-th id.
    listed = []
    for words in raw:
        fid, zone, dim = int(words[2]), int(words[3]), int(words[4])
        if zone in zones and dim != 2 and int(words[1]) % 1000 == 300 and fid not in listed:
            listed.append(fid)
    items = dump("vtk", case, folder)
    names = [words[2] for words, _ in items if words and words[0] == "name"]
    if len(names) != len(listed):
        fail("VTK's reader names %d arrays, the data file has %d listed fields" % (len(names), len(listed)))
    compared = 0
    seen = {}
    missing = {}  # block -> field ids of names alike whose arrays are not in the export
    present = {}  # block -> field ids of names alike whose arrays are
    for words, values in items:
        if not words or words[0] != "array":
            continue
        block, name, components, tuples = int(words[1]), words[2], int(words[3]), int(words[4])
        occurrence = seen.get((block, name), 0)
        seen[(block, name)] = occurrence + 1
        fid = [listed[k] for k, n in enumerate(names) if n == name][occurrence]
        if (zones[block], fid) in refused:
            continue
        cell_data = export[block].GetCellData()
        with numpy.errstate(over="ignore"):  # values beyond single precision become infinities on both sides
            ours = [vtk_to_numpy(cell_data.GetArray(a)).astype(numpy.float32)
                    for a in range(cell_data.GetNumberOfArrays())]
            theirs = numpy.array(values, dtype=numpy.float32).reshape(tuples, components)
        for c in range(components):
            column = theirs[:, c]
            found = any(a.shape == column.shape and numpy.array_equal(a, column) for a in ours)
            if fid in alike:
                (present if found else missing).setdefault(block, set()).add(fid)
            elif not found:
                fail("VTK's array %s (field %d, component %d) of block %d is not in the export" % (name, fid, c,
                                                                                                    block))
            compared += 1
    for block, fids in missing.items():
        if not present.get(block):
            fail("none of the fields %s of block %d is in the export" % (sorted(fids), block))
    if compared == 0:
        fail("no array of VTK's reader was compared")
    return compared


def check_volumes(export):
    checked = 0
    for b, grid in enumerate(export):
        sizes = vtk.vtkCellSizeFilter()
        sizes.SetInputData(grid)
        sizes.ComputeVertexCountOff()
        sizes.ComputeLengthOff()
        sizes.ComputeAreaOff()
        sizes.ComputeVolumeOn()
        sizes.Update()
        volumes = vtk_to_numpy(sizes.GetOutput().GetCellData().GetArray("Volume"))
        for c in range(grid.GetNumberOfCells()):
            if grid.GetCell(c).GetCellDimension() != 3:
                continue
            if not volumes[c] > 0.0:
                fail("cell %d of block %d has the volume %r" % (c + 1, b, float(volumes[c])))
            checked += 1
    return checked


def main():
    args = [a for a in sys.argv[1:] if not a.startswith("--")]
    with_data = "--no-vtk-data" not in sys.argv
    alike = set()
    for a in sys.argv[1:]:
        if a.startswith("--one-of="):
            alike.update(int(v) for v in a[len("--one-of="):].split(","))
    case, data, vtm = args
    vtk.vtkObject.GlobalWarningDisplayOff()
    export = read_export(vtm)
    with tempfile.TemporaryDirectory() as folder:
        points, vtk_blocks = vtk_cells(case, folder)
        if len(export) < len(vtk_blocks):
            fail("the export has %d blocks, VTK's reader %d cell zones" % (len(export), len(vtk_blocks)))
        cells = check_cells(export, points, vtk_blocks)
        arrays = check_arrays(export, case, data, folder, alike) if with_data else 0
    volumes = check_volumes(export)
    print("%d blocks; %d cells as VTK's reader builds them; %d arrays of VTK's reader; %d volumes positive" %
          (len(export), cells, arrays, volumes))


if __name__ == "__main__":
    main()
