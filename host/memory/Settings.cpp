#include "toolkit/services/Settings.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "ole/os/Immortal.h"
#include "toolkit/services/Log.h"

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    bool const isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole ? std::optional<int>(value) : std::nullopt;
}

std::string settingsPath() {
    if (char const* const named = std::getenv("PLAYFILE_SETTINGS")) {
        return named;
    }
    if (char const* const folder = std::getenv("XDG_CONFIG_HOME")) {
        return std::string(folder) + "/playfile/settings";
    }
    char const* const home = std::getenv("HOME");
    return home ? std::string(home) + "/.config/playfile/settings" : std::string();
}

/// The values of the settings file, read when first asked for, and those that the process has set.
class Store {
public:
    Store() { readFile(settingsPath()); }

    std::optional<int> find(std::string const& key) {
        std::lock_guard const scope(lock_);
        auto const found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional<int>(found->second);
    }
    void set(std::string const& key, int value) {
        std::lock_guard const scope(lock_);
        values_[key] = value;
    }

private:
    void readFile(std::string const& path) {
        std::ifstream file(path);
        std::string line;
        for (int number = 1; std::getline(file, line); ++number) {
            readLine(path, number, std::string_view(line).substr(0, line.find('#')));
        }
    }

    void readLine(std::string const& path, int number, std::string_view line) {
        if (trimmed(line).empty()) {
            return;
        }
        std::size_t const sign = line.find('=');
        std::optional<int> const value =
            sign == std::string_view::npos ? std::nullopt : wholeNumber(trimmed(line.substr(sign + 1)));
        if (value) {
            values_[std::string(trimmed(line.substr(0, sign)))] = *value;
        } else {
            Log("\"%s\", line %d: not of the form \"key = number\", passed over\n", path.c_str(), number);
        }
    }

    std::mutex lock_;
    std::map<std::string, int> values_;
};

Store& store() {
    return immortal<Store>();
}

std::optional<int> fromEnvironment(char const* key) {
    char const* const text = std::getenv((std::string("PLAYFILE_") + key).c_str());
    return text ? wholeNumber(trimmed(text)) : std::nullopt;
}

}  // namespace

int config_int(char const* key, int defaultValue, int lowest, int highest) {
    std::optional<int> value = fromEnvironment(key);
    if (!value) {
        value = store().find(key);
    }
    return std::clamp(value.value_or(defaultValue), lowest, highest);
}

void setConfigInt(char const* key, int value) {
    store().set(key, value);
}
