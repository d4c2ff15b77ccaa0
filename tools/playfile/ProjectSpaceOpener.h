#pragma once

#include "host/remote/RemoteProjectSpaces.h"
#include "host/sqlite/SqliteProjectSpaces.h"

namespace cli {

/// Makes what is behind a project's remote spaces. The first root of such a space that is a URL names its place on a
/// server. A space has the roots that the project gives it, and if that is the URL alone, those that the server says
/// as well.
///
/// Threads  Any.
class ProjectSpaceOpener {
public:
    /// @param spaces  must outlive this
    explicit ProjectSpaceOpener(RemoteProjectSpaces& spaces) : spaces_(&spaces) {}

    [[nodiscard]] Ox::Ptr<iRemoteProjectSpace> operator()(ProjectSpaceRecord const& space) const;

    /// The URL of a space, with what it may hold of credentials; empty for one without.
    [[nodiscard]] static LightweightString<wchar_t> urlOf(ProjectSpaceRecord const& space);
    /// Makes the first root of a space of its URL.
    [[nodiscard]] static RemoteRoot rootOf(LightweightString<wchar_t> const& url) { return {url, url, {}}; }

private:
    RemoteProjectSpaces* spaces_;
};

}  // namespace cli
