#include "plugins/synth/SynthSettings.h"

#include <charconv>
#include <functional>
#include <limits>
#include <map>

#include "plugins/synth/SynthCode.h"

namespace {

constexpr std::uint32_t largestSide = 16384;
constexpr std::uint32_t longestDelayMs = 60000;
constexpr std::uint32_t mostChannels = 64;
constexpr std::uint32_t mostSamplesPerSecond = 768000;
constexpr std::uint64_t mostSamples = std::uint64_t{1} << 48U;

using Malformed = SynthSettings::Malformed;

std::string_view trimmed(std::string_view text) {
    constexpr char const* blanks = " \t\r";
    auto const first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// True if the whole of `text` is a number between the bounds, which `value` then holds.
template <class Number>
bool isNumber(std::string_view text, Number lowest, Number highest, Number& value) {
    Number parsed{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || parsed < lowest ||
        parsed > highest) {
        return false;
    }
    value = parsed;
    return true;
}

template <class Number>
Number numberOf(std::string_view text, Number lowest, Number highest) {
    Number value{};
    if (!isNumber(text, lowest, highest, value)) {
        throw Malformed("\"" + std::string(text) + "\" is no number from " + std::to_string(lowest) + " to " +
                        std::to_string(highest));
    }
    return value;
}

bool isRate(std::string_view text, char separator, Ox::FrameRate& rate) {
    constexpr std::uint32_t highest = 1000000;
    auto const split = text.find(separator);
    Ox::FrameRate parsed{0, 1};
    if (!isNumber(text.substr(0, split), 1U, highest, parsed.numerator)) {
        return false;
    }
    if (split != std::string_view::npos &&
        !isNumber(text.substr(split + 1), 1U, highest, parsed.denominator)) {
        return false;
    }
    rate = parsed;
    return true;
}

Ox::FrameRate rateOf(std::string_view text) {
    Ox::FrameRate rate;
    if (!isRate(text, '/', rate)) {
        throw Malformed("\"" + std::string(text) + "\" is no rate like 25 or 30000/1001");
    }
    return rate;
}

bool isFormat(std::string_view text, Ox::Image::Format& format) {
    if (text != "gray" && text != "rgb24" && text != "yuv420p") {
        return false;
    }
    format = Ox::Image::formatFor(text);
    return true;
}

Ox::Image::Format formatOf(std::string_view text) {
    Ox::Image::Format format{};
    if (!isFormat(text, format)) {
        throw Malformed("\"" + std::string(text) + "\" is none of gray, rgb24, yuv420p");
    }
    return format;
}

bool isYes(std::string_view text) {
    if (text != "yes" && text != "no") {
        throw Malformed("\"" + std::string(text) + "\" is neither yes nor no");
    }
    return text == "yes";
}

std::uint32_t sideOf(std::string_view text) {
    return numberOf<std::uint32_t>(text, 1, largestSide);
}

/// The next word of a text, which is taken off it.
std::string_view takeWord(std::string_view& text) {
    text = trimmed(text);
    std::string_view const word = text.substr(0, text.find(' '));
    text.remove_prefix(word.size());
    return word;
}

SynthSettings::Sound soundOf(std::string_view text) {
    SynthSettings::Sound sound;
    sound.channels = numberOf<std::uint32_t>(takeWord(text), 1, mostChannels);
    std::string_view const form = takeWord(text);
    for (Aud::eSampleFormat const format : {Aud::sampleS16, Aud::sampleS24, Aud::sampleS32}) {
        sound.format = form == Aud::nameOf(format) ? format : sound.format;
    }
    if (form != Aud::nameOf(sound.format)) {
        throw Malformed("\"" + std::string(form) + "\" is none of s16, s24, s32");
    }
    sound.samplesPerSecond = numberOf<std::uint32_t>(trimmed(text), 1, mostSamplesPerSecond);
    return sound;
}

std::string_view stemOf(std::string_view name) {
    name.remove_prefix(name.find_last_of('/') + 1);
    return name.substr(0, name.find_last_of('.'));
}

bool endsWith(std::string_view text, std::string_view end, std::string_view& front) {
    if (!text.ends_with(end)) {
        return false;
    }
    front = text.substr(0, text.size() - end.size());
    return true;
}

}  // namespace

SynthSettings SynthSettings::parse(std::string_view name, std::string_view text) {
    SynthSettings settings;
    settings.takeName(name);
    settings.takeText(text);
    settings.check();
    return settings;
}

void SynthSettings::takeName(std::string_view name) {
    std::string_view rest = stemOf(name);
    while (!rest.empty()) {
        auto const end = rest.find('_');
        std::string_view const part = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        std::string_view front;
        auto const cross = part.find('x');
        if (endsWith(part, "fps", front)) {
            isRate(front, '-', rate);
        } else if (endsWith(part, "f", front)) {
            isNumber(front, 0U, std::numeric_limits<std::uint32_t>::max(), frames);
        } else if (std::uint32_t w = 0; cross != std::string_view::npos &&
                                        isNumber(part.substr(0, cross), 1U, largestSide, w) &&
                                        isNumber(part.substr(cross + 1), 1U, largestSide, height)) {
            width = w;
        } else {
            isFormat(part, format);
        }
    }
}

void SynthSettings::takeText(std::string_view text) {
    for (unsigned lineNumber = 1; !text.empty(); ++lineNumber) {
        auto const end = text.find('\n');
        std::string_view const line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        auto const equals = line.find('=');
        try {
            if (equals == std::string_view::npos) {
                throw Malformed("\"" + std::string(line) + "\" isn't of the form key = value");
            }
            take(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
        } catch (Malformed const& error) {
            throw Malformed("line " + std::to_string(lineNumber) + ": " + error.what());
        }
    }
}

void SynthSettings::take(std::string_view key, std::string_view value) {
    using Setter = std::function<void(SynthSettings&, std::string_view)>;
    constexpr auto highest = std::numeric_limits<std::uint32_t>::max();
    static std::map<std::string_view, Setter> const setters{
        {"frames", [](auto& s, auto v) { s.frames = numberOf(v, 0U, highest); }},
        {"width", [](auto& s, auto v) { s.width = sideOf(v); }},
        {"height", [](auto& s, auto v) { s.height = sideOf(v); }},
        {"rate", [](auto& s, auto v) { s.rate = rateOf(v); }},
        {"format", [](auto& s, auto v) { s.format = formatOf(v); }},
        {"origin",
         [](auto& s, auto v) {
             s.origin = numberOf(v, std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::max());
         }},
        {"orientation", [](auto& s, auto v) { s.orientation = numberOf<std::uint8_t>(v, 1, 8); }},
        {"group", [](auto& s, auto v) { s.group = numberOf<std::uint16_t>(v, 0, 65535); }},
        {"streaming", [](auto& s, auto v) { s.streaming = isYes(v); }},
        {"sound", [](auto& s, auto v) { s.sound.push_back(soundOf(v)); }},
        {"samples", [](auto& s, auto v) { s.samples = numberOf<std::uint64_t>(v, 1, mostSamples); }},
        {"soundfault",
         [](auto& s, auto v) { s.soundfault.insert(numberOf<std::uint64_t>(v, 0, mostSamples)); }},
        {"delay", [](auto& s, auto v) { s.delay = numberOf(v, 0U, longestDelayMs); }},
        {"fault", [](auto& s, auto v) { s.fault.insert(numberOf(v, 0U, highest)); }},
        {"failopen", [](auto& s, auto v) { s.failopen = isYes(v); }},
        {"hold", [](auto& s, auto v) { s.hold = v; }},
        {"holdopen", [](auto& s, auto v) { s.holdopen = v; }},
    };
    auto const found = setters.find(key);
    if (found == setters.end()) {
        throw Malformed("\"" + std::string(key) + "\" is no setting");
    }
    found->second(*this, value);
}

void SynthSettings::check() const {
    bool const hasPicture = frames != 0 || sound.empty();
    struct Needed {
        char const* key;
        bool isStated;
    };
    for (auto const& [key, isStated] :
         {Needed{"frames", !hasPicture || frames != 0}, Needed{"width", !hasPicture || width != 0},
          Needed{"height", !hasPicture || height != 0}, Needed{"rate", !hasPicture || rate.numerator != 0},
          Needed{"samples", sound.empty() || samples != 0}}) {
        if (!isStated) {
            throw Malformed(std::string(key) + " is stated neither in the name nor in the text");
        }
    }
    if (hasPicture && (width < SynthCode::smallestWidth || height < SynthCode::smallestHeight)) {
        throw Malformed("a picture has at least " + std::to_string(SynthCode::smallestWidth) + " x " +
                        std::to_string(SynthCode::smallestHeight) + " pixels");
    }
}
