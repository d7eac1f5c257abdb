#!/usr/bin/env python3
"""Reads VTK XML files with VTK's own readers and prints what they hold, one
fact per line, fields separated by tabs:

  step    TIME  FILE                     (a .pvd: each of its data sets, then that file's blocks)
  block   PATH  POINTS  CELLS            (PATH: block names joined by '/')
  points  x y z x y z ...
  cell    I  TYPE  POINT...
  faces   I  STREAM...                   (polyhedra: VTK's face stream)
  volume  I  V                           (3-D cells: VTK's own signed measure)
  valid   I  STATE                       (3-D cells: vtkCellValidator's state, 0 when sound)
  pointdata / celldata  NAME  TYPE  COMPONENTS  VALUE...
  field   NAME  VALUE...

Usage: vtk_describe.py FILE (.vtm, .vtu or .pvd)
"""
import os
import sys
import xml.etree.ElementTree as ET

import vtk
from vtk.util.numpy_support import vtk_to_numpy  # noqa: F401  (fails early without numpy support)


def num(v):
    return repr(float(v)) if isinstance(v, float) else str(v)


def describe_grid(path, grid, out):
    n_points = grid.GetNumberOfPoints()
    n_cells = grid.GetNumberOfCells()
    out.append("block\t%s\t%d\t%d" % (path, n_points, n_cells))
    coords = []
    for i in range(n_points):
        coords.extend(grid.GetPoint(i))
    out.append("points\t" + " ".join(repr(c) for c in coords))
    ids = vtk.vtkIdList()
    for c in range(n_cells):
        cell_type = grid.GetCellType(c)
        grid.GetCellPoints(c, ids)
        out.append("cell\t%d\t%d\t%s" % (c, cell_type, " ".join(str(ids.GetId(k)) for k in range(ids.GetNumberOfIds()))))
        if cell_type == vtk.VTK_POLYHEDRON:
            stream = vtk.vtkIdList()
            grid.GetFaceStream(c, stream)
            out.append("faces\t%d\t%s" % (c, " ".join(str(stream.GetId(k)) for k in range(stream.GetNumberOfIds()))))
    if n_cells > 0:
        sizes = vtk.vtkCellSizeFilter()
        sizes.SetInputData(grid)
        sizes.ComputeVertexCountOff()
        sizes.ComputeLengthOff()
        sizes.ComputeAreaOff()
        sizes.ComputeVolumeOn()
        sizes.Update()
        volumes = sizes.GetOutput().GetCellData().GetArray("Volume")
        validator = vtk.vtkCellValidator()
        validator.SetInputData(grid)
        validator.Update()
        states = validator.GetOutput().GetCellData().GetArray("ValidityState")
        for c in range(n_cells):
            if grid.GetCell(c).GetCellDimension() == 3:
                out.append("volume\t%d\t%r" % (c, volumes.GetValue(c)))
                out.append("valid\t%d\t%d" % (c, states.GetValue(c)))
    for kind, data in (("pointdata", grid.GetPointData()), ("celldata", grid.GetCellData())):
        for a in range(data.GetNumberOfArrays()):
            array = data.GetAbstractArray(a)
            values = [array.GetVariantValue(k).ToDouble() for k in range(array.GetNumberOfValues())]
            out.append("%s\t%s\t%s\t%d\t%s" % (kind, array.GetName(), array.GetDataTypeAsString(),
                                               array.GetNumberOfComponents(), " ".join(num(v) for v in values)))
    fields = grid.GetFieldData()
    for a in range(fields.GetNumberOfArrays()):
        array = fields.GetAbstractArray(a)
        if isinstance(array, vtk.vtkStringArray):
            values = [array.GetValue(k) for k in range(array.GetNumberOfValues())]
        else:
            values = [num(array.GetVariantValue(k).ToDouble()) for k in range(array.GetNumberOfValues())]
        out.append("field\t%s\t%s" % (array.GetName(), "\t".join(values)))


def describe_composite(path, data, out):
    if isinstance(data, vtk.vtkMultiBlockDataSet):
        for b in range(data.GetNumberOfBlocks()):
            name = ""
            meta = data.GetMetaData(b) if data.HasMetaData(b) else None
            if meta is not None and meta.Has(vtk.vtkCompositeDataSet.NAME()):
                name = meta.Get(vtk.vtkCompositeDataSet.NAME())
            child = data.GetBlock(b)
            child_path = name if not path else path + "/" + name
            if child is None:
                out.append("block\t%s\tmissing\tmissing" % child_path)
            else:
                describe_composite(child_path, child, out)
    else:
        describe_grid(path, data, out)


def read(path):
    if path.endswith(".vtm"):
        reader = vtk.vtkXMLMultiBlockDataReader()
    elif path.endswith(".vtu"):
        reader = vtk.vtkXMLUnstructuredGridReader()
    else:
        raise SystemExit("unknown file kind: " + path)
    errors = vtk.vtkStringOutputWindow()
    vtk.vtkOutputWindow.SetInstance(errors)
    reader.SetFileName(path)
    reader.Update()
    text = errors.GetOutput()
    if "ERROR" in text or reader.GetErrorCode() != 0:
        raise SystemExit("VTK could not read %s: %s" % (path, text))
    return reader.GetOutputDataObject(0)


def main():
    path = sys.argv[1]
    out = []
    if path.endswith(".pvd"):
        root = ET.parse(path).getroot()
        if root.get("type") != "Collection":
            raise SystemExit("not a collection: " + path)
        for ds in root.find("Collection").findall("DataSet"):
            file = os.path.join(os.path.dirname(path), ds.get("file"))
            out.append("step\t%s\t%s" % (ds.get("timestep"), ds.get("file")))
            describe_composite("", read(file), out)
    else:
        describe_composite("", read(path), out)
    sys.stdout.write("\n".join(out) + "\n")


main()
