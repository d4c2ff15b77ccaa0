#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "host/sqlite/ProjectFile.h"
#include "toolkit/catalogue/ProjectSpaces.h"

/// What a project knows of one of its spaces.
struct ProjectSpaceRecord {
    LightweightString<wchar_t> name;
    /// A `ProjectSpacesManager::eType`.
    int type = ProjectSpacesManager::localSpace;
    /// Of a remote space.
    std::vector<RemoteRoot> roots;
    /// True for the one in which work goes on.
    bool isCurrent = false;
};

/// The project spaces of a project on disk. Where none is current, work goes on in a local one.
///
/// Threads  Any.
/// Errors   What can't be written is logged, and answered with false.
class SqliteProjectSpaces final : public ProjectSpacesManager {
public:
    /// Makes what is behind a remote space; called without a lock.
    using Opener = std::function<Ox::Ptr<iRemoteProjectSpace>(ProjectSpaceRecord const&)>;

    explicit SqliteProjectSpaces(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {}

    [[nodiscard]] int getCurrentProjectSpaceType() override;
    /// What the opener makes. Without one a remote space has its roots, and no files that anybody could be asked for.
    [[nodiscard]] Ox::Ptr<iRemoteProjectSpace> getResourceForRemoteProjectSpace(
        LightweightString<wchar_t> const& name) override;

    /// Says who makes what is behind remote spaces; empty for nobody.
    void setOpener(Opener opener);
    /// Adds a space, or puts another of its name in its place; a current one stays so.
    bool set(ProjectSpaceRecord const& space);
    bool remove(LightweightString<wchar_t> const& name);
    /// Says in which space work goes on, empty for none. False also if there is no such space.
    bool setCurrent(LightweightString<wchar_t> const& name);
    /// All spaces in the order of their names.
    [[nodiscard]] std::vector<ProjectSpaceRecord> getAll();

private:
    [[nodiscard]] std::vector<RemoteRoot> readRoots(LightweightString<wchar_t> const& space);
    [[nodiscard]] bool removeRoots(LightweightString<wchar_t> const& space);
    [[nodiscard]] bool writeRoots(ProjectSpaceRecord const& space);
    [[nodiscard]] bool isThere(LightweightString<wchar_t> const& name);

    std::shared_ptr<ProjectFile> const file_;
    std::mutex openerLock_;
    Opener opener_;
};
