#!/usr/bin/env bash
# Builds and runs the consumer by what pkg-config says of an installed tree.
#
#   try-pkg-config.sh PREFIX VERSION
set -euo pipefail
prefix=$1 version=$2
source=$(cd "$(dirname "$0")/consumer" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
test "$(pkg-config --modversion playfile)" = "$version"
read -ra flags <<<"$(pkg-config --cflags --libs playfile)"
g++ -std=c++20 -o "$scratch/consumer" "$source/main.cpp" "${flags[@]}" -Wl,-rpath,"$prefix/lib"
"$scratch/consumer" "$version" "$(pkg-config --variable=plugindir playfile)"
