#!/usr/bin/env bash
# Makes the media of the benches with the ffmpeg program: clips of 1920x1080, 25 frames a second, and sound.
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

# A minute of sound: another noise in each channel.
sound() { # CHANNELS OUT ENCODER_OPTION...
    local channel expressions=""
    for ((channel = 0; channel < $1; channel++)); do
        expressions+="${expressions:+|}0.5*(2*random($channel)-1)+0.3*sin($((channel + 2))*400*t)"
    done
    run -f lavfi -i "aevalsrc=$expressions:sample_rate=48000:duration=60" "${@:3}" \
        -fflags +bitexact -flags:a +bitexact "$2"
}
make_sound-8ch-24bit.wav() { sound 8 "$1" -c:a pcm_s24le; }
make_sound-2ch.m4a() { sound 2 "$1" -c:a aac -b:a 192k; }
make_sound-6ch.m4a() { sound 6 "$1" -c:a aac -b:a 384k; }

bring_media "$@"
