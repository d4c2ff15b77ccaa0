#include "host/remote/RemoteProjectSpaces.h"

#include "host/remote/RemoteProjectSpace.h"
#include "toolkit/services/Log.h"

RemoteProjectSpaces::RemoteProjectSpaces(std::shared_ptr<HttpClient> client, ProjectSpacesManager& before)
    : client_(std::move(client)), before_(before) {}

bool RemoteProjectSpaces::add(Name const& name, Name const& baseUrl) {
    auto const url = HttpUrl::parse(baseUrl);
    if (name.empty() || !url || url->hasQuery) {
        LogBoth(
            "Project space \"%ls\" wasn't added: it needs a name, and a URL of http or https without a "
            "query\n",
            name.c_str());
        return false;
    }
    client_->setCredentials(*url);
    Ox::Ptr<iRemoteProjectSpace> const space = Ox::makePtr<RemoteProjectSpace>(client_, *url);
    std::lock_guard const scope(lock_);
    spaces_[name] = space;
    return true;
}

void RemoteProjectSpaces::remove(Name const& name) {
    std::lock_guard const scope(lock_);
    spaces_.erase(name);
    if (current_ == name) {
        current_ = {};
    }
}

bool RemoteProjectSpaces::setCurrent(Name const& name) {
    std::lock_guard const scope(lock_);
    if (!name.empty() && spaces_.count(name) == 0) {
        return false;
    }
    current_ = name;
    return true;
}

int RemoteProjectSpaces::getCurrentProjectSpaceType() {
    {
        std::lock_guard const scope(lock_);
        if (!current_.empty()) {
            return remoteSpace;
        }
    }
    return before_.getCurrentProjectSpaceType();
}

Ox::Ptr<iRemoteProjectSpace> RemoteProjectSpaces::getResourceForRemoteProjectSpace(Name const& name) {
    {
        std::lock_guard const scope(lock_);
        auto const found = spaces_.find(name.empty() ? current_ : name);
        if (found != spaces_.end()) {
            return found->second;
        }
    }
    return before_.getResourceForRemoteProjectSpace(name);
}
