#include "host/remote/HttpUrl.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <memory>

#include "host/remote/CurlLibrary.h"
#include "host/remote/Utf8Check.h"

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";
constexpr std::string_view unreservedMarks = "-._~";
constexpr std::string_view reservedMarks = ":/?#[]@!$&'()*+,;=";
constexpr std::string_view plainScheme = "http";
constexpr std::string_view secureScheme = "https";
constexpr wchar_t replacement = 0xFFFD;

struct FreeUrl {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using UrlHandle = std::unique_ptr<CURLU, FreeUrl>;

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isUnreserved(char c) {
    return isLetterOrDigit(c) || unreservedMarks.find(c) != std::string_view::npos;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// True if a percent sign and two digits stand at the place.
bool isEncodedAt(std::string_view text, std::size_t place) {
    return place + 2 < text.size() && text[place] == '%' && hexValue(text[place + 1]) >= 0 &&
           hexValue(text[place + 2]) >= 0;
}

void appendEncoded(std::string& out, char c) {
    auto const byte = static_cast<unsigned char>(c);
    out += '%';
    out += hexDigits[byte >> 4U];
    out += hexDigits[byte & 0x0FU];
}

/// Encodes what no URL may hold, and nothing else.
std::string asSent(std::string_view name) {
    std::string text;
    for (std::size_t place = 0; place < name.size(); ++place) {
        char const c = name[place];
        bool const isFit = isUnreserved(c) || reservedMarks.find(c) != std::string_view::npos;
        if (isFit || isEncodedAt(name, place)) {
            text += c;
        } else {
            appendEncoded(text, c);
        }
    }
    return text;
}

std::string decoded(std::string_view text) {
    std::string bytes;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (isEncodedAt(text, place)) {
            bytes += static_cast<char>(hexValue(text[place + 1]) * 16 + hexValue(text[place + 2]));
            place += 2;
        } else {
            bytes += text[place];
        }
    }
    return bytes;
}

std::string part(UrlHandle const& url, CURLUPart which, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(url.get(), which, &text, flags) != CURLUE_OK || text == nullptr) {
        return {};
    }
    std::string const copy = text;
    curl_free(text);
    return copy;
}

bool hasControlCharacter(std::wstring_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](wchar_t c) { return isControlCharacter(static_cast<char32_t>(c)); });
}

bool startsWithScheme(std::wstring_view name, std::string_view scheme) {
    static constexpr std::wstring_view separator = L"://";
    if (name.size() < scheme.size() + separator.size() || name.substr(scheme.size(), 3) != separator) {
        return false;
    }
    return std::equal(scheme.begin(), scheme.end(), name.begin(),
                      [](char wanted, wchar_t c) { return c == wanted || c == wanted - 'a' + 'A'; });
}

}  // namespace

bool isHttpName(LightweightString<wchar_t> const& name) {
    return startsWithScheme(name.view(), plainScheme) || startsWithScheme(name.view(), secureScheme);
}

std::optional<HttpUrl> HttpUrl::parse(LightweightString<wchar_t> const& name) {
    if (!isHttpName(name) || hasControlCharacter(name.view())) {
        return std::nullopt;
    }
    useCurlLibrary();
    UrlHandle const handle(curl_url());
    std::string const sent = asSent(toUTF8(name).view());
    if (!handle || curl_url_set(handle.get(), CURLUPART_URL, sent.c_str(), CURLU_PATH_AS_IS) != CURLUE_OK) {
        return std::nullopt;
    }
    HttpUrl url;
    url.credentials = {part(handle, CURLUPART_USER, CURLU_URLDECODE),
                       part(handle, CURLUPART_PASSWORD, CURLU_URLDECODE)};
    curl_url_set(handle.get(), CURLUPART_USER, nullptr, 0);
    curl_url_set(handle.get(), CURLUPART_PASSWORD, nullptr, 0);
    curl_url_set(handle.get(), CURLUPART_FRAGMENT, nullptr, 0);
    url.text = part(handle, CURLUPART_URL);
    std::string const scheme = part(handle, CURLUPART_SCHEME);
    url.isSecure = scheme == secureScheme;
    url.store = scheme + "://" + part(handle, CURLUPART_HOST) + ":" +
                part(handle, CURLUPART_PORT, CURLU_DEFAULT_PORT);
    url.hasQuery = !part(handle, CURLUPART_QUERY).empty();
    std::size_t const query = url.text.find('?');
    url.shown = query == std::string::npos ? url.text : url.text.substr(0, query) + "?...";
    return url;
}

std::string percentEncoded(std::string_view component) {
    std::string text;
    for (char const c : component) {
        if (isUnreserved(c)) {
            text += c;
        } else {
            appendEncoded(text, c);
        }
    }
    return text;
}

std::string percentEncodedPath(std::string_view path) {
    std::string text;
    for (char const c : path) {
        text += c == '/' ? std::string(1, c) : percentEncoded(std::string_view(&c, 1));
    }
    return text;
}

LightweightString<wchar_t> displayNameOf(HttpUrl const& url) {
    std::string const bytes = decoded(url.shown);
    bool const isText = isUtf8(bytes);
    std::wstring text =
        fromUTF8((isText ? bytes : url.shown).c_str(), static_cast<int>((isText ? bytes : url.shown).size()))
            .str();
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return isControlCharacter(static_cast<char32_t>(c)); },
        replacement);
    return LightweightString<wchar_t>(text);
}
