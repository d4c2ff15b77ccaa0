#!/usr/bin/env bash
# Builds and runs the consumer by the CMake package of an installed tree.
#
#   try-package.sh PREFIX VERSION
set -euo pipefail
prefix=$1 version=$2
source=$(cd "$(dirname "$0")/consumer" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake -G Ninja -S "$source" -B "$scratch" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release >"$scratch/log" ||
    { cat "$scratch/log" && exit 1; }
cmake --build "$scratch"
"$scratch/consumer" "$version" "$prefix/lib/playfile/plugins"
