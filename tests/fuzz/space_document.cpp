/// Whatever a project space sends, what is taken of it is bounded and leads nowhere but below the space.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/remote/HttpUrl.h"
#include "host/remote/SpaceDocument.h"
#include "toolkit/services/Log.h"

namespace {

constexpr std::string_view clip = "0123456789abcdef0123456789abcdef";
constexpr char const* base = "http://host/space/";

/// The log of a run is of no interest.
class NoLog final : public iLogSink {
public:
    NoLog() { installLogSink(this); }
    void writeToConsole(LightweightString<char> const&) override {}
    void writeToLog(LightweightString<char> const&) override {}
};

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void check(std::vector<ListedFile> const& files) {
    require(files.size() <= SpaceReader::mostFiles);
    for (ListedFile const& file : files) {
        require(SpaceReader::faultOf(file.name).empty());
        auto const url = HttpUrl::parse(fromUTF8((base + percentEncodedPath(file.name)).c_str()));
        require(url && url->store == "http://host:80" && url->text.starts_with(base) && !url->hasQuery);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static NoLog const silence;
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    SpaceReader const reader("document");
    SpaceDocument const ofClip = reader.readClip(text, clip);
    check(ofClip.originals);
    check(ofClip.proxies);
    SpaceDocument const ofSpace = reader.readSpace(text);
    require(ofSpace.roots.size() <= SpaceReader::mostRoots);
    for (RemoteRoot const& root : ofSpace.roots) {
        require(!root.localPath.empty() && !(root.path.empty() && root.otherPath.empty()));
    }
    return 0;
}
