#pragma once

#include <memory>
#include <string>

#include "host/remote/AnswerCache.h"
#include "host/remote/HttpClient.h"
#include "host/remote/SpaceDocument.h"
#include "toolkit/catalogue/ProjectSpaces.h"

/// A project space on an HTTP server: a document for the space and one for each clip below its URL.
///
/// A document is kept for a while, whatever it says and also if it couldn't be had, so that a store is asked at
/// most once for a clip in that time.
///
/// Threads  Any. A question takes no longer than a query may. Questions about different clips don't wait for each
///          other.
/// Errors   What a document has of faults is logged; what isn't there is nothing special.
class RemoteProjectSpace final : public iRemoteProjectSpace {
public:
    /// Documents that are kept.
    static constexpr std::size_t mostDocuments = 2048;

    /// @param base  without a query
    RemoteProjectSpace(std::shared_ptr<HttpClient> client, HttpUrl const& base);

    [[nodiscard]] std::vector<RemoteRoot> getRoots() override;
    [[nodiscard]] std::vector<LightweightString<wchar_t>> getOriginalFiles(Cookie const& cookie,
                                                                           int option) override;
    [[nodiscard]] bool hasProxy(Cookie const& cookie) override;

private:
    using Document = AnswerCache<SpaceDocument>::Answer;
    using Found = AnswerCache<SpaceDocument>::Found;

    [[nodiscard]] Document clipDocument(Cookie const& cookie);
    /// @param clip  its 32 digits; empty for the space itself
    [[nodiscard]] Found fetch(std::string const& path, std::string const& clip) const;

    std::shared_ptr<HttpClient> const client_;
    /// With a slash at its end.
    std::string const base_;
    AnswerCache<SpaceDocument> documents_;
};
