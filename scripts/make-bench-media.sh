#!/usr/bin/env bash
# Makes the media of the benches with the ffmpeg program: clips of 1920x1080, 25 frames a second, one of
# 3840x2160, a folder of 300 short ones, and sound.
#
#   scripts/make-bench-media.sh DIR [NAME...]
#
# Without names everything is made. What is there is left alone: delete it to have it made again. The
# pictures move and bear noise, so that they cost a decoder what a camera's pictures do.
set -euo pipefail
. "$(dirname "$0")/media.sh"

keeps_what_is_there=yes

# encode FRAMES PIXEL_FORMAT OUT ENCODER_OPTION..., in the size that $size states
size=1920x1080
encode() {
    run -f lavfi -i "testsrc2=size=$size:rate=25,noise=alls=6:allf=t:all_seed=1,format=$2" \
        -frames:v "$1" "${@:4}" -fflags +bitexact -flags:v +bitexact "$3"
}

# Groups of 5 seconds, three B-frames in a row that no other frame refers to.
make_h264-long-gop.mp4() {
    encode 250 yuv420p "$1" -c:v libx264 -preset veryfast -crf 24 -bf 3 \
        -x264-params "keyint=125:min-keyint=125:scenecut=0:b-adapt=0:b-pyramid=none" \
        -movflags +faststart
}
# Groups of a fixed number of frames, with the B-frames that refer to each other of a usual export.
h264_groups() { # FRAMES_A_GROUP OUT
    encode 500 yuv420p "$2" -c:v libx264 -preset veryfast -crf 24 -bf 3 \
        -x264-params "keyint=$1:min-keyint=$1:scenecut=0" -movflags +faststart
}
make_h264-gop250.mp4() { h264_groups 250 "$1"; }
make_h264-gop12.mp4() { h264_groups 12 "$1"; }
# A single group.
make_hevc-uhd.mp4() {
    size=3840x2160 encode 150 yuv420p "$1" -c:v libx265 -preset ultrafast -crf 26 \
        -x265-params "keyint=250:min-keyint=250:scenecut=0:bframes=3:log-level=error" -tag:v hvc1 \
        -movflags +faststart
}
# 300 files of a second each, the same in all of them but no links: an editor's bin of short takes.
make_shorts() {
    local i
    size=320x180 encode 25 yuv420p "$scratch/short.mp4" -c:v libx264 -preset veryfast -crf 24 -bf 2 \
        -movflags +faststart
    mkdir "$1"
    for ((i = 1; i <= 300; i++)); do
        cp "$scratch/short.mp4" "$1/$(printf '%03d' "$i").mp4"
    done
}
make_prores-422.mov() { encode 75 yuv422p10le "$1" -c:v prores_ks -profile:v standard; }
make_dnxhr-hq.mov() { encode 75 yuv422p "$1" -c:v dnxhd -profile:v dnxhr_hq; }
make_dnxhr-hq.mxf() { encode 75 yuv422p "$1" -c:v dnxhd -profile:v dnxhr_hq; }
make_mjpeg.mov() { encode 75 yuvj422p "$1" -c:v mjpeg -q:v 3; }
make_png.mov() { encode 50 rgb24 "$1" -c:v png -compression_level 3; }

# Sound: another noise in each channel.
sound() { # CHANNELS SECONDS OUT ENCODER_OPTION...
    local channel expressions=""
    for ((channel = 0; channel < $1; channel++)); do
        expressions+="${expressions:+|}0.5*(2*random($channel)-1)+0.3*sin($((channel + 2))*400*t)"
    done
    run -f lavfi -i "aevalsrc=$expressions:sample_rate=48000:duration=$2" "${@:4}" \
        -fflags +bitexact -flags:a +bitexact "$3"
}
make_sound-8ch-24bit.wav() { sound 8 60 "$1" -c:a pcm_s24le; }
make_sound-64ch-24bit.wav() { sound 64 60 "$1" -c:a pcm_s24le; }
# So long that the first block, before which the decoder's code comes from the disk, doesn't count in order.
make_sound-2ch.m4a() { sound 2 300 "$1" -c:a aac -b:a 192k; }
make_sound-6ch.m4a() { sound 6 300 "$1" -c:a aac -b:a 384k; }
make_sound-2ch.mp3() { sound 2 300 "$1" -c:a libmp3lame -b:a 192k; }

bring_media "$@"
