#include "host/remote/RemoteProjectSpace.h"

#include "toolkit/services/Log.h"

namespace {

constexpr int statusWhole = 200;
constexpr int statusMissing = 404;
constexpr int statusGone = 410;
constexpr char const* spacePath = "space.json";
constexpr char const* clipFolder = "clips/";
constexpr char const* clipExtension = ".json";

/// Takes a document, up to the length that one may have.
class DocumentReceiver final : public iHttpReceiver {
public:
    bool takeHeaders(HttpHeaders const& headers) override {
        status_ = headers.status;
        return status_ == statusWhole;
    }
    bool takeBytes(char const* data, std::size_t byteCount) override {
        text_.append(data, byteCount);
        return text_.size() <= SpaceReader::mostDocumentBytes;
    }

    [[nodiscard]] int status() const { return status_; }
    [[nodiscard]] std::string const& text() const { return text_; }

private:
    int status_ = 0;
    std::string text_;
};

std::string withSlash(std::string const& url) {
    return url.ends_with('/') ? url : url + '/';
}

LightweightString<wchar_t> wideOf(std::string const& text) {
    return fromUTF8(text.c_str(), static_cast<int>(text.size()));
}

}  // namespace

RemoteProjectSpace::RemoteProjectSpace(std::shared_ptr<HttpClient> client, HttpUrl const& base)
    : client_(std::move(client)),
      base_(withSlash(base.text)),
      documents_(mostDocuments, [of = client_] { return of->now(); }) {}

std::vector<RemoteRoot> RemoteProjectSpace::getRoots() {
    return documents_.get(spacePath, [this] { return fetch(spacePath, {}); })->roots;
}

std::vector<LightweightString<wchar_t>> RemoteProjectSpace::getOriginalFiles(Cookie const& cookie, int) {
    std::vector<LightweightString<wchar_t>> names;
    for (ListedFile const& file : clipDocument(cookie)->originals) {
        names.push_back(wideOf(base_ + percentEncodedPath(file.name)));
    }
    return names;
}

bool RemoteProjectSpace::hasProxy(Cookie const& cookie) {
    return !clipDocument(cookie)->proxies.empty();
}

RemoteProjectSpace::Document RemoteProjectSpace::clipDocument(Cookie const& cookie) {
    if (!cookie.valid()) {
        return std::make_shared<SpaceDocument const>();
    }
    std::string const clip = cookie.asString(true).str();
    std::string const path = clipFolder + clip + clipExtension;
    return documents_.get(path, [&] { return fetch(path, clip); });
}

/// What couldn't be had isn't asked for again for as long as a store rests; what wasn't asked for, as soon as the
/// store may be.
RemoteProjectSpace::Found RemoteProjectSpace::fetch(std::string const& path, std::string const& clip) const {
    RemoteLimits const& limits = client_->limits();
    Found const nothing{std::make_shared<SpaceDocument const>(), limits.rest};
    auto const url = HttpUrl::parse(wideOf(base_ + path));
    if (!url) {
        return nothing;
    }
    DocumentReceiver receiver;
    HttpOutcome const outcome = client_->query(*url, eHttpQuestion::document, limits.query, receiver);
    bool const isTooLong = receiver.text().size() > SpaceReader::mostDocumentBytes;
    if (receiver.status() == statusMissing || receiver.status() == statusGone) {
        return {nothing.answer, limits.listing};
    }
    if (receiver.status() != 0 && receiver.status() != statusWhole) {
        LogBoth("\"%s\" can't be used: the store answers with status %d; check who may read there\n",
                url->shown.c_str(), receiver.status());
        return nothing;
    }
    if (outcome.end == eHttpEnd::notAsked) {
        return {nothing.answer, RemoteLimits::Time(0)};
    }
    if (outcome.end != eHttpEnd::complete && !isTooLong) {
        return nothing;
    }
    SpaceReader const reader(url->shown);
    return {std::make_shared<SpaceDocument const>(clip.empty() ? reader.readSpace(receiver.text())
                                                               : reader.readClip(receiver.text(), clip)),
            limits.listing};
}
