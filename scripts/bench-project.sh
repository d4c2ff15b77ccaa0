#!/usr/bin/env bash
# Measures `playfile project` on a made tree: seconds and the most memory of each command.
#
#   scripts/bench-project.sh [CLIPS] [PROGRAM]
set -euo pipefail
cd "$(dirname "$0")/.."

clips=${1:-10000}
program=${2:-build/release/bin/playfile}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_CONFIG_HOME="$folder/config"

python3 - "$folder/media" "$clips" <<'PYTHON'
import pathlib
import sys

root, clips = pathlib.Path(sys.argv[1]), int(sys.argv[2])
words = ["Straße", "Сцена", "シーン", "場景", "दृश्य", "مشهد"]
for number in range(clips):
    folder = root.joinpath(*[f"{words[number // step % 6]}{number // step}" for step in (1000, 100, 10)])
    folder.mkdir(parents=True, exist_ok=True)
    (folder / f"{words[number % 6]} {number}.{'wav' if number % 3 == 0 else 'mov'}").write_bytes(b"media")
PYTHON

# measure LABEL ARGUMENT...
measure() {
    python3 - "$@" <<'PYTHON'
import resource
import subprocess
import sys
import time

start = time.monotonic()
ended = subprocess.run(sys.argv[2:], stdout=subprocess.DEVNULL)
seconds = time.monotonic() - start
peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
print(f"{sys.argv[1]:<28} {seconds:6.2f} s  {peak:6.1f} MiB  exit code {ended.returncode}", flush=True)
sys.exit(ended.returncode)
PYTHON
}

project="$folder/bench.project"
"$program" project create "$project" >/dev/null
measure "import $clips" "$program" project import "$project" "$folder/media" --recursive
measure "import again" "$program" project import "$project" "$folder/media" --recursive
measure "ls" "$program" project ls "$project"
measure "ls --json" "$program" project ls "$project" --json
measure "ls --check" "$program" project ls "$project" --check
measure "check" "$program" project check "$project"
