#include "toolkit/services/Settings.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ole/os/Immortal.h"
#include "toolkit/services/Log.h"

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// A number that fills the text; one that is out of range counts as the nearest there is.
std::optional<int> wholeNumber(std::string_view text) {
    int value = 0;
    char const* const textEnd = text.data() + text.size();
    auto const [end, error] = std::from_chars(text.data(), textEnd, value);
    if (end != textEnd || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        return text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return value;
}

std::string settingsPath() {
    if (char const* const named = std::getenv("PLAYFILE_SETTINGS")) {
        return named;
    }
    char const* const folder = std::getenv("XDG_CONFIG_HOME");
    if (folder && *folder) {
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

    /// What is wrong with the settings file, once. It is for the log, which may itself ask for settings.
    std::vector<std::string> takeComplaints() {
        std::lock_guard const scope(lock_);
        return std::exchange(complaints_, {});
    }

private:
    void readFile(std::string const& path) {
        std::ifstream file(path);
        if (!file && std::getenv("PLAYFILE_SETTINGS")) {
            complaints_.push_back("The settings file \"" + path + "\" can't be read\n");
        }
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
        std::string_view const key = trimmed(line.substr(0, sign));
        if (value && !key.empty()) {
            values_[std::string(key)] = *value;
        } else {
            complaints_.push_back("\"" + path + "\", line " + std::to_string(number) +
                                  ": not of the form \"key = number\", passed over\n");
        }
    }

    std::mutex lock_;
    std::map<std::string, int> values_;
    std::vector<std::string> complaints_;
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
    for (std::string const& complaint : store().takeComplaints()) {
        Log("%s", complaint.c_str());
    }
    std::optional<int> value = fromEnvironment(key);
    if (!value) {
        value = store().find(key);
    }
    return std::clamp(value.value_or(defaultValue), lowest, highest);
}

void setConfigInt(char const* key, int value) {
    store().set(key, value);
}
