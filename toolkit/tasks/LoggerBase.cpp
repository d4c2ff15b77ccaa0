#include "toolkit/tasks/LoggerBase.h"

#include <cstdarg>
#include <string>
#include <string_view>

#include "toolkit/services/LogFormat.h"

namespace {

/// Puts a backslash before what would end a link.
void appendEscaped(std::wstring& text, LightweightString<wchar_t> const& part) {
    for (wchar_t const c : part.view()) {
        if (std::wstring_view(L"[]()\\").find(c) != std::wstring_view::npos) {
            text += L'\\';
        }
        text += c;
    }
}

}  // namespace

LightweightString<wchar_t> LoggerBase::HyperLink::asString() const {
    std::wstring text = L"[";
    appendEscaped(text, label_);
    text += L"]";
    for (LightweightString<wchar_t> const& target : targets_) {
        text += L"(";
        appendEscaped(text, target);
        text += L")";
    }
    return LightweightString<wchar_t>(text.c_str());
}

void LoggerBase::Out(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    LightweightString<char> const text = formatLogText(format, arguments);
    va_end(arguments);
    write(fromUTF8(text.c_str()), plainLine);
}
