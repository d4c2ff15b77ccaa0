#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ole/Ox/OxString.h"

/// Who asks, where a store wants to know.
struct HttpCredentials {
    std::string user;
    std::string password;
    [[nodiscard]] bool empty() const { return user.empty() && password.empty(); }
};

/// A remote name, taken apart.
///
/// A remote name is the URL of a file. What no URL may hold (blanks, letters of other scripts) may stand in it
/// as it is, and is percent-encoded on the way to the store; what is encoded already stays so.
struct HttpUrl {
    /// Empty for what is no URL of http or https, and for one with control characters.
    [[nodiscard]] static std::optional<HttpUrl> parse(LightweightString<wchar_t> const& name);

    /// What is sent; without credentials and fragment.
    std::string text;
    /// For people and logs: without credentials, and without what a query may hold of secrets.
    std::string shown;
    /// Scheme, host and port.
    std::string store;
    HttpCredentials credentials;
    bool isSecure = false;
    bool hasQuery = false;
};

/// True if the name begins with http:// or https://, in letters of any case.
[[nodiscard]] bool isHttpName(LightweightString<wchar_t> const& name);

/// The bytes of one component of a path as they stand in a URL.
[[nodiscard]] std::string percentEncoded(std::string_view component);
/// A path of names, each component encoded.
[[nodiscard]] std::string percentEncodedPath(std::string_view path);

/// How people call what lies under a remote name: what may be shown of it, decoded where that gives a text. A
/// character that is unfit for display becomes U+FFFD.
[[nodiscard]] LightweightString<wchar_t> displayNameOf(HttpUrl const& url);
