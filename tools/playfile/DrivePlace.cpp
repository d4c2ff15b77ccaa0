#include "tools/playfile/DrivePlace.h"

#include <filesystem>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

bool isDriveLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '1' && c <= '9');
}

}  // namespace

std::pair<std::string, std::string> splitAtSign(std::string const& text, char const* form) {
    std::size_t const sign = text.find('=');
    if (sign == std::string::npos || sign == 0 || sign + 1 == text.size()) {
        throw CommandError("write " + std::string(form) + ", not " + inQuotes(text), exitUsage);
    }
    return {text.substr(0, sign), text.substr(sign + 1)};
}

DriveId parseDrive(std::string const& text) {
    if (text.size() != 1 || !isDriveLetter(text.front())) {
        throw CommandError("a drive is named by a letter or by a digit from 1 on, not " + inQuotes(text),
                           exitUsage);
    }
    return {text.front()};
}

DrivePlace parseDrivePlace(std::string const& text) {
    auto const [letter, root] = splitAtSign(text, "L=ROOT, the drive's letter and its folder");
    std::error_code error;
    std::filesystem::path path = std::filesystem::weakly_canonical(root, error);
    if (error) {
        path = std::filesystem::absolute(root).lexically_normal();
    }
    return {parseDrive(letter), wideName(path.string())};
}

}  // namespace cli
