#include "host/remote/HttpAnswer.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::string_view protocolMark = "HTTP/";
constexpr int firstFinalStatus = 200;
constexpr int firstRedirection = 300;
constexpr int firstClientError = 400;

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isName(std::string_view name, std::string_view wanted) {
    return std::equal(name.begin(), name.end(), wanted.begin(), wanted.end(),
                      [](char a, char b) { return lowered(a) == b; });
}

std::string_view trimmed(std::string_view text) {
    static constexpr std::string_view blanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::uint64_t> number(std::string_view digits) {
    std::uint64_t value = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    bool const isWhole = error == std::errc() && end == digits.data() + digits.size() && !digits.empty();
    return isWhole ? std::optional(value) : std::nullopt;
}

/// The three digits behind the protocol's version, 0 if there are none.
int statusOf(std::string_view line) {
    std::size_t const blank = line.find(' ');
    if (blank == std::string_view::npos) {
        return 0;
    }
    std::string_view const rest = trimmed(line.substr(blank));
    auto const status = number(rest.substr(0, rest.find(' ')));
    return status && *status < 1000 ? static_cast<int>(*status) : 0;
}

}  // namespace

bool HttpAnswer::addLine(std::string_view line) {
    byteCount_ += line.size();
    if (isComplete_) {
        return false;
    }
    if (line.starts_with(protocolMark)) {
        headers_ = {};
        headers_.status = statusOf(line);
        return false;
    }
    std::string_view const text = trimmed(line);
    if (!text.empty()) {
        std::size_t const colon = text.find(':');
        if (colon != std::string_view::npos) {
            addField(text.substr(0, colon), trimmed(text.substr(colon + 1)));
        }
        return false;
    }
    bool const isInterim = headers_.status < firstFinalStatus;
    bool const isRedirection =
        headers_.hasLocation && headers_.status >= firstRedirection && headers_.status < firstClientError;
    ++blockCount_;
    isComplete_ = !isInterim && !isRedirection;
    return isComplete_;
}

void HttpAnswer::addField(std::string_view name, std::string_view value) {
    if (isName(name, "content-length")) {
        addLength(value);
    } else if (isName(name, "content-range")) {
        std::size_t const slash = value.rfind('/');
        headers_.wholeLength =
            slash == std::string_view::npos ? std::nullopt : number(value.substr(slash + 1));
    } else if (isName(name, "etag")) {
        headers_.etag = value;
    } else if (isName(name, "last-modified")) {
        headers_.lastModified = value;
    } else if (isName(name, "location")) {
        headers_.hasLocation = true;
    }
}

void HttpAnswer::addLength(std::string_view value) {
    auto const length = number(value);
    headers_.isLengthBroken =
        headers_.isLengthBroken || !length || (headers_.length && headers_.length != length);
    headers_.length = length;
}
