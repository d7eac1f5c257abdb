#!/usr/bin/env python3
"""Checks fluentload's export against its own JSON summary of the same run
(made with --pull), reading the export with VTK's readers:

  - one data set per zone, found by its ZoneNumber field, with the zone's
    name, solution time, point and cell counts;
  - every cell of a known VTK type, and 3-D cells of positive volume;
  - the coordinates' and every other variable's values equal to what the pull
    measured: same count, minimum, maximum and sum, as point or cell data by
    the variable's location.

Usage: check_export.py SUMMARY.json OUT.vtm|OUT.pvd
Prints "ok: ..." and exits 0, or prints each fault and exits 1.
"""
import json
import math
import os
import sys
import xml.etree.ElementTree as ET

import vtk

KNOWN = {vtk.VTK_VERTEX, vtk.VTK_LINE, vtk.VTK_TRIANGLE, vtk.VTK_POLYGON, vtk.VTK_QUAD, vtk.VTK_TETRA,
         vtk.VTK_HEXAHEDRON, vtk.VTK_WEDGE, vtk.VTK_PYRAMID, vtk.VTK_POLYHEDRON}
SIGNED = {vtk.VTK_TETRA, vtk.VTK_HEXAHEDRON, vtk.VTK_WEDGE, vtk.VTK_PYRAMID}

faults = []


def fault(text):
    faults.append(text)


def read(path):
    if not os.path.isfile(path):
        fault("no file " + path)
        return None
    if path.endswith(".vtm"):
        reader = vtk.vtkXMLMultiBlockDataReader()
    else:
        reader = vtk.vtkXMLUnstructuredGridReader()
    errors = vtk.vtkStringOutputWindow()
    vtk.vtkOutputWindow.SetInstance(errors)
    reader.SetFileName(path)
    reader.Update()
    if reader.GetErrorCode() != 0 or "ERROR" in errors.GetOutput():
        fault("VTK could not read %s: %s" % (path, errors.GetOutput()))
        return None
    return reader.GetOutputDataObject(0)


def grids(data):
    if isinstance(data, vtk.vtkMultiBlockDataSet):
        for b in range(data.GetNumberOfBlocks()):
            child = data.GetBlock(b)
            if child is None:
                fault("an empty block")
            else:
                yield from grids(child)
    elif data is not None:
        yield data


def close(a, b, scale):
    return a == b or abs(a - b) <= 1e-9 * max(1.0, abs(scale))


def field(grid, name):
    array = grid.GetFieldData().GetAbstractArray(name)
    if array is None or array.GetNumberOfValues() != 1:
        return None
    return array.GetValue(0) if isinstance(array, vtk.vtkStringArray) else array.GetVariantValue(0).ToDouble()


def check_values(where, values, expected):
    if len(values) != expected["count"]:
        fault("%s: %d values, the pull read %d" % (where, len(values), expected["count"]))
        return
    if not values:
        return
    lo, hi, total = min(values), max(values), math.fsum(values)
    scale = max(abs(lo), abs(hi)) * max(1, len(values))
    if not (close(lo, expected["min"], lo) and close(hi, expected["max"], hi) and close(total, expected["sum"], scale)):
        fault("%s: min %r max %r sum %r, the pull measured %r %r %r" % (
            where, lo, hi, total, expected["min"], expected["max"], expected["sum"]))


def main():
    with open(sys.argv[1]) as f:
        summary = json.load(f)
    out = sys.argv[2]
    found = {}
    if out.endswith(".pvd"):
        if not os.path.isfile(out):
            fault("no file " + out)
            print("\n".join(faults))
            sys.exit(1)
        root = ET.parse(out).getroot()
        for ds in root.find("Collection").findall("DataSet"):
            for grid in grids(read(os.path.join(os.path.dirname(out), ds.get("file")))):
                found[int(field(grid, "ZoneNumber"))] = grid
    else:
        for grid in grids(read(out)):
            found[int(field(grid, "ZoneNumber"))] = grid
    zones = summary["zones"]
    if not zones:
        fault("the summary has no zones")
    if len(found) != len(zones):
        fault("%d zones in the summary, %d data sets in the export" % (len(zones), len(found)))
    cells_total = 0
    axes = {"X": 0, "Y": 1, "Z": 2}
    for zone in zones:
        where = "zone %d %r" % (zone["number"], zone["name"])
        grid = found.get(zone["number"])
        if grid is None:
            fault(where + ": not exported")
            continue
        if field(grid, "ZoneName") != zone["name"]:
            fault(where + ": exported as %r" % field(grid, "ZoneName"))
        if field(grid, "TimeValue") != zone["solution_time"]:
            fault(where + ": time %r" % field(grid, "TimeValue"))
        if grid.GetNumberOfPoints() != zone["points"]:
            fault(where + ": %d points, the zone has %d" % (grid.GetNumberOfPoints(), zone["points"]))
        if zone["type"] != "ordered" and grid.GetNumberOfCells() != zone["elements"]:
            fault(where + ": %d cells, the zone has %d elements" % (grid.GetNumberOfCells(), zone["elements"]))
        cells_total += grid.GetNumberOfCells()
        sizes = vtk.vtkCellSizeFilter()
        sizes.SetInputData(grid)
        sizes.Update()
        volume = sizes.GetOutput().GetCellData().GetArray("Volume")
        bad_types = set()
        negative = 0
        for c in range(grid.GetNumberOfCells()):
            t = grid.GetCellType(c)
            if t not in KNOWN:
                bad_types.add(t)
            if t in SIGNED and volume.GetValue(c) <= 0.0:
                negative += 1
        if bad_types:
            fault(where + ": cells of types %s" % sorted(bad_types))
        if negative:
            fault(where + ": %d cells of volume zero or less" % negative)
        if "values" not in zone:
            fault(where + ": the summary has no values; run fluentload with --pull")
            continue
        for name, stats in zone["values"].items():
            vw = "%s, variable %r" % (where, name)
            if name in axes:
                points = [grid.GetPoint(p)[axes[name]] for p in range(grid.GetNumberOfPoints())]
                check_values(vw, points, stats)
                continue
            data = grid.GetCellData() if stats["location"] == "cell-centred" else grid.GetPointData()
            array = data.GetAbstractArray(name)
            if array is None:
                fault(vw + ": no %s array" % stats["location"])
                continue
            values = [array.GetVariantValue(k).ToDouble() for k in range(array.GetNumberOfValues())]
            if zone["type"] == "ordered" and stats["location"] == "cell-centred":
                continue  # the export keeps only the cells that exist
            check_values(vw, values, stats)
    if faults:
        print("\n".join(faults))
        sys.exit(1)
    print("ok: %d zones, %d cells" % (len(zones), cells_total))


main()
