#include "playfile/TraceText.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace traceText {
namespace {

constexpr std::uint32_t replacement = 0xFFFD;
constexpr std::uint32_t firstSurrogate = 0xD800;
constexpr std::uint32_t lastSurrogate = 0xDFFF;
constexpr std::uint32_t lastOfBasicPlane = 0xFFFF;
constexpr std::uint32_t lastCharacter = 0x10FFFF;
constexpr std::int64_t nanosecondsPerMicrosecond = 1000;

void appendEscape(std::string& out, std::uint32_t unit) {
    char text[8];
    std::snprintf(text, sizeof text, "\\u%04x", unit);
    out += text;
}

void appendCharacter(std::string& out, std::uint32_t character) {
    if (character > lastCharacter || (character >= firstSurrogate && character <= lastSurrogate)) {
        character = replacement;
    }
    if (character == '"' || character == '\\') {
        out += '\\';
        out += static_cast<char>(character);
    } else if (character >= ' ' && character < 0x7F) {
        out += static_cast<char>(character);
    } else if (character <= lastOfBasicPlane) {
        appendEscape(out, character);
    } else {
        std::uint32_t const beyond = character - lastOfBasicPlane - 1;
        appendEscape(out, 0xD800 + (beyond >> 10));
        appendEscape(out, 0xDC00 + (beyond & 0x3FF));
    }
}

template <class Number>
void appendNumber(std::string& out, Number number) {
    char text[24];
    out.append(text, std::to_chars(text, std::end(text), number).ptr);
}

/// With three digits behind the point. Times aren't negative.
void appendMicroseconds(std::string& out, std::int64_t nanoseconds) {
    appendNumber(out, nanoseconds / nanosecondsPerMicrosecond);
    out += '.';
    for (std::int64_t digit = nanosecondsPerMicrosecond / 10; digit != 0; digit /= 10) {
        out += static_cast<char>('0' + nanoseconds / digit % 10);
    }
}

void appendHead(std::string& out, char phase, int process, int thread) {
    out += "{\"ph\":\"";
    out += phase;
    out += "\",\"pid\":";
    appendNumber(out, process);
    out += ",\"tid\":";
    appendNumber(out, thread);
}

/// True if a text stands in JSON as it is.
bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char character) {
        return character >= ' ' && character < 0x7F && character != '"' && character != '\\';
    });
}

/// Appends the members of an object, with commas between them.
class Members {
public:
    explicit Members(std::string& out) : out_(out) {}
    std::string& next(char const* name) {
        out_ += isFirst_ ? "" : ",";
        isFirst_ = false;
        appendString(out_, name);
        out_ += ':';
        return out_;
    }

private:
    std::string& out_;
    bool isFirst_ = true;
};

void appendFacts(std::string& out, TraceEvent const& event) {
    Members members(out);
    if (event.request != 0) {
        appendNumber(members.next("request"), event.request);
    }
    for (std::size_t i = 0; i < event.factCount; ++i) {
        TraceEvent::Fact const& fact = event.facts[i];
        std::string& text = members.next(fact.name);
        if (fact.word) {
            appendString(text, fact.word);
        } else {
            appendNumber(text, fact.value);
        }
    }
    if (!event.reader.empty()) {
        appendString(members.next("reader"), event.reader.c_str());
    }
    if (!event.file.empty()) {
        appendString(members.next("file"), event.file);
    }
}

/// What only some phases have: a length, the request that ties the steps together, a moment's reach.
void appendPhaseMembers(std::string& out, TraceEvent const& event) {
    switch (event.phase) {
        case TraceEvent::slice:
            out += ",\"dur\":";
            appendMicroseconds(out, event.lengthNs);
            break;
        case TraceEvent::moment:
            out += ",\"s\":\"t\"";
            break;
        case TraceEvent::requestBegins:
        case TraceEvent::requestStep:
        case TraceEvent::requestEnds:
            out += ",\"id\":\"";
            appendNumber(out, event.request);
            out += '"';
            break;
    }
}

}  // namespace

void appendString(std::string& out, LightweightString<wchar_t> const& text) {
    out += '"';
    for (wchar_t const character : text.view()) {
        appendCharacter(out, static_cast<std::uint32_t>(character));
    }
    out += '"';
}

void appendString(std::string& out, char const* text) {
    std::string_view const view(text);
    if (!isPlain(view)) {
        appendString(out, fromUTF8(text));
        return;
    }
    out += '"';
    out += view;
    out += '"';
}

void appendEvent(std::string& out, TraceEvent const& event, int process, int thread) {
    appendHead(out, event.phase, process, thread);
    out += ",\"ts\":";
    appendMicroseconds(out, event.startNs);
    appendPhaseMembers(out, event);
    out += ",\"cat\":";
    appendString(out, event.category);
    out += ",\"name\":";
    appendString(out, event.name);
    out += ",\"args\":{";
    appendFacts(out, event);
    out += "}}";
}

void appendName(std::string& out, char const* what, char const* name, int process, int thread) {
    appendHead(out, 'M', process, thread);
    out += ",\"name\":";
    appendString(out, what);
    out += ",\"args\":{\"name\":";
    appendString(out, name);
    out += "}}";
}

}  // namespace traceText
