#include "playfile/TraceText.h"

#include <cstdio>

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

void appendMicroseconds(std::string& out, std::int64_t nanoseconds) {
    char text[40];
    std::snprintf(text, sizeof text, "%lld.%03lld",
                  static_cast<long long>(nanoseconds / nanosecondsPerMicrosecond),
                  static_cast<long long>(nanoseconds % nanosecondsPerMicrosecond));
    out += text;
}

void appendHead(std::string& out, char phase, int process, int thread) {
    out += "{\"ph\":\"";
    out += phase;
    out += "\",\"pid\":" + std::to_string(process) + ",\"tid\":" + std::to_string(thread);
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
        members.next("request") += std::to_string(event.request);
    }
    for (std::size_t i = 0; i < event.factCount; ++i) {
        TraceEvent::Fact const& fact = event.facts[i];
        std::string& text = members.next(fact.name);
        if (fact.word) {
            appendString(text, fact.word);
        } else {
            text += std::to_string(fact.value);
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
            out += ",\"id\":\"" + std::to_string(event.request) + '"';
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
    appendString(out, fromUTF8(text));
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
