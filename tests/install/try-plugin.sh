#!/usr/bin/env bash
# Builds a stranger's plug-in with the headers of an installed tree, and loads it with the consumer.
#
#   try-plugin.sh PREFIX VERSION
set -euo pipefail
prefix=$1 version=$2
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
read -ra flags <<<"$(pkg-config --cflags --libs playfile)"
mkdir "$scratch/plugins"
g++ -std=c++20 -shared -fPIC -o "$scratch/plugins/stranger.so" "$here/stranger-plugin/StrangerPlugin.cpp" "${flags[@]}"
g++ -std=c++20 -o "$scratch/consumer" "$here/consumer/main.cpp" "${flags[@]}" -Wl,-rpath,"$prefix/lib"
"$scratch/consumer" "$version" "$scratch/plugins"
