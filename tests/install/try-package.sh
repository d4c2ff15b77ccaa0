#!/usr/bin/env bash
# Builds and runs the consumer, and the example that reads a frame, by the CMake package of an
# installed tree.
#
#   try-package.sh PREFIX VERSION MEDIA_DIR
set -euo pipefail
prefix=$1 version=$2 clip=$3/h264-bframes-aac.mp4
source=$(cd "$(dirname "$0")/consumer" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake -G Ninja -S "$source" -B "$scratch" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release >"$scratch/log" ||
    { cat "$scratch/log" && exit 1; }
cmake --build "$scratch"
"$scratch/consumer" "$version" "$prefix/lib/playfile/plugins"
"$scratch/read_a_frame" "$prefix/lib/playfile/plugins" "$clip" | tee "$scratch/said"
grep -q "frame 0 is 320 x 180" "$scratch/said"
