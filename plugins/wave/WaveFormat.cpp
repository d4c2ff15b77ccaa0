/// The "fmt " chunk: tag, channels, rate, bytes a second, block align, bits; in its extensible form also
/// the valid bits, the speakers, and the tag again as part of a GUID.
#include "plugins/wave/WaveFormat.h"

#include <algorithm>
#include <array>

#include "toolkit/sound/SampleFormat.h"

namespace playfile_wave {
namespace {

constexpr std::size_t plainBytes = 16;
constexpr std::size_t extensibleBytes = 40;

constexpr std::uint16_t tagPcm = 1;
constexpr std::uint16_t tagFloat = 3;
constexpr std::uint16_t tagExtensible = 0xFFFE;

/// What follows the tag in the GUID of a form that has a tag.
constexpr std::array<std::uint8_t, 14> guidTail{0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

/// The numbers of the chunk.
struct Fields {
    std::uint32_t tag = 0;
    std::uint32_t channels = 0;
    std::uint32_t rate = 0;
    std::uint32_t blockAlign = 0;
    std::uint32_t bits = 0;
    /// 0 where the chunk doesn't state them.
    std::uint32_t validBits = 0;
    bool isExtensible = false;
    bool hasKnownGuid = true;
};

/// One form of a sample that can be read.
struct Form {
    std::uint32_t tag;
    std::uint32_t bytes;
    Aud::eSampleFormat format;
    char const* codec;
};

constexpr std::array<Form, 6> forms{{{tagPcm, 1, Aud::sampleU8, "pcm_u8"},
                                     {tagPcm, 2, Aud::sampleS16, "pcm_s16le"},
                                     {tagPcm, 3, Aud::sampleS24, "pcm_s24le"},
                                     {tagPcm, 4, Aud::sampleS32, "pcm_s32le"},
                                     {tagFloat, 4, Aud::sampleF32, "pcm_f32le"},
                                     {tagFloat, 8, Aud::sampleF64, "pcm_f64le"}}};

std::string textOf(std::uint32_t number) {
    return std::to_string(number);
}

Fields fieldsOf(Bytes bytes) {
    Fields fields;
    fields.tag = numberAt<std::uint16_t>(bytes, 0);
    fields.channels = numberAt<std::uint16_t>(bytes, 2);
    fields.rate = numberAt<std::uint32_t>(bytes, 4);
    fields.blockAlign = numberAt<std::uint16_t>(bytes, 12);
    fields.bits = numberAt<std::uint16_t>(bytes, 14);
    fields.isExtensible = fields.tag == tagExtensible;
    if (fields.isExtensible) {
        fields.validBits = numberAt<std::uint16_t>(bytes, 18);
        fields.tag = numberAt<std::uint16_t>(bytes, 24);
        fields.hasKnownGuid = std::ranges::equal(bytes.subspan(26, guidTail.size()), guidTail);
    }
    return fields;
}

bool isConsistent(Fields const& fields, std::string& why) {
    if (fields.channels == 0) {
        why = "it has no channels";
    } else if (fields.rate == 0) {
        why = "the sample rate is 0";
    } else if (fields.blockAlign == 0 || fields.blockAlign % fields.channels != 0) {
        why = "blocks of " + textOf(fields.blockAlign) + " bytes don't hold " + textOf(fields.channels) +
              " channels";
    }
    return why.empty();
}

/// The bits of a sample that count: what is stated, unless more than there are.
std::uint32_t bitsOf(Fields const& fields, std::uint32_t bytes) {
    std::uint32_t const container = bytes * 8;
    std::uint32_t const stated = fields.validBits != 0 ? fields.validBits : fields.bits;
    return stated == 0 || stated > container ? container : stated;
}

/// A sample fills its bytes as far as whole bytes go. Only the extensible form has room to say that it
/// lies in larger ones, at their upper end; in a plain chunk that can mean several things.
Form const* formOf(Fields const& fields) {
    std::uint32_t const bytes = fields.blockAlign / fields.channels;
    bool const isFilled = (fields.bits + 7) / 8 == bytes;
    auto const found = std::ranges::find_if(
        forms, [&](Form const& form) { return form.tag == fields.tag && form.bytes == bytes; });
    bool const isClear =
        isFilled || (fields.isExtensible && fields.tag == tagPcm && fields.bits <= bytes * 8);
    return found != forms.end() && isClear ? found : nullptr;
}

std::string foreignForm(Fields const& fields) {
    return "format tag " + textOf(fields.tag) + " with " + textOf(fields.bits) + " bits in blocks of " +
           textOf(fields.blockAlign) + " bytes isn't read here";
}

WaveFormat described(Fields const& fields, Form const& form) {
    WaveFormat format;
    format.blockAlign = fields.blockAlign;
    format.stream.channels = fields.channels;
    format.stream.sampleFormat = form.format;
    format.stream.bytesPerSample = form.bytes;
    format.stream.bitsPerSample = bitsOf(fields, form.bytes);
    format.stream.sampleRate = fields.rate;
    format.stream.codec = form.codec;
    return format;
}

eFormatResult judge(Fields const& fields, WaveFormat& format, std::string& why) {
    bool const isKnown = fields.hasKnownGuid && (fields.tag == tagPcm || fields.tag == tagFloat);
    if (isKnown && !isConsistent(fields, why)) {
        return eFormatResult::isBad;
    }
    Form const* const form = isKnown ? formOf(fields) : nullptr;
    if (!form) {
        why = foreignForm(fields);
        return eFormatResult::isForeign;
    }
    format = described(fields, *form);
    return eFormatResult::isRead;
}

}  // namespace

eFormatResult parseFormat(Bytes bytes, WaveFormat& format, std::string& why) {
    bool const isExtensible = bytes.size() >= 2 && numberAt<std::uint16_t>(bytes, 0) == tagExtensible;
    std::size_t const needed = isExtensible ? extensibleBytes : plainBytes;
    if (bytes.size() < needed) {
        why = std::to_string(bytes.size()) + " bytes, at least " + std::to_string(needed) + " are needed";
        return eFormatResult::isBad;
    }
    return judge(fieldsOf(bytes), format, why);
}

bool isReadCodec(LightweightString<char> const& codec) {
    return std::ranges::any_of(forms, [&](Form const& form) { return codec.view() == form.codec; });
}

}  // namespace playfile_wave
