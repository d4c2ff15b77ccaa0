#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "host/remote/HttpClient.h"
#include "toolkit/catalogue/ProjectSpaces.h"

/// Adds project spaces on HTTP servers to those of another manager, which answers for all other names and while
/// none of these is the current one.
///
/// Threads  Any.
class RemoteProjectSpaces final : public ProjectSpacesManager {
public:
    using Name = LightweightString<wchar_t>;

    /// @param before  must outlive this
    RemoteProjectSpaces(std::shared_ptr<HttpClient> client, ProjectSpacesManager& before);

    /// Makes a space known, or a known one another. Nobody is asked for it yet. Credentials in the URL are those for
    /// its server; they stand in no name that the space gives.
    ///
    /// @return false, logged, if it has no name or the URL isn't one of http or https without a query
    [[nodiscard]] bool add(Name const& name, Name const& baseUrl);
    /// Forgets a space; if it is the current one, there is none then.
    void remove(Name const& name);
    /// @param name  empty for none of these
    /// @return      false, and nothing is changed, if there is no such space
    [[nodiscard]] bool setCurrent(Name const& name);

    [[nodiscard]] int getCurrentProjectSpaceType() override;
    [[nodiscard]] Ox::Ptr<iRemoteProjectSpace> getResourceForRemoteProjectSpace(Name const& name) override;

private:
    std::shared_ptr<HttpClient> const client_;
    ProjectSpacesManager& before_;
    std::mutex lock_;
    std::map<Name, Ox::Ptr<iRemoteProjectSpace>> spaces_;
    Name current_;
};
