#include "transfer/ExternalDownloadSettings.h"

namespace {

constexpr char const* locationKey = "Location";
constexpr char const* proxyExtensionKey = "ProxyExt";
constexpr char const* namingKey = "Naming";
constexpr char const* byClip = "clip";
constexpr char const* byFile = "file";

}  // namespace

void ExternalDownloadSettings::write(JSON::Builder& builder) const {
    builder.startChild(nullptr);
    builder.add(locationKey, location, true);
    builder.add(proxyExtensionKey, proxyExt, true);
    builder.add(namingKey, LightweightString<char>(naming == namedByClip ? byClip : byFile), true);
    builder.endChild();
}

bool ExternalDownloadSettings::read(Ox::Ptr<JSON::Element> const& element) {
    if (!element) {
        return false;
    }
    location = element->getWString(locationKey);
    proxyExt = element->getWString(proxyExtensionKey);
    naming = element->getString(namingKey) == byClip ? namedByClip : namedByFile;
    return !location.empty() && !proxyExt.empty();
}
