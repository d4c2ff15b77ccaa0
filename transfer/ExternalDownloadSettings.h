#pragma once

#include <cstdint>

#include "ole/Ox/OxString.h"
#include "toolkit/services/Json.h"

/// Where an external download puts its copies, and how they are called.
///
/// As JSON: an object with the texts "Location", "ProxyExt" and "Naming" ("clip" or "file").
struct ExternalDownloadSettings : JSON::iPersistable {
    enum eNaming : std::uint32_t {
        namedByClip = 0,
        namedByFile = 1  ///< and every other number
    };

    void write(JSON::Builder& builder) const override;
    /// @return false without an element, which leaves all as it is, and, once all is set, if folder or extension are
    ///         empty
    bool read(Ox::Ptr<JSON::Element> const& element) override;

    /// The folder.
    LightweightString<wchar_t> location;
    eNaming naming = namedByClip;
    /// Given to proxies, without a full stop.
    LightweightString<wchar_t> proxyExt;
};
