#include <array>
#include <cstdio>

#include "toolkit/services/Json.h"

namespace {

constexpr unsigned char firstPrintable = 0x20;

std::string escaped(std::string const& text) {
    std::string result;
    for (char const character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
            result += character;
        } else if (static_cast<unsigned char>(character) < firstPrintable) {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(character));
            result += code.data();
        } else {
            result += character;
        }
    }
    return result;
}

std::string quoted(std::string const& text) {
    return '"' + escaped(text) + '"';
}

}  // namespace

namespace JSON {

void Builder::beginValue(char const* key) {
    if (!areFilled_.empty()) {
        text_ += areFilled_.back() ? ",\n" : "\n";
        areFilled_.back() = true;
        text_.append(areFilled_.size() * 2, ' ');
    }
    if (key != nullptr) {
        text_ += quoted(key) + ": ";
    }
}

void Builder::startChild(char const* name) {
    beginValue(name);
    text_ += '{';
    areFilled_.push_back(false);
}

void Builder::add(char const* key, LightweightString<char> const& value, bool isText) {
    beginValue(key);
    text_ += isText ? quoted(value.str()) : value.str();
}

void Builder::add(char const* key, LightweightString<wchar_t> const& value, bool isText) {
    add(key, toUTF8(value), isText);
}

void Builder::endChild() {
    if (areFilled_.empty()) {
        return;
    }
    bool const isFilled = areFilled_.back();
    areFilled_.pop_back();
    if (isFilled) {
        text_ += '\n';
        text_.append(areFilled_.size() * 2, ' ');
    }
    text_ += '}';
    text_ += areFilled_.empty() ? "\n" : "";
}

}  // namespace JSON
