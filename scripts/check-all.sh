#!/usr/bin/env bash
# Runs all checks of the tree; needs the build of the preset release.
set -uo pipefail
cd "$(dirname "$0")/.."

failed=()
check() { "scripts/$1" "${@:2}" || failed+=("$1"); }

check check-words.py
check check-layers.py
check check-format.py
check check-headers.py
check check-symbols.py build/release
check check-tidy.py

if [ ${#failed[@]} != 0 ]; then
    echo "failed: ${failed[*]}" >&2
    exit 1
fi
