#!/usr/bin/env bash
# fluentload's contract: exit codes, messages on standard error with their
# kind, the JSON lines file, raw instruction lists, and compressed files.
set -uo pipefail
fl="$FL_BIN/apps/fluentload/fluentload"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR="$work"
# A copy: loads write a metadata file beside the case, which the repository must not get.
cp "$FL_SOURCE_DIR/samples/square.cas" "$work/square.cas"
square="$work/square.cas"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Usage errors: exit 2.
"$fl" >/dev/null 2>&1; [ $? -eq 2 ] || fail "no arguments should exit 2"
"$fl" --bogus "$square" >/dev/null 2>&1; [ $? -eq 2 ] || fail "an unknown option should exit 2"
"$fl" --average sideways "$square" >/dev/null 2>&1; [ $? -eq 2 ] || fail "a bad --average should exit 2"
"$fl" --help | grep -q -- "--instr" || fail "--help should document --instr"

# A good load: exit 0, nothing on standard error.
"$fl" --no-progress "$square" >"$work/out" 2>"$work/err"; status=$?
[ $status -eq 0 ] || fail "square.cas should load (exit $status)"
[ -s "$work/err" ] && fail "square.cas should load silently: $(cat "$work/err")"

# A refused load: exit 1, each message with its kind, and the JSON lines.
"$fl" --no-progress --messages "$work/m.jsonl" "$work/missing.cas" >"$work/out" 2>"$work/err"; status=$?
[ $status -eq 1 ] || fail "a missing file should exit 1 (exit $status)"
expected_err="error: Fluent data loader: Unable to open Case file
$work/missing.cas.
error: Error loading file $work/missing.cas"
[ "$(cat "$work/err")" = "$expected_err" ] || fail "standard error was: $(cat "$work/err")"
expected_json="{\"kind\": \"error\", \"text\": \"Fluent data loader: Unable to open Case file\\n$work/missing.cas.\"}
{\"kind\": \"error\", \"text\": \"Error loading file $work/missing.cas\"}"
[ "$(cat "$work/m.jsonl")" = "$expected_json" ] || fail "messages file was: $(cat "$work/m.jsonl")"
/usr/bin/python3 -c 'import json,sys; [json.loads(l) for l in open(sys.argv[1])]' "$work/m.jsonl" \
    || fail "the messages file is not JSON lines"

# A raw list in the old syntax, and a warning-free unknown key in the standard one.
"$fl" --no-progress --instr -CaseFile "$square" -LoadOption GridOnly >/dev/null 2>"$work/err" \
    || fail "an old-syntax --instr list should load"
"$fl" --no-progress --instr STANDARDSYNTAX 1.0 FILENAME_CaseFile "$square" LoadOption CaseOnly Colour blue \
    >/dev/null 2>"$work/err" || fail "an unknown key should not stop the load"
[ "$(cat "$work/err")" = "info: Fluent data loader:
Unrecognized parameter 'Colour'.
Ignoring..." ] || fail "unknown key message was: $(cat "$work/err")"

# A compressed case without a terminal: a temporary copy, no question asked.
gzip -c "$square" >"$work/sq.cas.gz"
"$fl" --no-progress --messages "$work/gz.jsonl" "$work/sq.cas.gz" >/dev/null 2>&1 || fail "a .cas.gz should load"
[ -s "$work/gz.jsonl" ] && fail "a .cas.gz without a terminal should ask nothing: $(cat "$work/gz.jsonl")"
[ -e "$work/sq.cas" ] && fail "without --save-uncompressed yes no copy goes beside the file"
# The temporary copy (and the metadata file beside it) go when fluentload ends.
left=$(find "$work" -name 'minihost-*' -o -name '.minihost-*')
[ -n "$left" ] && fail "temporary files left behind: $left"
# With the copy kept beside it: the second load asks whether to overwrite, answered no by --overwrite.
"$fl" --no-progress --save-uncompressed yes "$work/sq.cas.gz" >/dev/null 2>&1 || fail "save yes should load"
[ -e "$work/sq.cas" ] || fail "save yes should leave sq.cas beside the compressed file"
"$fl" --no-progress --save-uncompressed yes --overwrite no --messages "$work/ow.jsonl" "$work/sq.cas.gz" \
    >/dev/null 2>&1 || fail "a second load with the copy present should load"
grep -q '"kind": "question", "text": "The uncompressed file' "$work/ow.jsonl" || fail "the overwrite question was not asked"
grep -q '"answer": false' "$work/ow.jsonl" || fail "--overwrite no did not answer the question"

# Load-on-demand forbidden by the host: refused with the add-on's message.
"$fl" --no-progress --no-lod "$square" >/dev/null 2>"$work/err"; status=$?
[ $status -eq 1 ] || fail "--no-lod should refuse (exit $status)"
grep -q "requires that load-on-demand must be turned on" "$work/err" || fail "--no-lod message missing"

echo "fluentload command line: $failures failed"
[ $failures -eq 0 ]
