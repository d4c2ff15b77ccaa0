/// Headers of new material.
#include "header/SavHeaderFields.h"

SAV_HEADER make_header(char const* medium, char const* format, double input_rate, double replay_rate,
                       int drop_frame, double timecode_rate, double start_time_code, double end_time_code,
                       int bytes_per_sample, int number_of_channels, char const* vision_type, int width,
                       int height, LightweightString<wchar_t> const& orig_fname, int sequence,
                       int start_offset, char const* video_field, int transfer_type) {
    SAV_HEADER header;
    header.header_version = savHeaderVersion;
    setField(header.medium, medium);
    header.number_of_channels = number_of_channels;
    header.bytes_per_sample = bytes_per_sample;
    header.input_rate = input_rate;
    header.replay_rate = replay_rate;
    setField(header.format, format);
    header.drop_frame = drop_frame;
    header.timecode_rate = timecode_rate;
    header.start_time_code = start_time_code;
    header.end_time_code = end_time_code;
    header.sequence = sequence;
    header.start_offset = start_offset;
    setField(header.vision_type, vision_type);
    header.width = width;
    header.height = height;
    if (!orig_fname.empty()) {
        header.orig_fname = orig_fname;
    }
    setField(header.video_field, video_field);
    header.transfer_type = transfer_type;
    return header;
}
