#include "plugins/ffmpeg/WriterFormat.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "plugins/ffmpeg/PixelFormats.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace playfile_ffmpeg {
namespace {

struct Profile {
    char const* name;
    AvOptions options;
    std::vector<AVPixelFormat> pixelFormats;
};

struct Format {
    char const* name;
    char const* container;
    char const* encoder;
    char const* usualProfile;
    std::vector<Profile> const& profiles;
};

constexpr char const* movie = "mov";
constexpr char const* h264 = "libx264";
constexpr int worstCrf = 51;
constexpr char const* usualCrf = "16";
/// In microseconds.
constexpr char const* fragmentLength = "1000000";

std::vector<Profile> const proResProfiles = {
    {"proxy", {{"profile", "proxy"}}, {AV_PIX_FMT_YUV422P10}},
    {"lt", {{"profile", "lt"}}, {AV_PIX_FMT_YUV422P10}},
    {"standard", {{"profile", "standard"}}, {AV_PIX_FMT_YUV422P10}},
    {"hq", {{"profile", "hq"}}, {AV_PIX_FMT_YUV422P10}},
    {"4444", {{"profile", "4444"}}, {AV_PIX_FMT_YUV444P10, AV_PIX_FMT_YUVA444P10}},
    {"4444xq", {{"profile", "4444xq"}}, {AV_PIX_FMT_YUV444P10, AV_PIX_FMT_YUVA444P10}},
};
std::vector<Profile> const dnxhrProfiles = {
    {"lb", {{"profile", "dnxhr_lb"}}, {AV_PIX_FMT_YUV422P}},
    {"sq", {{"profile", "dnxhr_sq"}}, {AV_PIX_FMT_YUV422P}},
    {"hq", {{"profile", "dnxhr_hq"}}, {AV_PIX_FMT_YUV422P}},
    {"hqx", {{"profile", "dnxhr_hqx"}}, {AV_PIX_FMT_YUV422P10}},
    {"444", {{"profile", "dnxhr_444"}}, {AV_PIX_FMT_YUV444P10}},
};
std::vector<Profile> const h264Profiles = {
    {"high", {{"preset", "fast"}}, {AV_PIX_FMT_YUV420P}},
    {"high10", {{"preset", "fast"}}, {AV_PIX_FMT_YUV420P10}},
    {"high422", {{"preset", "fast"}}, {AV_PIX_FMT_YUV422P10, AV_PIX_FMT_YUV422P}},
    {"lossless",
     losslessOptions(h264),
     {AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUV444P, AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV422P10,
      AV_PIX_FMT_YUV444P10}},
};
std::array<Format, 4> const formats = {{
    {"mov-prores", movie, "prores_ks", "hq", proResProfiles},
    {"mov-dnxhr", movie, "dnxhd", "hq", dnxhrProfiles},
    {"mov-h264", movie, h264, "high", h264Profiles},
    {"mxf-dnxhr", "mxf", "dnxhd", "hq", dnxhrProfiles},
}};

Format const* findFormat(std::string_view name) {
    auto const found = std::find_if(formats.begin(), formats.end(),
                                    [name](Format const& format) { return format.name == name; });
    return found == formats.end() ? nullptr : &*found;
}

Profile const* findProfile(Format const& format, std::string const& name, std::string& error) {
    std::string known;
    for (Profile const& profile : format.profiles) {
        if (profile.name == name) {
            return &profile;
        }
        known += (known.empty() ? "" : ", ") + std::string(profile.name);
    }
    error = std::string("\"") + format.name + "\" has no profile \"" + name + "\"; choose one of " + known;
    return nullptr;
}

std::string optionOf(Ox::FileWriterParams const& params, char const* key, char const* usual) {
    LightweightString<char> value(usual);
    static_cast<void>(params.options.in(key, value));
    return value.c_str();
}

bool isCrf(std::string const& text) {
    char* end = nullptr;
    double const value = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && value >= 0 && value <= worstCrf;
}

/// A key picture each second, so that each fragment has one.
bool addH264Options(Ox::FileWriterParams const& params, AVRational rate, AvOptions& options,
                    std::string& error) {
    std::string const crf = optionOf(params, "crf", usualCrf);
    if (!isCrf(crf)) {
        error = "\"" + crf + "\" is no quality of H.264; choose 0 to 51";
        return false;
    }
    bool const isLossless =
        std::any_of(options.begin(), options.end(), [](auto const& option) { return option.first == "qp"; });
    if (!isLossless) {
        options.emplace_back("crf", crf);
    }
    options.emplace_back("g", std::to_string(std::max(1, (rate.num + rate.den - 1) / rate.den)));
    return true;
}

bool isFullRangeFormat(AVPixelFormat format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P;
}

/// Those of the pictures that are coded.
ColourFacts coloursOf(AVFrame const& picture) {
    auto const format = static_cast<AVPixelFormat>(picture.format);
    ColourFacts colour{picture.color_primaries, picture.color_trc, picture.colorspace, picture.color_range,
                       picture.chroma_location};
    if (isRgb(format)) {
        colour.matrix = assumedMatrixOf(picture);
    }
    if (isRgb(format) || isFullRangeFormat(format)) {
        colour.range = AVCOL_RANGE_MPEG;
    }
    return colour;
}

AVFieldOrder fieldOrderOf(AVFrame const& picture) {
    if (picture.interlaced_frame == 0) {
        return AV_FIELD_PROGRESSIVE;
    }
    return picture.top_field_first != 0 ? AV_FIELD_TT : AV_FIELD_BB;
}

}  // namespace

std::string WriterFormat::extensionOf(std::string const& format) {
    Format const* const found = findFormat(format);
    return found != nullptr ? found->container : "";
}

bool WriterFormat::read(Ox::FileWriterParams const& params, std::string& error) {
    Format const* const format = findFormat(params.format.view());
    if (format == nullptr) {
        error = "the format isn't known";
        return false;
    }
    Profile const* const profile =
        findProfile(*format, optionOf(params, "profile", format->usualProfile), error);
    if (profile == nullptr) {
        return false;
    }
    Ox::FrameRate const rate = params.video.getFrameRate();
    frameRate = {static_cast<int>(rate.numerator), static_cast<int>(rate.denominator)};
    container = format->container;
    encoder = format->encoder;
    encoderOptions = profile->options;
    pixelFormats = profile->pixelFormats;
    if (container == movie && optionOf(params, "fragments", "1") != "0") {
        containerOptions = {{"movflags", "frag_keyframe+empty_moov+delay_moov"},
                            {"min_frag_duration", fragmentLength}};
    }
    return encoder != h264 || addH264Options(params, frameRate, encoderOptions, error);
}

EncoderSettings WriterFormat::settingsFor(AVFrame const& picture) const {
    std::vector<AVPixelFormat> wanted = pixelFormats;
    wanted.push_back(AV_PIX_FMT_NONE);
    int loss = 0;
    AVPixelFormat const best = avcodec_find_best_pix_fmt_of_list(
        wanted.data(), static_cast<AVPixelFormat>(picture.format), 1, &loss);
    EncoderSettings settings;
    settings.codec = encoder;
    settings.shape = {picture.width, picture.height, best};
    settings.frameRate = frameRate;
    settings.sampleAspect = picture.sample_aspect_ratio;
    settings.fieldOrder = fieldOrderOf(picture);
    settings.colour = coloursOf(picture);
    settings.options = encoderOptions;
    return settings;
}

}  // namespace playfile_ffmpeg
