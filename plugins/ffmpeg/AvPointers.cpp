#include "plugins/ffmpeg/AvPointers.h"

#include <new>

namespace playfile_ffmpeg {

std::string avErrorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

AvPtr<AVPacket> makePacket() {
    AvPtr<AVPacket> packet(av_packet_alloc());
    if (!packet) {
        throw std::bad_alloc();
    }
    return packet;
}

AvPtr<AVFrame> makeFrame() {
    AvPtr<AVFrame> frame(av_frame_alloc());
    if (!frame) {
        throw std::bad_alloc();
    }
    return frame;
}

}  // namespace playfile_ffmpeg
