#!/usr/bin/env bash
# Builds and runs the consumer, and the example that reads a frame, by what pkg-config says of an installed tree.
#
#   try-pkg-config.sh PREFIX VERSION MEDIA_DIR
set -euo pipefail
prefix=$1 version=$2 clip=$3/h264-bframes-aac.mp4
source=$(cd "$(dirname "$0")/consumer" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
test "$(pkg-config --modversion playfile)" = "$version"
read -ra flags <<<"$(pkg-config --cflags --libs playfile)"
g++ -std=c++20 -o "$scratch/consumer" "$source/main.cpp" "${flags[@]}" -Wl,-rpath,"$prefix/lib"
plugins=$(pkg-config --variable=plugindir playfile)
"$scratch/consumer" "$version" "$plugins"

g++ -std=c++20 -o "$scratch/read_a_frame" "$source/../../../examples/read_a_frame.cpp" "${flags[@]}" \
    -Wl,-rpath,"$prefix/lib"
"$scratch/read_a_frame" "$plugins" "$clip" | tee "$scratch/said"
grep -q "frame 0 is 320 x 180" "$scratch/said"
