#include "tools/playfile/ProjectSpaceOpener.h"

#include <algorithm>

#include "host/remote/HttpUrl.h"

namespace cli {
namespace {

using Name = LightweightString<wchar_t>;

/// The roots that a project names, and for all else who is behind the space; nobody if that is empty.
class SpaceOfProject final : public iRemoteProjectSpace {
public:
    SpaceOfProject(std::vector<RemoteRoot> roots, Ox::Ptr<iRemoteProjectSpace> behind)
        : roots_(std::move(roots)), behind_(std::move(behind)) {}

    [[nodiscard]] std::vector<RemoteRoot> getRoots() override {
        constexpr std::size_t urlAlone = 1;
        std::vector<RemoteRoot> roots = roots_;
        if (behind_ && roots.size() == urlAlone) {
            std::vector<RemoteRoot> const said = behind_->getRoots();
            roots.insert(roots.end(), said.begin(), said.end());
        }
        return roots;
    }
    [[nodiscard]] std::vector<Name> getOriginalFiles(Cookie const& cookie, int option) override {
        return behind_ ? behind_->getOriginalFiles(cookie, option) : std::vector<Name>();
    }
    [[nodiscard]] bool hasProxy(Cookie const& cookie) override {
        return behind_ && behind_->hasProxy(cookie);
    }

private:
    std::vector<RemoteRoot> const roots_;
    Ox::Ptr<iRemoteProjectSpace> const behind_;
};

/// The names that a server gives hold no credentials, so what they are compared with mustn't.
std::vector<RemoteRoot> withoutCredentials(std::vector<RemoteRoot> roots) {
    for (RemoteRoot& root : roots) {
        for (Name* const name : {&root.path, &root.localPath, &root.otherPath}) {
            auto const url = HttpUrl::parse(*name);
            if (url && !url->credentials.empty()) {
                *name = fromUTF8(url->text.c_str());
            }
        }
    }
    return roots;
}

}  // namespace

Name ProjectSpaceOpener::urlOf(ProjectSpaceRecord const& space) {
    auto const found = std::find_if(space.roots.begin(), space.roots.end(),
                                    [](RemoteRoot const& root) { return isHttpName(root.path); });
    return found == space.roots.end() ? Name() : found->path;
}

/// A space is made once: it keeps what its server has answered.
Ox::Ptr<iRemoteProjectSpace> ProjectSpaceOpener::operator()(ProjectSpaceRecord const& space) const {
    Name const url = urlOf(space);
    Ox::Ptr<iRemoteProjectSpace> behind;
    if (!url.empty()) {
        behind = spaces_->getResourceForRemoteProjectSpace(space.name);
        if (!behind && spaces_->add(space.name, url)) {
            behind = spaces_->getResourceForRemoteProjectSpace(space.name);
        }
    }
    return Ox::makePtr<SpaceOfProject>(withoutCredentials(space.roots), behind);
}

}  // namespace cli
