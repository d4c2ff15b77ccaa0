#pragma once

#include <memory>

#include "host/remote/RemoteFileManager.h"
#include "host/remote/RemoteProjectSpaces.h"

/// Remote stores for this process: while it lives, a file manager that knows http:// and https://, and a manager of
/// project spaces that knows those on HTTP servers, are in force. Both forward to what was in force before.
///
/// Lifetime  Made before threads use files, and gone after they have ended; what was installed meanwhile on top of
///           it goes first.
class RemoteStores {
public:
    explicit RemoteStores(RemoteLimits const& limits = RemoteLimits::read(),
                          RemoteClock clock = &std::chrono::steady_clock::now);
    ~RemoteStores();
    RemoteStores(RemoteStores const&) = delete;
    RemoteStores& operator=(RemoteStores const&) = delete;

    [[nodiscard]] RemoteProjectSpaces& spaces() { return spaces_; }

private:
    std::shared_ptr<HttpClient> const client_;
    RemoteFileManager files_;
    RemoteProjectSpaces spaces_;
    iFileManager* const filesBefore_;
    ProjectSpacesManager* const spacesBefore_;
};
