#include <cctype>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "toolkit/services/Json.h"

namespace JSON {

namespace {

constexpr int deepest = 64;
constexpr int hexadecimal = 16;
constexpr std::size_t codeLength = 4;
constexpr std::uint32_t highSurrogate = 0xD800;
constexpr std::uint32_t lowSurrogate = 0xDC00;
constexpr std::uint32_t surrogatesEnd = 0xE000;
constexpr std::uint32_t surrogateBits = 10;
constexpr std::uint32_t supplement = 0x10000;
constexpr wchar_t replacementCharacter = 0xFFFD;

bool isBetween(std::uint32_t value, std::uint32_t first, std::uint32_t end) {
    return value >= first && value < end;
}

}  // namespace

/// Goes through a text from its beginning; every step answers false where the text isn't of its form.
class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    Ox::Ptr<Element> whole() {
        Ox::Ptr<Element> const element = object(0);
        skipSpace();
        return at_ == text_.size() ? element : Ox::Ptr<Element>();
    }

private:
    Ox::Ptr<Element> object(int depth) {
        Ox::Ptr<Element> const element = Ox::makePtr<Element>();
        if (depth > deepest || !take('{')) {
            return {};
        }
        if (take('}')) {
            return element;
        }
        do {
            std::optional<std::string> const key = string();
            if (!key || !take(':') || !value(*element, *key, depth)) {
                return {};
            }
        } while (take(','));
        return take('}') ? element : Ox::Ptr<Element>();
    }

    bool value(Element& owner, std::string const& key, int depth) {
        owner.texts_.erase(key);
        owner.children_.erase(key);
        switch (next()) {
            case '"': {
                std::optional<std::string> const text = string();
                if (text) {
                    owner.texts_[key] = *text;
                }
                return text.has_value();
            }
            case '{': {
                Ox::Ptr<Element> const child = object(depth + 1);
                owner.children_[key] = child;
                return static_cast<bool>(child);
            }
            case '[':
                return list(depth + 1);
            default:
                return word();
        }
    }

    /// Lists are gone through, and not kept.
    bool list(int depth) {
        if (depth > deepest || !take('[')) {
            return false;
        }
        if (take(']')) {
            return true;
        }
        Element ignored;
        do {
            if (!value(ignored, "", depth)) {
                return false;
            }
        } while (take(','));
        return take(']');
    }

    /// A number, true, false or null.
    bool word() {
        std::size_t const begin = at_;
        while (at_ < text_.size() && isWordCharacter(text_[at_])) {
            ++at_;
        }
        std::string const found(text_.substr(begin, at_ - begin));
        if (found == "true" || found == "false" || found == "null") {
            return true;
        }
        char* end = nullptr;
        static_cast<void>(std::strtod(found.c_str(), &end));
        bool const beginsAsNumber =
            !found.empty() && (found[0] == '-' || (found[0] >= '0' && found[0] <= '9'));
        return beginsAsNumber && end == found.c_str() + found.size();
    }

    static bool isWordCharacter(char character) {
        return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '-' ||
               character == '+' || character == '.';
    }

    std::optional<std::string> string() {
        if (!take('"')) {
            return std::nullopt;
        }
        std::string result;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (static_cast<unsigned char>(text_[at_]) < ' ' ||
                !(text_[at_] == '\\' ? escape(result) : plain(result))) {
                return std::nullopt;
            }
        }
        return at_ < text_.size() && text_[at_++] == '"' ? std::optional(result) : std::nullopt;
    }

    bool plain(std::string& result) {
        result += text_[at_++];
        return true;
    }

    bool escape(std::string& result) {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        ++at_;
        if (at_ >= text_.size()) {
            return false;
        }
        char const letter = text_[at_++];
        if (letter == 'u') {
            return character(result);
        }
        std::size_t const place = letters.find(letter);
        if (place != std::string_view::npos) {
            result += meanings[place];
        }
        return place != std::string_view::npos;
    }

    /// A character by its number, or by the two numbers of a pair.
    bool character(std::string& result) {
        std::optional<std::uint32_t> const first = code();
        if (!first) {
            return false;
        }
        auto number = static_cast<wchar_t>(*first);
        if (isBetween(*first, highSurrogate, lowSurrogate) && text_.substr(at_, 2) == "\\u") {
            at_ += 2;
            std::optional<std::uint32_t> const second = code();
            if (!second || !isBetween(*second, lowSurrogate, surrogatesEnd)) {
                return false;
            }
            number = static_cast<wchar_t>(supplement + ((*first - highSurrogate) << surrogateBits) +
                                          (*second - lowSurrogate));
        } else if (isBetween(*first, highSurrogate, surrogatesEnd)) {
            number = replacementCharacter;
        }
        result += toUTF8(LightweightString<wchar_t>(std::wstring(1, number))).str();
        return true;
    }

    std::optional<std::uint32_t> code() {
        std::string const digits(text_.substr(at_, codeLength));
        bool const isWhole = digits.size() == codeLength &&
                             digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
        at_ += digits.size();
        return isWhole ? std::optional(static_cast<std::uint32_t>(std::stoul(digits, nullptr, hexadecimal)))
                       : std::nullopt;
    }

    void skipSpace() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }
    char next() {
        skipSpace();
        return at_ < text_.size() ? text_[at_] : '\0';
    }
    bool take(char character) {
        bool const isThere = next() == character && at_ < text_.size();
        at_ += isThere ? 1 : 0;
        return isThere;
    }

    std::string_view const text_;
    std::size_t at_ = 0;
};

Ox::Ptr<Element> Element::parse(LightweightString<char> const& text) {
    return Parser(text.view()).whole();
}

LightweightString<char> Element::getString(char const* key) const {
    auto const found = texts_.find(key);
    return found == texts_.end() ? LightweightString<char>() : LightweightString<char>(found->second);
}

LightweightString<wchar_t> Element::getWString(char const* key) const {
    LightweightString<char> const text = getString(key);
    return fromUTF8(text.c_str(), static_cast<int>(text.length()));
}

Ox::Ptr<Element> Element::getChild(char const* key) const {
    auto const found = children_.find(key);
    return found == children_.end() ? Ox::Ptr<Element>() : found->second;
}

}  // namespace JSON
