#!/usr/bin/env bash
# Installs a build, then moves the installed tree to where the other tests of it look: it must not
# know where it stands.
#
#   stage.sh BUILD_DIR PREFIX
set -euo pipefail
build=$1 prefix=$2

rm -rf "$prefix" "$prefix.first"
cmake --install "$build" --prefix "$prefix.first" >/dev/null
mv "$prefix.first" "$prefix"

if grep -rIl -- "$build" "$prefix" || grep -rIl -- "$prefix.first" "$prefix"; then
    echo "the files above know the folder they were built or installed in" >&2
    exit 1
fi
if [ -x "$prefix/bin/playfile" ]; then
    "$prefix/bin/playfile" --help >/dev/null
fi
