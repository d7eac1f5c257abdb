#!/usr/bin/env bash
# Installs what is needed, builds, and runs every test of the default suite.
#   scripts/test.sh                 the normal build in build/
#   scripts/test.sh --sanitize      AddressSanitizer + UndefinedBehaviorSanitizer, in build-asan/
#   scripts/test.sh --tsan          ThreadSanitizer, in build-tsan/ (the tests of threads only:
#                                   those whose names say Thread or Concurrent)
# Slow checks (large files, fuzzing) carry the ctest label "slow" and run only with FL_SLOW=1.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh

mode=${1:-normal}
jobs=$(nproc)
exclude=()
if [ "${FL_SLOW:-0}" != "1" ]; then
    exclude=(-LE slow)
fi

# Loads write a metadata file (.NAME.zmeta) beside the file they load. Tests must
# load the shared samples (and the repository's own) with metadata off or from
# copies: a metadata file written there while the tests ran fails the run, and
# goes. (One that was there before, say from scripts/try.sh, is left alone.)
started=$(mktemp)
trap 'rm -f "$started"' EXIT
metadata_left_in_samples() {
    local left=1 file
    while IFS= read -r -d '' file; do
        echo "FAIL: a test left a metadata file among the samples (removed): $file"
        rm -f -- "$file"
        left=0
    done < <(find ../shared/fluent-samples samples -name '.*.zmeta' -newer "$started" -print0 2>/dev/null)
    return "$left"
}

if [ ! -d ../shared/fluent-samples ]; then
    echo "NOTE: ../shared/fluent-samples is not there: the tests of the real sample files are skipped"
fi

status=0
case "$mode" in
    normal)
        bash scripts/build.sh build
        ctest --test-dir build --output-on-failure -j "$jobs" "${exclude[@]}" || status=$?
        ;;
    --sanitize)
        bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug "-DFL_SANITIZE=address;undefined" -DFL_BUILD_BENCH=OFF
        ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
            ctest --test-dir build-asan --output-on-failure -j "$jobs" -L unit "${exclude[@]}" || status=$?
        ;;
    --tsan)
        # Only the suites that hold tests of threads are built.
        suites=$(grep -rlE 'TEST.*(Thread|Concurrent)' tests --include='*.cpp' | cut -d/ -f2 | sort -u | sed 's/^/test_/')
        cmake -S . -B build-tsan -G Ninja -DFL_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo -DFL_SANITIZE=thread \
            -DFL_BUILD_BENCH=OFF >/dev/null
        # shellcheck disable=SC2086
        ninja -C build-tsan -j "$jobs" $suites
        ctest --test-dir build-tsan --output-on-failure -j "$jobs" -R "Thread|Concurrent" "${exclude[@]}" ||
            status=$?
        ;;
    *)
        echo "usage: scripts/test.sh [--sanitize|--tsan]" >&2
        exit 2
        ;;
esac
if metadata_left_in_samples; then
    status=1
fi
exit "$status"
