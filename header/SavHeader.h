#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"

/// The version that every header bears which is made or parsed here.
constexpr std::int32_t savHeaderVersion = 6;

/// What is known of a material file beside its media: what it is, rates, time codes, where it came from.
///
/// On disk it is a text, a line each of key, blank and value, ended by a line feed and then a carriage
/// return (docs/sav-header.md). `medium` decides which keys a text has.
///
/// Ownership  A plain record; copies share the buffer of `orig_fname`.
/// Units      Rates: samples or frames a second. Time codes: as the recorder counted. Sizes: pixels.
struct SAV_HEADER {
    std::int32_t header_version = 0;
    /// "sound" or "vision".
    char medium[21] = {};
    std::int32_t number_of_channels = 0;
    /// Of one channel.
    std::int32_t bytes_per_sample = 0;
    double input_rate = 0.0;
    double replay_rate = 0.0;
    /// "linear_uncompressed", "data", "PAL"; of sound the form of the samples.
    char format[21] = {};
    std::int32_t drop_frame = 0;
    double timecode_rate = 0.0;
    double start_time_code = 0.0;
    double end_time_code = 0.0;
    /// -1 for none.
    std::int32_t sequence = 0;
    std::int32_t start_offset = 0;
    /// "PAL", "NTSC" or "unknown".
    char vision_type[21] = {};
    std::int32_t width = 0;
    std::int32_t height = 0;
    /// The file that the material came from.
    LightweightString<wchar_t> orig_fname;
    char reelid[9] = {};
    /// The build that wrote the text which was parsed.
    char ox_ver[21] = {};
    /// Which fields of a frame: "both", "second".
    char video_field[8] = {};
    /// -1 for none.
    std::int32_t transfer_type = 0;
};

/// Bytes that the longest text needs, its NUL included.
constexpr std::int32_t savHeaderTextBytes = 21 * 511 + 1;

/// Writes the text of a header.
///
/// @param buffer  holds the whole text, at most `savHeaderTextBytes`
/// @return        the NUL at the text's end
/// Deliberate     `ox_ver` becomes the version of this build, not the record's. A line of more than 511
///                bytes is cut there, without its end.
char* header_to_string(SAV_HEADER* header, char* buffer);

/// Writes the text to standard output, and a line feed behind it.
void print_header(SAV_HEADER* header);

/// Finds the value of a key, which must be the first word of a line, whole. Of two such lines the first
/// counts.
///
/// @return  the value's first character, from which the text runs on to its end; null if the key isn't there
///          or has no value on its line
[[nodiscard]] char const* PlayHdrString_seek_value(char const* text, char const* key);

/// The version that a text states; 1 if it states none.
[[nodiscard]] int playhdr_get_version(char* text);

/// Copies a word: up to `limit` characters, up to a blank or a line's end.
///
/// @param destination  holds `limit` + 1 bytes; it gets a NUL in any case
/// Deliberate          A tab or any other control character is copied.
void hdr_string_copy(char* destination, char const* source, int limit);

/// A header of these facts, without reel and version.
[[nodiscard]] SAV_HEADER make_header(char const* medium, char const* format, double input_rate,
                                     double replay_rate, int drop_frame, double timecode_rate,
                                     double start_time_code, double end_time_code, int bytes_per_sample,
                                     int number_of_channels, char const* vision_type, int width, int height,
                                     LightweightString<wchar_t> const& orig_fname, int sequence,
                                     int start_offset, char const* video_field, int transfer_type);

/// Fills a record from a text of version 1, which knew fewer keys. What isn't in the text stays as it was
/// where there is no default.
void parse_header_v1(SAV_HEADER* header, char* text);

/// Fills a record from a text of a later version. `transfer_type` isn't read.
///
/// Deliberate  `orig_fname` gets all that follows its key, up to the text's end.
void parse_header_v2(SAV_HEADER* header, char* text);
