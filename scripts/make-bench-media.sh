#!/usr/bin/env bash
# Makes the clips of the workload bench with the ffmpeg program: 1920x1080, 25 frames a second.
#
#   scripts/make-bench-media.sh DIR [NAME...]
#
# Without names everything is made. What is there and younger than this script is left alone. The
# pictures move and bear noise, so that they cost a decoder what a camera's pictures do.
set -euo pipefail

if [ $# -lt 1 ] || [ "${1#-}" != "$1" ]; then
    sed -n '2,/^set /s/^# \{0,1\}//p' "$0" | sed '/^set /d'
    exit 2
fi
if ! command -v ffmpeg >/dev/null; then
    echo "make-bench-media: the ffmpeg program is missing; run scripts/install-deps.sh" >&2
    exit 1
fi

script=$(readlink -f "$0")
mkdir -p "$1"
dir=$(cd "$1" && pwd)
shift
scratch=$(mktemp -d "$dir/.making-XXXXXX")
trap 'rm -rf "$scratch"' EXIT

# encode FRAMES PIXEL_FORMAT OUT ENCODER_OPTION...
encode() {
    ffmpeg -hide_banner -loglevel error -nostdin -y \
        -f lavfi -i "testsrc2=size=1920x1080:rate=25,noise=alls=6:allf=t:all_seed=1,format=$2" \
        -frames:v "$1" "${@:4}" -fflags +bitexact -flags:v +bitexact "$3" </dev/null
}

# Groups of 5 seconds, three B-frames in a row that no other frame refers to.
make_h264-long-gop.mp4() {
    encode 250 yuv420p "$1" -c:v libx264 -preset veryfast -crf 24 -bf 3 \
        -x264-params "keyint=125:min-keyint=125:scenecut=0:b-adapt=0:b-pyramid=none" \
        -movflags +faststart
}
make_prores-422.mov() { encode 75 yuv422p10le "$1" -c:v prores_ks -profile:v standard; }
make_dnxhr-hq.mov() { encode 75 yuv422p "$1" -c:v dnxhd -profile:v dnxhr_hq; }
make_dnxhr-hq.mxf() { encode 75 yuv422p "$1" -c:v dnxhd -profile:v dnxhr_hq; }
make_mjpeg.mov() { encode 75 yuvj422p "$1" -c:v mjpeg -q:v 3; }
make_png.mov() { encode 50 rgb24 "$1" -c:v png -compression_level 3; }

all=$(declare -F | sed -n 's/^declare -f make_//p')
for name in "${@:-$all}"; do
    for each in $name; do
        if ! declare -F "make_$each" >/dev/null; then
            echo "make-bench-media: no clip is called '$each'; there are:" $all >&2
            exit 2
        fi
        if [ -e "$dir/$each" ] && [ "$dir/$each" -nt "$script" ]; then
            continue
        fi
        if ! "make_$each" "$scratch/$each"; then
            echo "make-bench-media: $each could not be made (ffmpeg said why above)" >&2
            exit 1
        fi
        mv -T "$scratch/$each" "$dir/$each"
        touch "$dir/$each"
        echo "made $dir/$each"
    done
done
