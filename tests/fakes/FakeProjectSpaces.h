#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/fakes/CallLog.h"
#include "toolkit/catalogue/ProjectSpaces.h"

/// A remote project space that has what a test says.
class FakeRemoteSpace : public iRemoteProjectSpace {
public:
    std::vector<RemoteRoot> getRoots() override { return roots; }
    std::vector<LightweightString<wchar_t>> getOriginalFiles(Cookie const& cookie, int) override {
        return originals[cookie];
    }
    bool hasProxy(Cookie const& cookie) override { return withProxy.count(cookie) != 0; }

    std::vector<RemoteRoot> roots;
    std::map<Cookie, std::vector<LightweightString<wchar_t>>> originals;
    std::set<Cookie> withProxy;
};

/// The project spaces of a test; in force while it lives.
class FakeProjectSpaces : public ProjectSpacesManager {
public:
    FakeProjectSpaces() : old_(ProjectSpacesManager::install(this)) {}
    ~FakeProjectSpaces() override { ProjectSpacesManager::install(old_); }
    FakeProjectSpaces(FakeProjectSpaces const&) = delete;
    FakeProjectSpaces& operator=(FakeProjectSpaces const&) = delete;

    int getCurrentProjectSpaceType() override { return type; }
    Ox::Ptr<iRemoteProjectSpace> getResourceForRemoteProjectSpace(
        LightweightString<wchar_t> const& name) override {
        askedForCurrent = name.empty();
        return space;
    }

    /// Makes a space with roots, and works in it.
    FakeRemoteSpace& enterRemoteSpace(std::vector<RemoteRoot> const& roots) {
        auto made = Ox::makePtr<FakeRemoteSpace>();
        made->roots = roots;
        space = made;
        type = remoteSpace;
        return *made;
    }

    int type = localSpace;
    Ox::Ptr<iRemoteProjectSpace> space;
    bool askedForCurrent = false;

private:
    ProjectSpacesManager* const old_;
};
