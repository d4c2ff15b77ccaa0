#include "plugins/ffmpeg/DecodeOptions.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "toolkit/services/Log.h"
#include "toolkit/services/Settings.h"

namespace playfile_ffmpeg {
namespace {

constexpr char const* storeKey = "streamingStoreMiB";
constexpr int standardStoreMiB = 384;
constexpr int mostStoreMiB = 1 << 20;

constexpr char const* matrixKey = "colourMatrix";

struct NamedMatrix {
    char const* name;
    AVColorSpace matrix;
};

constexpr std::array<NamedMatrix, 4> matrices = {{{"auto", AVCOL_SPC_UNSPECIFIED},
                                                  {"bt601", AVCOL_SPC_SMPTE170M},
                                                  {"bt709", AVCOL_SPC_BT709},
                                                  {"bt2020", AVCOL_SPC_BT2020_NCL}}};

class Option : public GenericParam::iParam {
public:
    Option(char const* key, char const* description, char const* values)
        : key_(key), description_(description), values_(values) {}
    [[nodiscard]] LightweightString<char> getKey() const override { return key_; }
    [[nodiscard]] LightweightString<char> getDescription() const override { return description_; }
    [[nodiscard]] LightweightString<char> getValues() const override { return values_; }

private:
    char const* const key_;
    char const* const description_;
    char const* const values_;
};

void refuse(LightweightString<wchar_t> const& file, LightweightString<char> const& value, char const* key,
            char const* taken) {
    Log("FFmpeg: \"%ls\": \"%s\" is no value of %s, %s is taken\n", file.c_str(), value.c_str(), key, taken);
}

std::optional<std::uint32_t> numberIn(LightweightString<char> const& text) {
    std::uint32_t number = 0;
    char const* const end = text.c_str() + text.view().size();
    auto const [stop, error] = std::from_chars(text.c_str(), end, number);
    bool const isNumber = error == std::errc() && stop == end && number <= mostStoreMiB;
    return isNumber ? std::optional(number) : std::nullopt;
}

}  // namespace

std::uint32_t DecodeOptions::defaultStoreMiB() {
    static int const value = config_int(storeKey, standardStoreMiB, 0, mostStoreMiB);
    return static_cast<std::uint32_t>(value);
}

LightweightVector<Ox::Ptr<GenericParam::iParam>> DecodeOptions::descriptions() {
    LightweightVector<Ox::Ptr<GenericParam::iParam>> options;
    options.push_back(Ox::makePtr<Option>(matrixKey, "The colour matrix of a file that doesn't state one.",
                                          "auto, bt601, bt709, bt2020"));
    options.push_back(Ox::makePtr<Option>(
        storeKey, "Memory in MiB for decoded pictures of a file whose pictures need others.",
        "0 to 1048576"));
    return options;
}

configb DecodeOptions::values() const {
    auto const found = std::find_if(matrices.begin(), matrices.end(),
                                    [&](NamedMatrix const& known) { return known.matrix == matrix; });
    configb values;
    values.set(matrixKey, found->name);
    values.set(storeKey, LightweightString<char>(std::to_string(storeMiB)));
    return values;
}

void DecodeOptions::take(configb const& values, LightweightString<wchar_t> const& file) {
    LightweightString<char> text;
    if (values.in(matrixKey, text) == 0) {
        auto const found = std::find_if(matrices.begin(), matrices.end(),
                                        [&](NamedMatrix const& known) { return text.view() == known.name; });
        if (found == matrices.end()) {
            refuse(file, text, matrixKey, "auto");
        }
        matrix = found == matrices.end() ? AVCOL_SPC_UNSPECIFIED : found->matrix;
    }
    if (values.in(storeKey, text) == 0) {
        std::optional<std::uint32_t> const number = numberIn(text);
        if (!number) {
            refuse(file, text, storeKey, "the default");
        }
        storeMiB = number.value_or(defaultStoreMiB());
    }
}

}  // namespace playfile_ffmpeg
