#!/usr/bin/env bash
# The add-on library exports exactly one function, InitZorAddOn113, and all the
# host operations it calls stay undefined, to be resolved by the loading host.
set -euo pipefail
lib="$FL_BIN/libfluentloader.so"
test -f "$lib"

functions=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TtWwi]$/ {print $3}' | sort)
if [ "$functions" != "InitZorAddOn113" ]; then
    echo "expected only InitZorAddOn113 to be exported, found:" >&2
    echo "$functions" >&2
    exit 1
fi

# No host operation may be linked into the add-on itself.
if nm -D --defined-only "$lib" | awk '{print $3}' | grep -E '^Zor(Util|GUI)' >&2; then
    echo "host operations are defined inside the add-on" >&2
    exit 1
fi
