#!/usr/bin/python3
"""Dumps the cells of a Fluent case file as VTK's reader (vtk.vtkFLUENTReader) builds them.

  vtk_cells.py CASE OUT

The reader is given a copy of CASE that keeps only the sections that make the
mesh (comments and header, dimensions, machine configuration, nodes, cells,
faces, zone names) and leaves out the face sections of boundary type 1000 and
above (the faces that non-conformal interfaces add). The reader stops with a
crash on some files that hold those; the cell assembly under test passes them
by as well, so both build their cells from the same faces. Two more things
the reader cannot take are changed in the copy without changing the mesh: a
section id written directly against its header's parenthesis gets a blank,
and Cells sections that stand behind Faces sections move ahead of them.

Output, one item a line:
  points N                 followed by N lines "x y z" (z is 0 in 2D)
  blocks B                 number of blocks (one per cell zone, in file order)
  block I CELLS            followed by CELLS lines "n id id ...": a cell's point ids
Point ids are zero-based places in the points list. Values are written with repr().
"""

import re
import sys

KEEP = {0, 1, 2, 4, 10, 12, 13, 39, 45}
HEADER = re.compile(rb"\((\d+)")
FACE_HEADER = re.compile(rb"\(\d+\s*\(\s*([0-9a-fA-F]+)\s+([0-9a-fA-F]+)\s+([0-9a-fA-F]+)\s+([0-9a-fA-F]+)")


def sections(data):
    """Yields (id, start, end) of every top-level section."""
    pos = 0
    size = len(data)
    while True:
        pos = data.find(b"(", pos)
        if pos < 0:
            return
        match = HEADER.match(data, pos)
        if not match:
            pos += 1
            continue
        sid = int(match.group(1))
        if 2000 <= sid < 4000:
            marker = data.find(b"End of Binary Section", match.end())
            if marker < 0:
                raise SystemExit("no end marker for section %d" % sid)
            end = data.find(b")", marker) + 1
        else:
            depth = 0
            i = pos
            in_string = False
            while i < size:
                c = data[i]
                if in_string:
                    if c == 0x5C:  # backslash: the next character is taken as it is
                        i += 1
                    elif c == 0x22:
                        in_string = False
                elif c == 0x22:
                    in_string = True
                elif c == 0x28:
                    depth += 1
                elif c == 0x29:
                    depth -= 1
                    if depth == 0:
                        break
                i += 1
            end = i + 1
        yield sid, pos, end
        pos = end


def mesh_copy(data):
    kept = []
    for sid, start, end in sections(data):
        if sid >= 4000 or sid % 1000 not in KEEP:
            continue
        if sid % 1000 == 13:
            header = FACE_HEADER.match(data, start)
            if header and int(header.group(1), 16) > 0 and int(header.group(4), 16) >= 1000:
                continue
        text = data[start:end]
        # The reader wants a blank between the id and the header ("(13(" hangs it).
        head = HEADER.match(text)
        if sid < 2000 and text[head.end():head.end() + 1] == b"(":
            text = text[:head.end()] + b" " + text[head.end():]
        kept.append((sid, text))
    # The reader wants the Cells sections ahead of the Faces sections.
    first_face = next((i for i, (sid, _) in enumerate(kept) if sid % 1000 == 13), len(kept))
    cells = [item for item in kept[first_face:] if item[0] % 1000 == 12]
    rest = [item for item in kept[first_face:] if item[0] % 1000 != 12]
    ordered = kept[:first_face] + cells + rest
    return b"".join(text + b"\n" for _, text in ordered)


def main():
    case_name, out_name = sys.argv[1], sys.argv[2]
    with open(case_name, "rb") as f:
        data = f.read()
    copy_name = out_name + ".mesh.cas"
    with open(copy_name, "wb") as f:
        f.write(mesh_copy(data))

    import vtk

    vtk.vtkObject.GlobalWarningDisplayOff()
    reader = vtk.vtkFLUENTReader()
    reader.SetFileName(copy_name)
    reader.Update()
    output = reader.GetOutput()
    lines = []
    blocks = output.GetNumberOfBlocks()
    points = None
    for b in range(blocks):
        grid = output.GetBlock(b)
        if grid is not None and grid.GetNumberOfPoints() > 0:
            points = grid.GetPoints()
            break
    count = points.GetNumberOfPoints() if points is not None else 0
    lines.append("points %d" % count)
    for p in range(count):
        x, y, z = points.GetPoint(p)
        lines.append("%r %r %r" % (x, y, z))
    lines.append("blocks %d" % blocks)
    for b in range(blocks):
        grid = output.GetBlock(b)
        cells = grid.GetNumberOfCells() if grid is not None else 0
        lines.append("block %d %d" % (b, cells))
        for c in range(cells):
            ids = grid.GetCell(c).GetPointIds()
            n = ids.GetNumberOfIds()
            lines.append(" ".join([str(n)] + [str(ids.GetId(k)) for k in range(n)]))
    with open(out_name, "w") as f:
        f.write("\n".join(lines))
        f.write("\n")


if __name__ == "__main__":
    main()
