#!/usr/bin/env python3
"""Checks the shape of fluentload's JSON summary with python's json module and
prints its facts one per line, fields separated by tabs:

  data_set  true|false
  title     TITLE
  aux       NAME  VALUE
  var       NAME  DATA_TYPE  LOCATION
  zone      NUMBER  NAME  TYPE  TYPE_NUMBER  IMAX  JMAX  KMAX  POINTS  ELEMENTS  STRAND  TIME  PARENT
  zoneaux   NUMBER  NAME  VALUE
  zonevar   NUMBER  DATA_TYPE  LOCATION          (one per variable, in order)
  values    NUMBER  VAR  LOCATION  DATA_TYPE  COUNT  MIN  MAX  SUM

Exits 1 with the first fault in the shape.
Usage: check_summary.py FILE
"""
import json
import sys


def fail(what):
    print("bad summary: " + what)
    sys.exit(1)


def want(obj, key, kind, where):
    if key not in obj:
        fail("%s has no %r" % (where, key))
    value = obj[key]
    kinds = kind if isinstance(kind, tuple) else (kind,)
    if isinstance(value, bool) and bool not in kinds:
        fail("%s: %r is a boolean" % (where, key))
    if not isinstance(value, kinds):
        fail("%s: %r is %r, not %s" % (where, key, value, kind))
    return value


def num(v):
    return "null" if v is None else repr(float(v))


def aux_items(obj, where):
    if not isinstance(obj, dict):
        fail(where + ": aux is not an object")
    for k, v in obj.items():
        if not isinstance(v, str):
            fail("%s: aux %r is not a string" % (where, k))
    return list(obj.items())


def main():
    with open(sys.argv[1]) as f:
        doc = json.load(f)
    if not isinstance(doc, dict):
        fail("not an object")
    known = {"data_set", "title", "aux", "variables", "zones"}
    for key in doc:
        if key not in known:
            fail("unknown top key %r" % key)
    out = ["data_set\t%s" % ("true" if want(doc, "data_set", bool, "top") else "false"),
           "title\t" + want(doc, "title", str, "top")]
    for k, v in aux_items(want(doc, "aux", dict, "top"), "top"):
        out.append("aux\t%s\t%s" % (k, v))
    variables = want(doc, "variables", list, "top")
    for i, var in enumerate(variables):
        where = "variable %d" % (i + 1)
        if set(var) != {"name", "data_type", "location"}:
            fail(where + " has keys " + ", ".join(sorted(var)))
        out.append("var\t%s\t%s\t%s" % (want(var, "name", str, where), want(var, "data_type", str, where),
                                         want(var, "location", str, where)))
    zone_keys = {"number", "name", "type", "type_number", "imax", "jmax", "kmax", "points", "elements", "strand",
                 "solution_time", "parent_zone", "aux", "data_types", "locations"}
    for i, zone in enumerate(want(doc, "zones", list, "top")):
        where = "zone %d" % (i + 1)
        extra = set(zone) - zone_keys - {"values"}
        if extra or not zone_keys <= set(zone):
            fail(where + " has keys " + ", ".join(sorted(zone)))
        number = want(zone, "number", int, where)
        fields = [str(number), want(zone, "name", str, where), want(zone, "type", str, where)]
        for key in ("type_number", "imax", "jmax", "kmax", "points", "elements", "strand"):
            fields.append(str(want(zone, key, int, where)))
        fields.append(num(want(zone, "solution_time", (int, float), where)))
        fields.append(str(want(zone, "parent_zone", int, where)))
        out.append("zone\t" + "\t".join(fields))
        for k, v in aux_items(want(zone, "aux", dict, where), where):
            out.append("zoneaux\t%d\t%s\t%s" % (number, k, v))
        types = want(zone, "data_types", list, where)
        locations = want(zone, "locations", list, where)
        if len(types) != len(variables) or len(locations) != len(variables):
            fail(where + ": data_types and locations must have one entry per variable")
        for t, l in zip(types, locations):
            if not isinstance(t, str) or not isinstance(l, str):
                fail(where + ": data types and locations are strings")
            out.append("zonevar\t%d\t%s\t%s" % (number, t, l))
        if "values" in zone:
            for name, stats in want(zone, "values", dict, where).items():
                w = "%s values of %s" % (where, name)
                if set(stats) != {"location", "data_type", "count", "min", "max", "sum"}:
                    fail(w + " has keys " + ", ".join(sorted(stats)))
                out.append("values\t%d\t%s\t%s\t%s\t%d\t%s\t%s\t%s" % (
                    number, name, want(stats, "location", str, w), want(stats, "data_type", str, w),
                    want(stats, "count", int, w), num(stats["min"]), num(stats["max"]), num(stats["sum"])))
    print("\n".join(out))


main()
