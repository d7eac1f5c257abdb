#!/usr/bin/env bash
# fluentload's view and export of real files: a case and data pair pulled
# through load-on-demand by two workers and exported to VTK, read back by
# VTK's own readers and compared with what the pull measured; the same under
# a memory budget, which must unload and reload and change nothing; and a
# case with two data files exported as a collection. First the options of
# this part, the JSON summary of a refused load, and --quiet.
#
# While the loader makes no data set from the pair, fluentload says so and the
# rest reports itself skipped; while it refuses series, the series part does.
set -uo pipefail
fl="$FL_BIN/apps/fluentload/fluentload"
check="$FL_SOURCE_DIR/tests/fluentload/check_export.py"
samples="$FL_SAMPLES_DIR"
py=/usr/bin/python3
summary_check="$FL_SOURCE_DIR/tests/fluentload/check_summary.py"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR="$work"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
no_data_set="fluentload: the load made no data set; nothing to pull or export"

# The options of this part, documented and checked before any load.
for option in --pull --threads --output "--compress[=LEVEL]" --summary-json --memory-budget; do
    "$fl" --help | grep -qF -- " $option " || fail "--help should document $option"
done
"$fl" --no-metadata -o "$work/out.vtu" "$FL_SOURCE_DIR/samples/square.cas" >/dev/null 2>&1
[ $? -eq 2 ] || fail "an export name other than .vtm or .pvd should exit 2"
"$fl" --no-metadata --threads 0 "$FL_SOURCE_DIR/samples/square.cas" >/dev/null 2>&1
[ $? -eq 2 ] || fail "--threads 0 should exit 2"

# A refused load still writes the JSON summary of what the host holds: nothing.
"$fl" --no-progress --summary-json "$work/missing.json" "$work/missing.cas" >/dev/null 2>&1
[ $? -eq 1 ] || fail "a missing file should exit 1"
[ "$("$py" "$summary_check" "$work/missing.json")" = "$(printf 'data_set\tfalse\ntitle\t')" ] \
    || fail "the summary of a refused load should say there is no data set: $(cat "$work/missing.json")"

# --quiet: nothing on standard output.
"$fl" --no-progress --no-metadata --quiet "$FL_SOURCE_DIR/samples/square.cas" >"$work/quiet.out" 2>&1 || fail "square.cas should load"
[ -s "$work/quiet.out" ] && fail "--quiet should print nothing: $(cat "$work/quiet.out")"

if [ ! -d "$samples" ]; then
    echo "no sample folder at $samples; the samples are not checked"
    echo "fluentload view and export: $failures failed"
    [ $failures -eq 0 ]
    exit
fi
case_file="$samples/rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.cas"
data_file="$samples/rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.dat"
series_dir="$samples/aviacheslav__AnsysFluent"
series_prefix="$series_dir/TriesOfAeroDynHeatProj_VsO__proj_AD_heat_2024-03-13__proj1_files__dp0__FFF__Fluent__FFF-1"

"$fl" --no-progress --no-metadata --pull --threads 2 --summary-json "$work/pair.json" --messages "$work/pair.jsonl" \
    -o "$work/pair.vtm" "$case_file" "$data_file" >"$work/out" 2>"$work/err"
status=$?
if [ $status -eq 1 ] && grep -qxF "$no_data_set" "$work/err"; then
    echo "skipped: the loader made no data set from $(basename "$case_file") and its data file," \
        "so there is nothing to pull or export yet"
    echo "fluentload view and export: $failures failed"
    [ $failures -eq 0 ]
    exit
fi
if [ $status -ne 0 ]; then
    fail "the pair should load, pull and export (exit $status):"
    cat "$work/err"
else
    "$py" "$check" "$work/pair.json" "$work/pair.vtm" || fail "the export of the pair disagrees with its pull"
    grep -q '^Pulled .*; 0 failed$' "$work/out" || fail "the pull line is missing: $(cat "$work/out")"
    grep -q '^Exported ' "$work/out" || fail "the export line is missing"
fi

# Under a memory budget of about one kilobyte the host unloads items between
# requests and loads them again for the export; the values stay the same.
"$fl" --no-progress --no-metadata --pull --threads 2 --memory-budget 0.001 --compress --summary-json "$work/budget.json" \
    -o "$work/budget.vtm" "$case_file" "$data_file" >"$work/budget.out" 2>"$work/budget.err"
status=$?
if [ $status -ne 0 ]; then
    fail "the pair should load under a memory budget (exit $status):"
    cat "$work/budget.err"
else
    "$py" "$check" "$work/budget.json" "$work/budget.vtm" || fail "the export under a budget disagrees with its pull"
    "$py" -c 'import json, sys
a, b = (json.load(open(f)) for f in sys.argv[1:3])
sys.exit(0 if a["zones"] == b["zones"] else 1)' "$work/pair.json" "$work/budget.json" \
        || fail "the pull under a memory budget measured other values"
    grep -Eq '^Load-on-demand: [0-9]+ loads, [1-9][0-9]* unloads' "$work/budget.out" \
        || fail "the memory budget unloaded nothing: $(grep '^Load-on-demand' "$work/budget.out")"
fi

# A case with two data files, as a collection of solution times.
"$fl" --no-progress --no-metadata --pull --summary-json "$work/series.json" -o "$work/series.pvd" \
    "$series_prefix.cas.gz" "$series_prefix-00000.dat.gz" "$series_prefix-00124.dat.gz" \
    >"$work/series.out" 2>"$work/series.err"
status=$?
no_series="error: Loading a list of files as a series is not available in this version of the Fluent loader."
if [ $status -eq 1 ] && [ "$(cat "$work/series.err")" = "$no_series" ]; then
    echo "skipped (series only): the loader refused the series, saying: ${no_series#error: }"
elif [ $status -ne 0 ]; then
    fail "the series should load, pull and export (exit $status):"
    cat "$work/series.err"
else
    "$py" "$check" "$work/series.json" "$work/series.pvd" || fail "the export of the series disagrees with its pull"
fi

echo "fluentload view and export: $failures failed"
[ $failures -eq 0 ]
