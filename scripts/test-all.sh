#!/usr/bin/env bash
# Looks at all that is shipped with clang-tidy, then builds and runs all tests: all labels on the release build,
# the suites under the address and undefined-behaviour sanitizers and under the thread sanitizer.
#
# A step that fails does not keep the later ones from running; the end says which tests failed, and of each
# step whether it passed and how long it took. The exit code is 0 only when every step passed.
set -uo pipefail
cd "$(dirname "$0")/.."

launcher=()
jobs=${JOBS:-$(nproc)}
began=$SECONDS
table=()
failures=0

step() {
    local name=$1 start=$SECONDS outcome=passed
    shift
    echo
    echo "=== $name"
    if ! "$@"; then
        outcome=FAILED
        failures=$((failures + 1))
    fi
    table+=("$(printf '%-34s %-7s %5d s' "$name" "$outcome" $((SECONDS - start)))")
    [ "$outcome" = passed ]
}

# The thread sanitizer's memory layout fails on about one process in two hundred whose addresses are random.
if setarch --addr-no-randomize true 2>/dev/null; then
    fixed_addresses=(setarch --addr-no-randomize)
else
    fixed_addresses=()
fi

# Comparisons of real clips that read on one thread. The address sanitizer's build makes them, and the thread
# sanitizer's reads the same clips in every order and on several threads.
alone='^real/.*(LinearDecode|EngineOnClip|MovieClip|ExtractReal'
alone+='|FFmpegSound\.(LastsAsLong|IsWhatIsHeardFrom)|WaveSound\.(Texts|EveryChannel|BlocksFromAnywhereAreThose))'

suite() {
    rm -f "build/$1/Testing/Temporary/LastTestsFailed.log"
    "${launcher[@]}" ctest --test-dir "build/$1" --output-on-failure --no-tests=error -j "$jobs" "${@:2}"
}

step "clang-tidy, thread-safety analysis" scripts/check-tidy.py
step "test media" scripts/make-test-media.sh build/media
step "build release" scripts/build.sh release -j "$jobs" &&
    step "tests, release" suite release
step "build asan" scripts/build.sh asan -j "$jobs" &&
    step "tests, asan and ubsan" suite asan
step "build tsan" scripts/build.sh tsan -j "$jobs" &&
    launcher=("${fixed_addresses[@]}") &&
    step "tests, tsan" suite tsan -E "$alone"

echo
scripts/failed-tests.py build/release build/asan build/tsan
echo "=== all steps, $(((SECONDS - began) / 60)) min $(((SECONDS - began) % 60)) s"
printf '%s\n' "${table[@]}"
exit $((failures != 0))
