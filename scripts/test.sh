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

case "$mode" in
    normal)
        bash scripts/build.sh build
        ctest --test-dir build --output-on-failure -j "$jobs" "${exclude[@]}"
        ;;
    --sanitize)
        bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug "-DFL_SANITIZE=address;undefined" -DFL_BUILD_BENCH=OFF
        ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
            ctest --test-dir build-asan --output-on-failure -j "$jobs" -L unit "${exclude[@]}"
        ;;
    --tsan)
        # Only the suites that hold tests of threads are built.
        suites=$(grep -rlE 'TEST.*(Thread|Concurrent)' tests --include='*.cpp' | cut -d/ -f2 | sort -u | sed 's/^/test_/')
        cmake -S . -B build-tsan -G Ninja -DFL_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo -DFL_SANITIZE=thread \
            -DFL_BUILD_BENCH=OFF >/dev/null
        # shellcheck disable=SC2086
        ninja -C build-tsan -j "$jobs" $suites
        ctest --test-dir build-tsan --output-on-failure -j "$jobs" -R "Thread|Concurrent" "${exclude[@]}"
        ;;
    *)
        echo "usage: scripts/test.sh [--sanitize|--tsan]" >&2
        exit 2
        ;;
esac
