#include "tools/playfile/HeaderCheck.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <map>
#include <string_view>

#include "header/SavHeader.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::size_t mostLineBytes = 511;
constexpr std::size_t lineEndBytes = 2;
constexpr std::string_view blanks = " \t\v\f";

enum class eValue { wholeNumber, number, word, name };
enum class eUse { always, sound, vision };
enum class eAge { any, first, later };

/// What is known of a key.
struct Key {
    std::string_view name;
    eValue value;
    eUse use = eUse::always;
    std::size_t mostCharacters = 0;  ///< Of a word.
    eAge age = eAge::later;          ///< The versions of texts that know it.
};

constexpr std::array keys{
    Key{"header_version", eValue::wholeNumber, eUse::always, 0, eAge::any},
    Key{"medium", eValue::word, eUse::always, 20, eAge::any},
    Key{"input_rate", eValue::number},
    Key{"replay_rate", eValue::number},
    Key{"format", eValue::word, eUse::always, 20},
    Key{"drop_frame", eValue::wholeNumber},
    Key{"timecode_rate", eValue::number},
    Key{"start_time_code", eValue::number},
    Key{"end_time_code", eValue::number},
    Key{"start_offset", eValue::wholeNumber},
    Key{"number_of_channels", eValue::wholeNumber, eUse::sound, 0, eAge::any},
    Key{"bytes_per_sample", eValue::wholeNumber, eUse::sound, 0, eAge::any},
    Key{"sampling_frequency", eValue::number, eUse::sound, 0, eAge::first},
    Key{"sound_format", eValue::word, eUse::sound, 20, eAge::first},
    Key{"vision_type", eValue::word, eUse::vision, 20, eAge::any},
    Key{"width", eValue::wholeNumber, eUse::vision, 0, eAge::any},
    Key{"height", eValue::wholeNumber, eUse::vision, 0, eAge::any},
    Key{"sequence", eValue::wholeNumber, eUse::vision},
    Key{"transfer_type", eValue::wholeNumber, eUse::vision},
    Key{"reelid", eValue::word, eUse::always, 8},
    Key{"orig_fname", eValue::name},
    Key{"ox_ver", eValue::word, eUse::always, 20},
    Key{"video_field", eValue::word, eUse::vision, 7},
};

struct Line {
    std::string_view whole;
    std::string_view key;
    std::string_view value;
};

/// The lines of a text whose ends may be of any kind; an LF and a CR beside each other are one end.
std::vector<Line> linesOf(std::string_view text) {
    std::vector<Line> lines;
    while (!text.empty()) {
        std::size_t const end = std::min(text.find_first_of("\n\r"), text.size());
        Line line{text.substr(0, end), {}, {}};
        std::size_t const begin = std::min(line.whole.find_first_not_of(blanks), end);
        std::size_t const keyEnd = std::min(line.whole.find_first_of(blanks, begin), end);
        line.key = line.whole.substr(begin, keyEnd - begin);
        std::size_t const value = line.whole.find_first_not_of(blanks, keyEnd);
        line.value = value == std::string_view::npos ? std::string_view() : line.whole.substr(value);
        lines.push_back(line);
        bool const isPair = end + 1 < text.size() && text[end] != text[end + 1] &&
                            (text[end + 1] == '\n' || text[end + 1] == '\r');
        text.remove_prefix(std::min(end + (isPair ? lineEndBytes : 1), text.size()));
    }
    return lines;
}

template <class Number>
bool isNumber(std::string_view text) {
    Number number{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

/// Looks through the lines one by one.
class Check {
public:
    explicit Check(std::string const& text)
        : text_(text),
          version_(playhdr_get_version(std::string(text).data())),
          medium_(valueOf("medium", "sound")) {}

    [[nodiscard]] std::vector<HeaderProblem> run() {
        if (text_.size() >= static_cast<std::size_t>(savHeaderTextBytes)) {
            add(0, "this is longer than any header, " + std::to_string(savHeaderTextBytes - 1) + " bytes");
            return problems_;
        }
        checkMedium();
        std::vector<Line> const lines = linesOf(text_);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            if (!lines[index].key.empty()) {
                checkLine(index + 1, lines[index]);
            }
        }
        return problems_;
    }

private:
    void add(std::size_t line, std::string const& text) { problems_.push_back({line, text}); }

    [[nodiscard]] std::string valueOf(char const* key, char const* otherwise) const {
        char const* const value = PlayHdrString_seek_value(text_.c_str(), key);
        std::string_view const found = value != nullptr ? value : otherwise;
        return std::string(found.substr(0, found.find_first_of(" \n\r")));
    }

    void checkMedium() {
        if (PlayHdrString_seek_value(text_.c_str(), "medium") == nullptr) {
            add(0, "there is no 'medium': it counts as sound");
        }
        if (version_ > savHeaderVersion) {
            add(0, "this is of version " + std::to_string(version_) + ", and " +
                       std::to_string(savHeaderVersion) + " is the latest that is known");
        }
    }

    void checkLine(std::size_t number, Line const& line) {
        if (line.whole.size() + lineEndBytes > mostLineBytes) {
            add(number, "the line is longer than " + std::to_string(mostLineBytes) + " bytes with its end");
        }
        auto const key =
            std::find_if(keys.begin(), keys.end(), [&](Key const& known) { return known.name == line.key; });
        if (key == keys.end()) {
            add(number, inQuotes(line.key) + " is no key: the line is passed over");
            return;
        }
        // A key without a value on its line doesn't stand there, so a later one may count.
        if (line.value.empty()) {
            checkMissing(number, *key);
            return;
        }
        auto const [first, isNew] = firstLines_.emplace(key->name, number);
        if (!isNew) {
            add(number, inQuotes(line.key) + " stands in line " + std::to_string(first->second) +
                            " already, which counts");
            return;
        }
        checkUse(number, *key);
        checkValue(number, *key, line.value);
    }

    /// Words may be empty.
    void checkMissing(std::size_t number, Key const& key) {
        if (key.value == eValue::wholeNumber || key.value == eValue::number) {
            add(number, inQuotes(key.name) + " has no value: it counts as missing");
        }
    }

    void checkUse(std::size_t number, Key const& key) {
        bool const isFirst = version_ <= 1;
        if (key.age != eAge::any && (key.age == eAge::first) != isFirst) {
            add(number, inQuotes(key.name) + " isn't read in a text of version " + std::to_string(version_));
        } else if ((key.use == eUse::sound && medium_ != "sound") ||
                   (key.use == eUse::vision && medium_ != "vision")) {
            add(number, inQuotes(key.name) + " means nothing for the medium " + inQuotes(medium_));
        }
    }

    void checkValue(std::size_t number, Key const& key, std::string_view value) {
        switch (key.value) {
            case eValue::wholeNumber:
                if (!isNumber<std::int32_t>(value)) {
                    add(number, inQuotes(value) + " is no whole number of 32 bits");
                }
                return;
            case eValue::number:
                if (!isNumber<double>(value)) {
                    add(number, inQuotes(value) + " is no number");
                }
                return;
            case eValue::word:
                checkWord(number, key, value);
                return;
            case eValue::name:
                return;
        }
    }

    void checkWord(std::size_t number, Key const& key, std::string_view value) {
        std::string_view const word = value.substr(0, value.find(' '));
        if (word.size() > key.mostCharacters) {
            add(number, inQuotes(word) + " is cut to " + std::to_string(key.mostCharacters) + " characters");
        }
        if (word.size() < value.size()) {
            add(number, "only " + inQuotes(word) + " counts: the value ends at its first blank");
        }
        if (key.name == "medium" && word != "sound" && word != "vision") {
            add(number, inQuotes(word) + " is no medium: write 'sound' or 'vision'");
        }
    }

    std::string const& text_;
    int const version_;
    std::string const medium_;
    std::map<std::string_view, std::size_t> firstLines_;
    std::vector<HeaderProblem> problems_;
};

}  // namespace

std::vector<HeaderProblem> checkHeaderText(std::string const& text) {
    return Check(text).run();
}

}  // namespace cli
