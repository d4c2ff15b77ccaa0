/// From the text to the record. Values are taken as far as they can be: what begins with no number is 0.
#include <locale.h>

#include <cstdlib>
#include <cstring>

#include "header/SavHeaderFields.h"

namespace {

constexpr int radix = 10;
/// The first version whose texts state `vision_type`.
constexpr int firstWithVisionType = 4;

/// Numbers are written with a full stop, whatever the process's locale says.
locale_t plainLocale() {
    static locale_t const locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

/// The texts of a record's fields.
class Values {
public:
    explicit Values(char const* text) : text_(text) {}

    [[nodiscard]] char const* find(char const* key) const { return PlayHdrString_seek_value(text_, key); }

    /// Leaves the field alone if the key is missing.
    void read(char const* key, std::int32_t& field) const {
        if (char const* const value = find(key)) {
            field = static_cast<std::int32_t>(std::strtol(value, nullptr, radix));
        }
    }
    void read(char const* key, double& field) const {
        if (char const* const value = find(key)) {
            field = ::strtod_l(value, nullptr, plainLocale());
        }
    }
    template <std::size_t size>
    void read(char const* key, char (&field)[size]) const {
        if (char const* const value = find(key)) {
            setField(field, value);
        }
    }

    template <class Number>
    void readOr(char const* key, Number& field, Number otherwise) const {
        field = otherwise;
        read(key, field);
    }
    template <std::size_t size>
    void readOr(char const* key, char (&field)[size], char const* otherwise) const {
        setField(field, otherwise);
        read(key, field);
    }

private:
    char const* text_;
};

void readSoundV1(Values const& values, SAV_HEADER& header) {
    values.read("number_of_channels", header.number_of_channels);
    values.read("bytes_per_sample", header.bytes_per_sample);
    values.read("sampling_frequency", header.input_rate);
    values.read("sampling_frequency", header.replay_rate);
    values.read("sound_format", header.format);
}

void readVisionV1(Values const& values, SAV_HEADER& header) {
    values.read("vision_type", header.vision_type);
    values.read("width", header.width);
    values.read("height", header.height);
    setField(header.format, "PAL");
    header.input_rate = 25.0;
    header.replay_rate = 25.0;
}

void readVisionV2(Values const& values, int version, SAV_HEADER& header) {
    if (version >= firstWithVisionType) {
        values.read("vision_type", header.vision_type);
    } else {
        setField(header.vision_type, "unknown");
    }
    values.read("width", header.width);
    values.read("height", header.height);
    values.read("sequence", header.sequence);
}

void readRatesV2(Values const& values, SAV_HEADER& header) {
    values.readOr("input_rate", header.input_rate, 1.0);
    values.readOr("replay_rate", header.replay_rate, header.input_rate);
    values.readOr("timecode_rate", header.timecode_rate, header.replay_rate);
}

void readOriginV2(Values const& values, SAV_HEADER& header) {
    values.readOr("reelid", header.reelid, "");
    char const* const name = values.find("orig_fname");
    header.orig_fname = name != nullptr ? fromUTF8(name, -1) : LightweightString<wchar_t>();
    values.readOr("ox_ver", header.ox_ver, "unknown");
}

bool isMedium(SAV_HEADER const& header, char const* medium) {
    return std::strcmp(header.medium, medium) == 0;
}

}  // namespace

int playhdr_get_version(char* text) {
    std::int32_t version = 1;
    Values(text).read("header_version", version);
    return version;
}

void parse_header_v1(SAV_HEADER* header, char* text) {
    Values const values(text);
    values.readOr("medium", header->medium, "sound");
    if (isMedium(*header, "sound")) {
        readSoundV1(values, *header);
    }
    if (isMedium(*header, "vision")) {
        readVisionV1(values, *header);
    }
    header->drop_frame = 0;
    header->start_time_code = 0.0;
    header->end_time_code = 0.0;
    header->timecode_rate = 25.0;
    header->orig_fname = LightweightString<wchar_t>();
    setField(header->reelid, "");
    setField(header->ox_ver, "");
    header->sequence = -1;
    header->start_offset = 0;
    header->header_version = savHeaderVersion;
}

void parse_header_v2(SAV_HEADER* header, char* text) {
    Values const values(text);
    int const version = playhdr_get_version(text);
    values.readOr("medium", header->medium, "sound");
    values.readOr("drop_frame", header->drop_frame, 0);
    if (isMedium(*header, "sound")) {
        values.read("number_of_channels", header->number_of_channels);
        values.read("bytes_per_sample", header->bytes_per_sample);
    }
    header->sequence = -1;
    bool const isVision = isMedium(*header, "vision");
    if (isVision) {
        readVisionV2(values, version, *header);
    }
    values.readOr("start_offset", header->start_offset, 0);
    readRatesV2(values, *header);
    values.read("format", header->format);
    values.readOr("start_time_code", header->start_time_code, 0.0);
    values.readOr("end_time_code", header->end_time_code, 0.0);
    readOriginV2(values, *header);
    header->header_version = savHeaderVersion;
    if (isVision) {
        values.readOr("video_field", header->video_field, "second");
    }
}
