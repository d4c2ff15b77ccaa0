#!/usr/bin/env bash
# Configures, where that is needed, and builds a preset.
#
#   scripts/build.sh PRESET [-j N] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:?a preset: dev, release, asan, tsan or tsa}
shift
options=()
if [ "${1:-}" = -j ]; then
    options+=(-j "${2:?a number of jobs}")
    shift 2
fi
if [ $# != 0 ]; then
    options+=(--target "$@")
fi

mkdir -p "build/$preset"
if [ ! -e "build/$preset/build.ninja" ]; then
    log="build/$preset/configure.log"
    cmake --preset "$preset" >"$log" 2>&1 || {
        cat "$log" >&2
        exit 1
    }
fi
cmake --build "build/$preset" "${options[@]}"
