#include "tools/playfile/JsonText.h"

#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr int jsonIndent = 2;
constexpr std::size_t plainIndent = 2;

std::string scalarText(Json const& value) {
    if (value.is_string()) {
        return printable(value.get_ref<std::string const&>());
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    if (value.is_null()) {
        return "not known";
    }
    if (value.empty()) {
        return "none";
    }
    return value.dump();
}

void addLines(std::string& text, Json const& value, std::size_t depth);

void addMember(std::string& text, std::string const& name, Json const& value, std::size_t depth) {
    text += std::string(depth * plainIndent, ' ') + name;
    if (value.is_structured() && !value.empty()) {
        text += '\n';
        addLines(text, value, depth + 1);
    } else {
        text += " " + scalarText(value) + '\n';
    }
}

void addLines(std::string& text, Json const& value, std::size_t depth) {
    if (value.is_object()) {
        for (auto const& [name, member] : value.items()) {
            addMember(text, printable(name) + ":", member, depth);
        }
        return;
    }
    for (Json const& element : value) {
        addMember(text, "-", element, depth);
    }
}

}  // namespace

std::string toJsonText(Json const& value) {
    return value.dump(jsonIndent, ' ', false, Json::error_handler_t::replace);
}

std::string toPlainText(Json const& value) {
    std::string text;
    addLines(text, value, 0);
    if (!text.empty()) {
        text.pop_back();
    }
    return text;
}

}  // namespace cli
