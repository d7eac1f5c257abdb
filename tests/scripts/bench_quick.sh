#!/usr/bin/env bash
# bench/run --quick runs to its end and writes a complete JSON report: every
# input with its seven measures (raw read, section scans, scan and full load
# without and with the metadata files an earlier load wrote, VTK's reader), each either with its runs, median and peak memory or with the
# reason it failed; the generated inputs measured in full. No time is checked: the figures
# depend on the machine and on what else runs on it.
set -uo pipefail
if [ ! -x "$FL_BIN/bench/raw_read" ] || [ ! -x "$FL_BIN/bench/scan_only" ]; then
    echo "the benchmarks are not built in $FL_BIN (FL_BUILD_BENCH off); nothing to check"
    exit 0
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR="$work"

if ! "$FL_SOURCE_DIR/bench/run" --quick --build "$FL_BIN" --samples "$FL_SAMPLES_DIR" --dir "$work/files" \
    --json "$work/quick.json" >"$work/out" 2>"$work/err"; then
    echo "FAIL: bench/run --quick ended with an error"
    cat "$work/out" "$work/err"
    exit 1
fi
cat "$work/out"

/usr/bin/python3 - "$work/quick.json" "$FL_SAMPLES_DIR" <<'EOF'
import json
import os
import sys

report = json.load(open(sys.argv[1]))
samples = sys.argv[2]
problems = []
vtk_present = os.system("/usr/bin/python3 -c 'import vtk' >/dev/null 2>&1") == 0

for key in ("date", "machine", "settings", "measures", "cases", "targets", "git", "build"):
    if key not in report:
        problems.append("no %r in the report" % key)
settings = report.get("settings", {})
runs = {"raw": settings.get("runs"), "sections": settings.get("runs"), "scan": settings.get("runs"),
        "scan+": settings.get("runs"), "full": settings.get("runs"), "full+": settings.get("runs"),
        "peer": settings.get("peer_runs")}
if not settings.get("quick") or runs["raw"] not in (1, 2) or runs["peer"] not in (1, 2):
    problems.append("settings are not those of --quick: %r" % settings)

cases = {c.get("name"): c for c in report.get("cases", [])}
expected = ["hex 1e5", "tet 1e5"]
if os.path.isdir(samples):
    expected += ["cylinder", "airfoil", "elbow", "combustion", "FFF-1-00000", "FFF-1-00124"]
for name in expected:
    if name not in cases:
        problems.append("no input %r" % name)

for name, case in cases.items():
    for key in ("kind", "encoding", "cas", "dat", "bytes", "ratios"):
        if key not in case:
            problems.append("%s: no %r" % (name, key))
    if case.get("bytes", 0) <= 0:
        problems.append("%s: no bytes counted" % name)
    for m in ("raw", "sections", "scan", "scan+", "full", "full+", "peer"):
        s = case.get(m)
        if not isinstance(s, dict) or s.get("status") not in ("ok", "failed", "unavailable"):
            problems.append("%s: %s has no status" % (name, m))
            continue
        if s["status"] != "ok":
            if not s.get("error"):
                problems.append("%s: %s is %s without a reason" % (name, m, s["status"]))
            # A generated box must be measured in full; VTK's reader may be
            # missing from the machine.
            if case.get("kind") == "fluentgen" and not (m == "peer" and not vtk_present):
                problems.append("%s: %s %s: %s" % (name, m, s["status"], s.get("error")))
            continue
        if len(s.get("runs_s", [])) != runs[m]:
            problems.append("%s: %s has %d runs, not %r" % (name, m, len(s.get("runs_s", [])), runs[m]))
        if not all(isinstance(t, (int, float)) and t >= 0 for t in s.get("runs_s", [])):
            problems.append("%s: %s has a run that is no time" % (name, m))
        if not isinstance(s.get("median_s"), (int, float)):
            problems.append("%s: %s has no median" % (name, m))
        if not isinstance(s.get("peak_rss_mb"), (int, float)) or s["peak_rss_mb"] <= 0:
            problems.append("%s: %s has no peak memory" % (name, m))
    if case.get("kind") == "fluentgen":
        if case.get("cells") != case.get("cells_expected"):
            problems.append("%s: %r cells, expected %r" % (name, case.get("cells"), case.get("cells_expected")))
        for m in ("full", "full+"):
            if case.get(m, {}).get("status") == "ok" and case[m].get("items", 0) <= 0:
                problems.append("%s: the %s load pulled nothing" % (name, m))
        # The later load must find what the first one pulled: the same items.
        if case.get("full", {}).get("items") != case.get("full+", {}).get("items"):
            problems.append("%s: %r items pulled without metadata files, %r with them" % (
                name, case.get("full", {}).get("items"), case.get("full+", {}).get("items")))
        for r in ("full_to_raw_time", "cached_full_to_raw_time", "scan_to_raw_time") + (("full_to_peer_time", "full_to_peer_memory")
                                                             if vtk_present else ()):
            if not isinstance(case.get("ratios", {}).get(r), (int, float)):
                problems.append("%s: no ratio %s" % (name, r))

for t in report.get("targets", []):
    for key in ("target", "value", "limit", "met", "note"):
        if key not in t:
            problems.append("target without %r: %r" % (key, t))

# Every metadata file the benchmark wrote beside its inputs is gone again.
for name, case in cases.items():
    for path in (case.get("cas", ""), case.get("dat", "")):
        meta = os.path.join(os.path.dirname(path), "." + os.path.basename(path) + ".zmeta")
        if path and os.path.exists(meta):
            problems.append("%s: %s left behind" % (name, os.path.basename(meta)))

for p in problems:
    print("FAIL " + p)
print("checked %d inputs, %d problems" % (len(cases), len(problems)))
sys.exit(1 if problems else 0)
EOF
