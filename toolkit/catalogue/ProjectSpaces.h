#pragma once

#include <vector>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"

/// Where a remote project space keeps its files.
struct RemoteRoot {
    /// As the space itself names the place.
    LightweightString<wchar_t> path;
    /// The same place as a name in it is given here.
    LightweightString<wchar_t> localPath;
    /// Counts where `path` is empty.
    LightweightString<wchar_t> otherPath;
};

/// What a remote project space has.
///
/// Threads  Any. May ask another machine, for a bounded time.
/// Errors   Of what can't be asked for it knows nothing.
class iRemoteProjectSpace : public virtual iObject {
public:
    [[nodiscard]] virtual std::vector<RemoteRoot> getRoots() = 0;
    /// The original files that it has of a clip, as remote names. Any cookie of the clip will do.
    ///
    /// @param option  always 0
    [[nodiscard]] virtual std::vector<LightweightString<wchar_t>> getOriginalFiles(Cookie const& cookie,
                                                                                   int option) = 0;
    /// True if it has a proxy of the clip.
    [[nodiscard]] virtual bool hasProxy(Cookie const& cookie) = 0;
};

/// In which project space the process works.
///
/// Threads  Any.
class ProjectSpacesManager {
public:
    /// What kind a project space is. Others are none that media belong to.
    enum eType : int { localSpace = 0, sharedSpace = 1, remoteSpace = 2 };

    virtual ~ProjectSpacesManager() = default;

    /// The manager in force; one of a local project space unless another is installed.
    [[nodiscard]] static ProjectSpacesManager* instance() noexcept;
    /// Puts `manager` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static ProjectSpacesManager* install(ProjectSpacesManager* manager) noexcept;

    /// An `eType`, or another number.
    [[nodiscard]] virtual int getCurrentProjectSpaceType() { return localSpace; }
    /// What is behind a remote project space; empty if there is nothing.
    ///
    /// @param name  empty for the current one
    [[nodiscard]] virtual Ox::Ptr<iRemoteProjectSpace> getResourceForRemoteProjectSpace(
        LightweightString<wchar_t> const& /*name*/) {
        return {};
    }
};
