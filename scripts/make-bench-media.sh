#!/usr/bin/env bash
# Makes the clips of the workload bench with the ffmpeg program: 1920x1080, 25 frames a second.
#
#   scripts/make-bench-media.sh DIR [NAME...]
#
# Without names everything is made. What is there and younger than this script is left alone. The
# pictures move and bear noise, so that they cost a decoder what a camera's pictures do.
set -euo pipefail
. "$(dirname "$0")/media.sh"

# encode FRAMES PIXEL_FORMAT OUT ENCODER_OPTION...
encode() {
    run -f lavfi -i "testsrc2=size=1920x1080:rate=25,noise=alls=6:allf=t:all_seed=1,format=$2" \
        -frames:v "$1" "${@:4}" -fflags +bitexact -flags:v +bitexact "$3"
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

bring_media "$@"
