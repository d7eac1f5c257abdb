#!/usr/bin/python3
"""Reads one Fluent case and data pair with VTK's reader (vtk.vtkFLUENTReader),
every cell array enabled, and reports how long its Update() took.

  peer_read.py CASE

The reader finds the data file itself: CASE with ".cas" replaced by ".dat".
Output, one line of JSON:
  {"seconds": wall time of Update(),
   "rss_before_kb": peak resident memory of this process before Update(),
   "cells": cells of all blocks, "points": points of all blocks,
   "arrays": names of the cell arrays in the output,
   "selectable": number of cell arrays the reader offered}
Exit status 3 when vtk cannot be imported, 1 when the reader gave no output.
"""
import json
import resource
import sys
import time

try:
    import vtk
except ImportError:
    sys.exit(3)


def main():
    if len(sys.argv) != 2:
        sys.stderr.write("usage: peer_read.py CASE\n")
        return 2
    vtk.vtkObject.GlobalWarningDisplayOff()
    reader = vtk.vtkFLUENTReader()
    reader.SetFileName(sys.argv[1])
    # Arrays the reader finds are enabled by default; this keeps it so.
    reader.EnableAllCellArrays()
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    start = time.perf_counter()
    reader.Update()
    seconds = time.perf_counter() - start

    output = reader.GetOutput()
    if output is None:
        return 1
    cells = 0
    points = 0
    arrays = set()
    it = output.NewIterator()
    it.InitTraversal()
    while not it.IsDoneWithTraversal():
        block = it.GetCurrentDataObject()
        cells += block.GetNumberOfCells()
        points += block.GetNumberOfPoints()
        data = block.GetCellData()
        for i in range(data.GetNumberOfArrays()):
            arrays.add(data.GetArrayName(i))
        it.GoToNextItem()
    print(json.dumps({"seconds": seconds, "rss_before_kb": before, "cells": cells, "points": points,
                      "arrays": sorted(arrays), "selectable": reader.GetNumberOfCellArrays()}))
    return 0


if __name__ == "__main__":
    sys.exit(main())
