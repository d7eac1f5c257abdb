#!/usr/bin/env bash
# Every real case and data pair, and generated three-dimensional pairs of
# every cell shape, pulled by fluentload and exported to VTK; the export is
# read back with VTK and checked against VTK's own Fluent reader: the cells of
# every cell zone, the cell arrays VTK's reader gives, and a positive volume
# for every three-dimensional cell (tests/lod/check_pair_export.py).
set -uo pipefail
fl="$FL_BIN/apps/fluentload/fluentload"
gen="$FL_BIN/tools/fluentgen/fluentgen"
check="$FL_SOURCE_DIR/tests/lod/check_pair_export.py"
samples="$FL_SAMPLES_DIR"
py=/usr/bin/python3
if ! "$py" -c 'import vtk' 2>/dev/null; then
    echo "python3-vtk9 is not installed: nothing to check against"
    exit 0
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR="$work"
failures=0
checked=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# Plain copies of a pair under one base name, as VTK's reader wants them.
copy() {
    if [[ $1 == *.gz ]]; then gunzip -c "$1" >"$2"; else cp "$1" "$2"; fi
}

# export_pair NAME CASE DATA CHECK-OPTION [REFUSED...]: CHECK-OPTION goes to
# the checker ("" for none); REFUSED names the
# variables of the first zone that the loader refuses to read (sections that
# run into their end marker); their pull fails without a message.
export_pair() {
    local name=$1 case_file=$2 data_file=$3 vtk_data=$4
    shift 4
    local dir="$work/$name"
    mkdir -p "$dir"
    copy "$case_file" "$dir/$name.cas" || { fail "$name: cannot copy $case_file"; return; }
    copy "$data_file" "$dir/$name.dat" || { fail "$name: cannot copy $data_file"; return; }
    checked=$((checked + 1))
    "$fl" --no-progress --quiet --pull --threads 2 --messages "$dir/messages.jsonl" -o "$dir/out.vtm" \
        "$dir/$name.cas" "$dir/$name.dat" >"$dir/stdout.txt" 2>"$dir/err"
    local status=$? expected=0
    [ $# -gt 0 ] && expected=1
    if [ $status -ne $expected ]; then
        fail "$name: fluentload exit $status, expected $expected"
        cat "$dir/err"
        return
    fi
    if [ -s "$dir/messages.jsonl" ]; then
        fail "$name: the loader said something:"
        cat "$dir/messages.jsonl"
    fi
    # The only items that may fail are the refused variables of zone 1.
    local line refused
    while IFS= read -r line; do
        case "$line" in
            "fluentload: cannot load "*)
                local known=0
                for refused in "$@"; do
                    [[ $line == *"\"$refused\" in zone 1 "* || $line == *"variable $refused of zone 1 "* ]] && known=1
                done
                [ $known -eq 1 ] || fail "$name: $line"
                ;;
        esac
    done <"$dir/err"
    if ! "$py" "$check" "$dir/$name.cas" "$dir/$name.dat" "$dir/out.vtm" $vtk_data >"$dir/check" 2>&1; then
        fail "$name: the export disagrees with VTK's reader: $(cat "$dir/check")"
    else
        echo "$name: $(cat "$dir/check")"
    fi
}

if [ -d "$samples" ]; then
    fff="$samples/aviacheslav__AnsysFluent/TriesOfAeroDynHeatProj_VsO__proj_AD_heat_2024-03-13__proj1_files__dp0__FFF__Fluent__FFF-1"
    export_pair cylinder "$samples/ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.cas" \
        "$samples/ansys__example-data/pyfluent__adjoint_cylinder_tutorial__cylinder_tutorial.dat" "" \
        "Pressure" "Y Velocity"
    # Fields 103 and 500 are both "Turbulent Viscosity": the variable shows the first in a zone.
    export_pair airfoil "$samples/kimtaikee__QVTKDemo_data/airfoil.cas" "$samples/kimtaikee__QVTKDemo_data/airfoil.dat" \
        --one-of=103,500
    export_pair elbow "$samples/kimtaikee__QVTKDemo_data/elbow.cas" "$samples/kimtaikee__QVTKDemo_data/elbow.dat" ""
    export_pair combustion "$samples/rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.cas" \
        "$samples/rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.dat" ""
    # VTK's reader ends in a crash on these data files: their cells are compared, not their arrays.
    export_pair fff00000 "$fff.cas.gz" "$fff-00000.dat.gz" --no-vtk-data
    export_pair fff00124 "$fff.cas.gz" "$fff-00124.dat.gz" --no-vtk-data
else
    echo "no sample folder at $samples; the real pairs are not checked"
fi

# Generated pairs: degenerate bricks (tetrahedra, wedges, pyramids) must come
# out of the export as cells of positive volume.
for mesh in hex tet wedge pyramid mixed; do
    if "$gen" --mesh "$mesh" --cells 3x3x5 --encoding binary-mixed --fields 6 --out "$work/gen-$mesh/gen$mesh" \
        >/dev/null 2>&1; then
        export_pair "gen$mesh" "$work/gen-$mesh/gen$mesh.cas" "$work/gen-$mesh/gen$mesh.dat" ""
    else
        fail "fluentgen could not write the $mesh pair"
    fi
done

echo "checked $checked pairs, $failures failed"
[ "$checked" -gt 0 ] && [ $failures -eq 0 ]
