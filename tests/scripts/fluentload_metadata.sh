#!/usr/bin/env bash
# fluentload with the metadata cache: a first load scans and writes .NAME.zmeta
# beside each file, a second load reads them and reports the same data set
# (zones, variables, auxiliary data and, pulled, every value's range and sum)
# as a load with --no-metadata, which writes nothing. Generated pairs of
# several kinds, and the real pairs copied to a scratch folder.
set -uo pipefail
fl="$FL_BIN/apps/fluentload/fluentload"
gen="$FL_BIN/tools/fluentgen/fluentgen"
samples="$FL_SAMPLES_DIR"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR="$work"
failures=0
checked=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# check NAME FILE...: the three loads of the files in their folder.
check() {
    local name=$1
    shift
    local dir
    dir=$(dirname "$1")
    checked=$((checked + 1))
    "$fl" --no-progress --quiet --no-metadata --pull --summary-json "$dir/plain.json" \
        --messages "$dir/plain.jsonl" "$@" >/dev/null 2>&1
    local plain=$?
    if compgen -G "$dir/.*.zmeta" >/dev/null; then
        fail "$name: --no-metadata wrote a metadata file"
    fi
    "$fl" --no-progress --quiet --pull --summary-json "$dir/first.json" --messages "$dir/first.jsonl" "$@" \
        >/dev/null 2>&1
    local first=$?
    for file in "$@"; do
        local meta
        meta="$(dirname "$file")/.$(basename "$file").zmeta"
        [ -s "$meta" ] || fail "$name: no metadata file $meta after a load"
        cp "$meta" "$meta.before" 2>/dev/null
    done
    "$fl" --no-progress --quiet --pull --summary-json "$dir/second.json" --messages "$dir/second.jsonl" "$@" \
        >/dev/null 2>&1
    local second=$?
    [ $plain -eq $first ] && [ $first -eq $second ] || fail "$name: exit $plain, $first, $second"
    cmp -s "$dir/plain.json" "$dir/first.json" || fail "$name: the first load differs from a load without cache"
    cmp -s "$dir/first.json" "$dir/second.json" || fail "$name: the load from metadata differs from the scan"
    cmp -s "$dir/first.jsonl" "$dir/second.jsonl" || fail "$name: the messages differ"
    # Read, not rewritten: a load from the cache leaves its files as they were.
    for file in "$@"; do
        local meta
        meta="$(dirname "$file")/.$(basename "$file").zmeta"
        cmp -s "$meta" "$meta.before" || fail "$name: $meta was written again by the load from it"
    done
}

generated() {
    local name=$1
    shift
    mkdir -p "$work/$name"
    "$gen" "$@" --out "$work/$name/gen" >/dev/null || { fail "$name: fluentgen failed"; return; }
    if [ -e "$work/$name/gen.dat" ]; then
        check "$name" "$work/$name/gen.cas" "$work/$name/gen.dat"
    else
        check "$name" "$work/$name/gen.cas"
    fi
}

generated hex --mesh hex --fields 6
generated tet --mesh tet --fields 4 --encoding binary-single
generated mixed --mesh mixed --mixed-cells --mixed-faces --encoding ascii --fields 3
generated quad2d --mesh quad --cells 4x3 --fields 5 --axisymmetric
generated hanging --mesh hex --hanging --cells 3x3x3 --fields 3 --face-data
generated species --mesh hex --species a,b,c --rich-fields 3 --additional q1,q2
generated zones --mesh hex --cells 3x2x2 --cell-zones 1,17,1 --zone-names varied --fields 2
generated big --mesh tri --byte-order big --fields 3
generated caseonly --mesh wedge

if [ -d "$samples" ]; then
    pair() {
        local name=$1 case_file=$2 data_file=$3
        mkdir -p "$work/$name"
        cp "$samples/$case_file" "$work/$name/$(basename "$case_file")" || { fail "$name: copy"; return; }
        cp "$samples/$data_file" "$work/$name/$(basename "$data_file")" || { fail "$name: copy"; return; }
        check "$name" "$work/$name/$(basename "$case_file")" "$work/$name/$(basename "$data_file")"
    }
    pair airfoil kimtaikee__QVTKDemo_data/airfoil.cas kimtaikee__QVTKDemo_data/airfoil.dat
    pair elbow kimtaikee__QVTKDemo_data/elbow.cas kimtaikee__QVTKDemo_data/elbow.dat
    pair combustion rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.cas \
        rezamarzban__Fluent-Simulations/Tube2D-Combustion__combustion.dat
else
    echo "no sample folder at $samples; the real pairs are not checked"
fi

echo "fluentload with metadata files: $checked checked, $failures failed"
[ $failures -eq 0 ]
