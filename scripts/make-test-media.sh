#!/usr/bin/env bash
# Makes the project's own test media with the ffmpeg program.
#
#   scripts/make-test-media.sh DIR [NAME...]
#
# Without names everything is made. What is there and younger than this script is left alone; a file
# appears under its name only when it is whole, so that two runs at once do no harm.
#
# Every frame of the video clips bears its number: the top 16 lines hold 12 cells of 16 pixels, cell
# i (from the left, from 0) is white where bit i of the frame's number, counted from 0 in display
# order, is set, and black where it is not.
set -euo pipefail
. "$(dirname "$0")/media.sh"

# stamped WIDTHxHEIGHT RATE FRAMES PIXEL_FORMAT: a lossless master with the stamp in it; sets $master.
stamped() {
    master="$scratch/master-$1-${2//\//_}-$3-$4.mkv"
    [ -e "$master" ] && return
    local bit="mod(floor(N/pow(2,floor(X/16))),2)"
    run -f lavfi -i "testsrc2=size=$1:rate=$2,format=yuv444p" -frames:v "$3" -vf "
        split[whole][top]; [top]crop=192:16:0:0,
        geq=lum='16+219*$bit':cb=128:cr=128[stamp]; [whole][stamp]overlay=0:0:format=yuv444,
        format=$4" -c:v ffv1 -level 3 -g 1 "$master"
}

# sound SECONDS: two different tones; sets $tone.
sound() {
    tone="$scratch/tone-$1.wav"
    [ -e "$tone" ] && return
    run -f lavfi -i "sine=frequency=440:sample_rate=48000:duration=$1" \
        -f lavfi -i "sine=frequency=660:sample_rate=48000:duration=$1" \
        -filter_complex "[0][1]join=inputs=2:channel_layout=stereo" -c:a pcm_s16le "$tone"
}

x264=(-c:v libx264 -preset fast -threads 2)
exact=(-fflags +bitexact -flags:v +bitexact -map_metadata -1)

h264() { # OUT, then encoder options
    stamped 320x180 25 100 yuv420p
    run -i "$master" "${x264[@]}" "${exact[@]}" "${@:2}" "$1"
}

make_demo.mp4() {
    stamped 640x360 25 250 yuv420p
    sound 10
    run -i "$master" -i "$tone" "${x264[@]}" -g 50 -bf 3 -crf 23 -c:a aac -b:a 128k "${exact[@]}" \
        -color_primaries bt709 -color_trc bt709 -colorspace bt709 -movflags +faststart "$1"
}
make_h264-bframes-aac.mp4() {
    sound 4
    stamped 320x180 25 100 yuv420p
    run -i "$master" -i "$tone" "${x264[@]}" -g 24 -bf 3 -x264-params b-pyramid=normal \
        -c:a aac "${exact[@]}" "$1"
}
make_h264-open-gop.mp4() { h264 "$1" -g 20 -keyint_min 20 -sc_threshold 0 -bf 3 -x264-params open-gop=1; }
make_h264-one-long-gop.mp4() { h264 "$1" -g 1000 -keyint_min 1000 -sc_threshold 0 -bf 2; }
make_h264-intra.mov() { h264 "$1" -g 1; }
make_h264-one-frame.mp4() { h264 "$1" -frames:v 1; }
# A picture of it takes more than a MiB.
make_h264-720p.mp4() {
    stamped 1280x720 25 10 yuv420p
    run -i "$master" "${x264[@]}" "${exact[@]}" "$1"
}
make_h264-full-range-bt601.mp4() {
    h264 "$1" -vf "scale=in_range=limited:out_range=full" -color_range pc -color_primaries smpte170m \
        -color_trc smpte170m -colorspace smpte170m
}
make_h264-high10-bt2020-pq.mp4() {
    stamped 320x180 24000/1001 48 yuv420p10le
    run -i "$master" "${x264[@]}" "${exact[@]}" -color_primaries bt2020 -color_trc smpte2084 \
        -colorspace bt2020nc "$1"
}
make_h264-29.97-timecode.mov() {
    stamped 320x180 30000/1001 60 yuv420p
    run -i "$master" "${x264[@]}" "${exact[@]}" -timecode "01:00:00;00" "$1"
}
# Copied from between two key frames: the container hides the frames before frame 37.
make_h264-edit-list.mp4() {
    make_h264-bframes-aac.mp4 "$scratch/whole.mp4"
    run -ss 1.48 -i "$scratch/whole.mp4" -c copy "${exact[@]}" "$1"
}
make_h264-rotated-90.mp4() {
    h264 "$scratch/upright.mp4" -bf 2
    run -i "$scratch/upright.mp4" -c copy -metadata:s:v:0 rotate=90 "$1"
}
make_h264-anamorphic.mp4() { h264 "$1" -vf setsar=4/3; }
make_h264-raw.h264() { h264 "$1" -g 24 -bf 3 -f h264; }
make_h264-mpegts.ts() { h264 "$1" -g 24 -bf 3 -f mpegts; }
make_h264-matroska.mkv() { h264 "$1" -g 24 -bf 3; }
make_h264-fragmented.mp4() { h264 "$1" -g 24 -bf 3 -movflags +frag_keyframe+empty_moov; }
make_h264-varying-rate.mp4() {
    stamped 320x180 25 100 yuv420p
    run -i "$master" -vf "setpts='(N+if(mod(N,5),0.5,0)+3*floor(N/25))/(25*TB)'" -fps_mode passthrough \
        -enc_time_base 1/1000 -video_track_timescale 1000 "${x264[@]}" -bf 2 "${exact[@]}" "$1"
}
make_h264-interlaced.mp4() { h264 "$1" -vf setfield=tff -flags +ilme+ildct -x264-params tff=1; }
make_hevc-open-gop.mp4() {
    grep -q libx265 <<<"$(ffmpeg -hide_banner -encoders 2>/dev/null)" || return 77
    stamped 320x180 25 100 yuv420p
    run -i "$master" -c:v libx265 -preset fast -tag:v hvc1 "${exact[@]}" \
        -x265-params "keyint=25:min-keyint=25:open-gop=1:bframes=4:log-level=error" "$1"
}
make_prores-422-pcm.mov() {
    stamped 320x180 25 50 yuv422p10le
    sound 2
    run -i "$master" -i "$tone" -c:v prores_ks -profile:v standard -c:a pcm_s16le "${exact[@]}" "$1"
}
make_prores-4444-alpha.mov() {
    stamped 320x180 24 24 yuva444p10le
    run -i "$master" -c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le "${exact[@]}" "$1"
}
dnxhr() {
    stamped 320x180 25 50 yuv422p
    run -i "$master" -c:v dnxhd -profile:v dnxhr_sq "${exact[@]}" "$1"
}
make_dnxhr-sq.mov() { dnxhr "$1"; }
make_dnxhr-sq.mxf() { dnxhr "$1"; }
make_mjpeg.mov() {
    stamped 320x180 25 50 yuvj420p
    run -i "$master" -c:v mjpeg -q:v 3 "${exact[@]}" "$1"
}
make_mjpeg.avi() {
    stamped 320x180 25 50 yuvj420p
    run -i "$master" -c:v mjpeg -q:v 3 "${exact[@]}" "$1"
}
# A picture that others refer to lies in one packet with the first of those shown before it. The encoder
# leaves out the last two pictures but one, so the end is cut off.
make_mpeg4-packed.avi() {
    grep -q libxvid <<<"$(ffmpeg -hide_banner -encoders 2>/dev/null)" || return 77
    stamped 320x180 25 100 yuv420p
    run -i "$master" -c:v libxvid -q:v 3 -g 24 -bf 2 "${exact[@]}" "$scratch/packed.avi"
    run -i "$scratch/packed.avi" -c copy -frames:v 94 "${exact[@]}" "$1"
}
mpeg4() {
    stamped 320x180 25 100 yuv420p
    run -i "$master" -c:v mpeg4 -q:v 3 -g 24 -bf 2 "${exact[@]}" "$1"
}
make_mpeg4-bframes.avi() { mpeg4 "$1"; }
make_mpeg4-bframes.mp4() { mpeg4 "$1"; }
make_png.mov() {
    stamped 320x180 25 25 rgb24
    run -i "$master" -c:v png "${exact[@]}" "$1"
}
make_rawvideo-uyvy.mov() {
    stamped 320x180 25 10 yuv422p
    run -i "$master" -c:v rawvideo -pix_fmt uyvy422 "${exact[@]}" "$1"
}
make_mpeg2-interlaced.ts() {
    stamped 720x576 25 50 yuv420p
    sound 2
    run -i "$master" -i "$tone" -vf setfield=tff -c:v mpeg2video -b:v 2M -g 12 -bf 2 \
        -flags:v +ildct+ilme+bitexact -fflags +bitexact -c:a mp2 "$1"
}
make_mpeg2-program-stream.mpg() {
    stamped 320x180 25 50 yuv420p
    run -i "$master" -c:v mpeg2video -b:v 1M -g 12 -bf 2 "${exact[@]}" "$1"
}
make_vp9.webm() {
    stamped 320x180 25 50 yuv420p
    run -i "$master" -c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 300k -g 25 "${exact[@]}" "$1"
}
# Pictures that are only there to be referred to lie in packets of their own.
vp9_hidden() {
    stamped 320x180 25 100 yuv420p
    local pass
    for pass in 1 2; do
        run -i "$master" -c:v libvpx-vp9 -deadline good -cpu-used 4 -auto-alt-ref 1 -lag-in-frames 25 \
            -b:v 200k -g 100 -threads 2 -pass $pass -passlogfile "$scratch/pass" "${exact[@]}" \
            -f webm "$scratch/joined.webm"
    done
    run -i "$scratch/joined.webm" -c copy -bsf:v vp9_superframe_split "${exact[@]}" \
        -fflags +bitexact-autobsf "$1"
}
make_vp9-hidden-frames.webm() { vp9_hidden "$1"; }
make_vp9-hidden-frames.mp4() { vp9_hidden "$1"; }
make_two-videos.mp4() {
    stamped 320x180 25 50 yuv420p
    local first=$master
    stamped 192x108 30 60 yuv420p
    run -i "$first" -i "$master" -map 0 -map 1 "${x264[@]}" "${exact[@]}" "$1"
}
make_still.png() { stamped 320x180 25 10 rgb24 && run -i "$master" -frames:v 1 -update 1 "$1"; }
make_still.jpg() { stamped 320x180 25 50 yuvj420p && run -i "$master" -frames:v 1 -update 1 "$1"; }
make_still.tiff() { stamped 320x180 25 10 rgb24 && run -i "$master" -frames:v 1 -update 1 "$1"; }
# A numbered sequence that starts at 0; the name is that of its folder.
make_sequence-png() {
    stamped 320x180 25 10 rgb24
    mkdir "$1"
    run -i "$master" -start_number 0 "$1/frame-%04d.png"
}
make_tone.wav() { sound 2 && cp "$tone" "$1"; }

# noise CHANNELS ENCODER OUT OPTION...: two seconds at most, another noise in each channel.
noise() {
    local channel expressions=""
    for ((channel = 0; channel < $1; channel++)); do
        expressions+="${expressions:+|}0.9*(2*random($channel)-1)"
    done
    run -f lavfi -i "aevalsrc=$expressions:sample_rate=48000:duration=2" -c:a "$2" "${exact[@]}" "${@:4}" "$3"
}
make_noise-u8-1ch.wav() { noise 1 pcm_u8 "$1"; }
make_noise-s24-8ch.wav() { noise 8 pcm_s24le "$1" -rf64 always; }
make_noise-s32-3ch.wav() { noise 3 pcm_s32le "$1"; }
make_noise-f32-64ch.wav() { noise 64 pcm_f32le "$1" -t 0.3; }
make_noise-f64-2ch.wav() { noise 2 pcm_f64le "$1"; }
make_alaw-2ch.wav() { noise 2 pcm_alaw "$1"; }
# Written into a pipe: no length is stated.
make_noise-s16-2ch-streamed.wav() { noise 2 pcm_s16le - -f wav >"$1"; }
make_tone-cover-art.mp3() {
    sound 2
    make_still.png "$scratch/cover.png"
    run -i "$tone" -i "$scratch/cover.png" -map 0 -map 1 -c:a libmp3lame -c:v copy \
        -disposition:v attached_pic "${exact[@]}" "$1"
}
make_video-and-cover-art.mp4() {
    make_h264-bframes-aac.mp4 "$scratch/covered.mp4"
    make_still.jpg "$scratch/cover.jpg"
    run -i "$scratch/covered.mp4" -i "$scratch/cover.jpg" -map 0 -map 1 -c copy \
        -disposition:v:1 attached_pic "${exact[@]}" "$1"
}

# music RATE CHANNELS: five seconds of sound that never stays the same: notes that climb, bursts of noise,
# silence; sets $music.
music() {
    music="$scratch/music-$1-$2.wav"
    [ -e "$music" ] && return
    local channel expressions=""
    for ((channel = 1; channel <= $2; channel++)); do
        expressions+="${expressions:+|}0.35*sin(2*PI*($((90 * channel))+$((70 * channel))*t)*t)*gt(mod(t,$channel.7),0.4)"
        expressions+="+0.1*(2*random($channel)-1)*gt(mod(t+0.3*$channel,1.5),1.2)"
    done
    run -f lavfi -i "aevalsrc='$expressions':sample_rate=$1:duration=5" -c:a pcm_s24le "$music"
}
# coded RATE CHANNELS OUT OPTION...: that sound, coded.
coded() {
    music "$1" "$2"
    run -i "$music" "${@:4}" -map_metadata -1 "$3"
}
make_music-s16.mov() { coded 48000 2 "$1" -c:a pcm_s16le; }
make_music-s24be-6ch.mov() { coded 48000 6 "$1" -c:a pcm_s24be; }
make_music-f64be.caf() { coded 44100 2 "$1" -c:a pcm_f64be; }
make_music-s8.aiff() { coded 44100 2 "$1" -c:a pcm_s8; }
make_music-mulaw.au() { coded 44100 2 "$1" -c:a pcm_mulaw; }
make_music-alaw.mov() { coded 44100 2 "$1" -c:a pcm_alaw; }
make_music-u16be.nut() { coded 44100 2 "$1" -c:a pcm_u16be; }
make_music-s64.nut() { coded 44100 2 "$1" -c:a pcm_s64le; }
make_music-s16-planar.nut() { coded 44100 2 "$1" -c:a pcm_s16le_planar; }
make_music-s24.mkv() { coded 48000 2 "$1" -c:a pcm_s24le; }
make_music-f32.avi() { coded 48000 2 "$1" -c:a pcm_f32le; }
make_music-dvd.vob() { coded 48000 2 "$1" -c:a pcm_dvd -sample_fmt s32; }
make_music-bluray.m2ts() { coded 48000 2 "$1" -c:a pcm_bluray -mpegts_m2ts_mode 1 -f mpegts; }
make_music-302m.ts() { coded 48000 2 "$1" -c:a s302m -strict -2; }
# Without the noise that stands in for what isn't coded, a decoder gives the same wherever it begins.
make_music-aac.mp4() { coded 48000 2 "$1" -c:a aac -aac_pns 0; }
make_music-aac-6ch.m4a() { coded 48000 6 "$1" -c:a aac -aac_pns 0; }
make_music-aac-fragmented.mp4() {
    coded 44100 2 "$1" -c:a aac -aac_pns 0 -movflags empty_moov -frag_duration 500000
}
make_music-aac.ts() { coded 48000 2 "$1" -c:a aac -aac_pns 0; }
make_music-aac.aac() { coded 44100 1 "$1" -c:a aac -aac_pns 0; }
make_music-aac.mkv() { coded 48000 2 "$1" -c:a aac -aac_pns 0; }
make_music-noisy-aac.m4a() { coded 48000 2 "$1" -c:a aac -aac_pns 1; }
make_music-latm.ts() {
    coded 48000 2 "$scratch/music-latm.mp4" -c:a aac -aac_pns 0
    run -i "$scratch/music-latm.mp4" -c copy -mpegts_flags latm "$1"
}
# The container hides what lies before 1.3 seconds, in the middle of a packet.
make_music-aac-edited.mp4() {
    coded 48000 2 "$scratch/music-whole.mp4" -c:a aac -aac_pns 0
    run -ss 1.3 -i "$scratch/music-whole.mp4" -c copy "$1"
}
make_music-128k.mp3() { coded 44100 2 "$1" -c:a libmp3lame -b:a 128k; }
make_music-32k.mp3() { coded 44100 2 "$1" -c:a libmp3lame -b:a 32k; }
make_music-vbr.mp3() { coded 48000 2 "$1" -c:a libmp3lame -q:a 3; }
make_music-8k.mp3() { coded 8000 1 "$1" -c:a libmp3lame -b:a 8k; }
make_music-mp3.avi() { coded 48000 2 "$1" -c:a libmp3lame; }
make_music-mp3.mp4() { coded 48000 2 "$1" -c:a libmp3lame; }
make_music.opus() { coded 48000 2 "$1" -c:a libopus -b:a 96k; }
make_music-6ch.opus() { coded 48000 6 "$1" -c:a libopus -mapping_family 1; }
make_music-short-packets.opus() { coded 48000 2 "$1" -c:a libopus -frame_duration 2.5; }
make_music-speech.opus() { coded 8000 1 "$1" -c:a libopus -b:a 12k -application voip; }
make_music-opus.webm() { coded 48000 2 "$1" -c:a libopus; }
make_music.ogg() { coded 44100 2 "$1" -c:a libvorbis; }
make_music-vorbis.webm() { coded 48000 2 "$1" -c:a libvorbis; }
make_music-24.flac() { coded 48000 2 "$1" -c:a flac; }
make_music-flac.ogg() { coded 44100 2 "$1" -c:a flac -sample_fmt s16; }
make_music-flac.mkv() { coded 44100 2 "$1" -c:a flac -sample_fmt s16; }
make_music-alac.m4a() { coded 44100 2 "$1" -c:a alac; }
make_music.tta() { coded 44100 2 "$1" -c:a tta; }
make_music.wv() { coded 44100 2 "$1" -c:a wavpack; }
make_music.thd() { coded 48000 2 "$1" -c:a truehd -strict -2; }
make_music.ac3() { coded 48000 6 "$1" -c:a ac3; }
make_music-eac3.mp4() { coded 48000 2 "$1" -c:a eac3; }
make_music.mp2() { coded 48000 2 "$1" -c:a mp2; }
make_music-mp2.mpg() { coded 48000 2 "$1" -c:a mp2; }
make_music.wma() { coded 44100 2 "$1" -c:a wmav2; }
make_music.gsm() { coded 8000 1 "$1" -c:a libgsm; }
make_music-ima.mov() { coded 44100 2 "$1" -c:a adpcm_ima_qt; }
# Two streams of different rates, codecs and lengths.
make_music-two-streams.mov() {
    music 48000 2
    local first=$music
    music 44100 1
    run -i "$first" -i "$music" -map 0 -map 1 -c:a:0 pcm_s16le -c:a:1 aac -aac_pns 0 -map_metadata -1 "$1"
}
make_pictures-and-music.mxf() {
    stamped 320x180 30000/1001 60 yuv420p
    music 48000 2
    run -i "$master" -i "$music" -shortest -c:v mpeg2video -g 1 -c:a pcm_s16le "${exact[@]}" "$1"
}
make_pictures-and-music.dv() {
    stamped 720x576 25 25 yuv420p
    music 48000 2
    run -i "$master" -i "$music" -shortest -c:v dvvideo -c:a pcm_s16le -f dv "$1"
}
make_pictures-and-music.ts() {
    stamped 320x180 25 50 yuv420p
    music 48000 2
    run -i "$master" -i "$music" -shortest "${x264[@]}" -c:a aac -aac_pns 0 "$1"
}
make_text-named.mov() { echo "These are words and no pictures." >"$1"; }
make_empty.mp4() { : >"$1"; }

bring_media "$@"
