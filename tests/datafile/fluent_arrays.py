#!/usr/bin/python3
"""Dumps the cell arrays of a Fluent case and data pair for the data file tests.

  fluent_arrays.py vtk CASE OUT   the arrays of every block as VTK's reader
                                  (vtk.vtkFLUENTReader) gives them; the data
                                  file must have the case's base name
  fluent_arrays.py raw DATA OUT   the numbers of every Data section (300, 314
                                  families) and Residuals section (301, 302
                                  families) in file order, read by this script

Output, one item a line:
  name I NAME                     (vtk) the reader's cell arrays, in its order
  block B CELLS                   (vtk) block number and its cell count
  array B NAME COMPONENTS TUPLES  (vtk) followed by COMPONENTS*TUPLES values, tuple by tuple
  field ID FIELD ZONE DIM FIRST LAST GAP  (raw) followed by (LAST-FIRST+1)*DIM values as stored;
                                  GAP < 0: the binary numbers run into the end marker
  residual ID ROWS RESID WIDTH    (raw) followed by the body's numbers as stored
Values are written with repr(), which reads back to the same double.
"""

import re
import struct
import sys


def dump_vtk(case_name, out):
    import vtk

    reader = vtk.vtkFLUENTReader()
    reader.SetFileName(case_name)
    reader.EnableAllCellArrays()
    reader.Update()
    for i in range(reader.GetNumberOfCellArrays()):
        name = reader.GetCellArrayName(i) or "-"
        out.write(f"name {i} {name.replace(' ', '_')}\n")
    output = reader.GetOutput()
    for b in range(output.GetNumberOfBlocks()):
        block = output.GetBlock(b)
        if block is None:
            continue
        out.write(f"block {b} {block.GetNumberOfCells()}\n")
        cells = block.GetCellData()
        for a in range(cells.GetNumberOfArrays()):
            array = cells.GetArray(a)
            name = cells.GetArrayName(a) or "-"
            name = name.replace(" ", "_")
            components = array.GetNumberOfComponents()
            tuples = array.GetNumberOfTuples()
            out.write(f"array {b} {name} {components} {tuples}\n")
            for t in range(tuples):
                for c in range(components):
                    out.write(repr(float(array.GetComponent(t, c))) + "\n")


class Walker:
    """Walks the top-level sections of a Fluent file."""

    def __init__(self, data):
        self.data = data
        self.pos = 0
        self.byte_order = "<"
        self.float_size = 4
        self.double_size = 8

    def skip_ascii(self, pos, depth):
        data = self.data
        in_string = False
        while pos < len(data):
            ch = data[pos]
            pos += 1
            if in_string:
                if ch == 0x5C:  # backslash escapes the next character
                    pos += 1
                elif ch == 0x22:
                    in_string = False
            elif ch == 0x22:
                in_string = True
            elif ch == 0x28:
                depth += 1
            elif ch == 0x29:
                depth -= 1
                if depth == 0:
                    return pos
        raise ValueError("end of file inside a section")

    def skip_binary(self, pos, section_id):
        marker = b"End of Binary Section   %4d)" % section_id
        at = self.data.find(marker, pos)
        if at < 0:
            raise ValueError(f"no end marker for section {section_id}")
        return at + len(marker)

    def numbers(self, pos, n, section_id):
        """n reals from pos: ASCII text or binary by the section id."""
        if section_id < 2000:
            values = []
            token = re.compile(rb"\s*([-+0-9.eEdD]+)")
            for _ in range(n):
                m = token.match(self.data, pos)
                values.append(float(m.group(1).replace(b"d", b"e").replace(b"D", b"e")))
                pos = m.end()
            return values
        width = self.double_size if section_id >= 3000 else self.float_size
        code = "d" if width == 8 else "f"
        return list(struct.unpack_from(f"{self.byte_order}{n}{code}", self.data, pos))

    def run(self, out):
        data = self.data
        header = re.compile(rb"\(\s*(-?\d+)")
        while True:
            start = data.find(b"(", self.pos)
            if start < 0:
                return
            m = header.match(data, start)
            section_id = int(m.group(1))
            body = m.end()
            base = section_id % 1000 if section_id >= 2000 else section_id
            if section_id == 4:
                nums = [int(x) for x in re.findall(rb"-?\d+", data[body:data.find(b")", body)])]
                self.byte_order = "<" if nums[1] == 0 else ">"
                self.float_size = nums[7]
                self.double_size = nums[8]
                self.pos = self.skip_ascii(body, 1)
            elif base in (300, 314):
                h = re.compile(rb"\s*\(([-\d\s]+)\)\s*\(").match(data, body)
                fid, zone, dim, _levels, _phase, first, last = [int(x) for x in h.group(1).split()]
                n = (last - first + 1) * dim
                gap = 0
                if section_id >= 2000:
                    # Bytes between the numbers and the "\n" ahead of the end
                    # marker: 0 in a sound section, negative where the numbers
                    # run into the marker (a section shorter than its header says).
                    width = self.double_size if section_id >= 3000 else self.float_size
                    marker = data.find(b"End of Binary Section   %4d)" % section_id, h.end())
                    gap = marker - (h.end() + n * width) - 1
                out.write(f"field {section_id} {fid} {zone} {dim} {first} {last} {gap}\n")
                for v in self.numbers(h.end(), n, section_id):
                    out.write(repr(float(v)) + "\n")
                self.pos = self.skip_binary(h.end(), section_id) if section_id >= 2000 else self.skip_ascii(body, 1)
            elif base in (301, 302):
                h = re.compile(rb"\s*\(([-\d\s]+)\)\s*\(").match(data, body)
                head = [int(x) for x in h.group(1).split()]
                rows, resid, width = head[0], head[1], head[2]
                n = rows * (width * (2 if base == 302 else 1) + 1)
                out.write(f"residual {section_id} {rows} {resid} {width}\n")
                for v in self.numbers(h.end(), n, section_id):
                    out.write(repr(float(v)) + "\n")
                self.pos = self.skip_binary(h.end(), section_id) if section_id >= 2000 else self.skip_ascii(body, 1)
            elif section_id >= 2000:
                self.pos = self.skip_binary(body, section_id)
            else:
                self.pos = self.skip_ascii(body, 1)


def main():
    mode, name, out_name = sys.argv[1:4]
    with open(out_name, "w") as out:
        if mode == "vtk":
            dump_vtk(name, out)
        else:
            with open(name, "rb") as f:
                Walker(f.read()).run(out)


if __name__ == "__main__":
    main()
