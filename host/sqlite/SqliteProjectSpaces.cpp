#include "host/sqlite/SqliteProjectSpaces.h"

#include <algorithm>
#include <optional>

#include "host/sqlite/StatementRun.h"

namespace {

using Name = LightweightString<wchar_t>;

/// A remote space of which nothing is known but its roots.
class RootsAlone final : public iRemoteProjectSpace {
public:
    explicit RootsAlone(std::vector<RemoteRoot> roots) : roots_(std::move(roots)) {}
    [[nodiscard]] std::vector<RemoteRoot> getRoots() override { return roots_; }
    [[nodiscard]] std::vector<Name> getOriginalFiles(Cookie const&, int) override { return {}; }
    [[nodiscard]] bool hasProxy(Cookie const&) override { return false; }

private:
    std::vector<RemoteRoot> const roots_;
};

}  // namespace

int SqliteProjectSpaces::getCurrentProjectSpaceType() {
    std::lock_guard const scope(file_->lookLock);
    SqliteStatement current = file_->prepareLook("SELECT type FROM spaces WHERE is_current = 1");
    bool const isAny = current && current.step() == SQLITE_ROW;
    return isAny ? static_cast<int>(current.number(0)) : localSpace;
}

Ox::Ptr<iRemoteProjectSpace> SqliteProjectSpaces::getResourceForRemoteProjectSpace(Name const& name) {
    std::vector<ProjectSpaceRecord> const spaces = getAll();
    auto const found = std::find_if(spaces.begin(), spaces.end(), [&](ProjectSpaceRecord const& space) {
        return name.empty() ? space.isCurrent : space.name == name;
    });
    if (found == spaces.end() || found->type != remoteSpace) {
        return {};
    }
    Opener opener;
    {
        std::lock_guard const scope(openerLock_);
        opener = opener_;
    }
    return opener ? opener(*found) : Ox::makePtr<RootsAlone>(found->roots);
}

void SqliteProjectSpaces::setOpener(Opener opener) {
    std::lock_guard const scope(openerLock_);
    opener_ = std::move(opener);
}

std::vector<ProjectSpaceRecord> SqliteProjectSpaces::getAll() {
    std::vector<ProjectSpaceRecord> spaces;
    file_->look([&] {
        SqliteStatement all = file_->prepareLook("SELECT name, type, is_current FROM spaces ORDER BY name");
        for (StatementRun rows(all); rows.nextRow();) {
            spaces.push_back({rows.wideText(0), static_cast<int>(rows.number(1)), {}, rows.number(2) != 0});
        }
        for (ProjectSpaceRecord& space : spaces) {
            space.roots = readRoots(space.name);
        }
    });
    return spaces;
}

std::vector<RemoteRoot> SqliteProjectSpaces::readRoots(Name const& space) {
    std::vector<RemoteRoot> roots;
    SqliteStatement all = file_->prepareLook(
        "SELECT path, local_path, other_path FROM space_roots WHERE space = ?1 ORDER BY position");
    StatementRun rows(all);
    rows.with(space);
    while (rows.nextRow()) {
        roots.push_back({rows.wideText(0), rows.wideText(1), rows.wideText(2)});
    }
    return roots;
}

bool SqliteProjectSpaces::set(ProjectSpaceRecord const& space) {
    std::lock_guard const scope(file_->lock);
    return file_->change("the project space \"" + toUTF8(space.name).str() + "\"", [&] {
        SqliteStatement put = file_->prepare(
            "INSERT INTO spaces (name, type, is_current) VALUES (?1, ?2, 0)"
            " ON CONFLICT (name) DO UPDATE SET type = excluded.type");
        return put && StatementRun(put).with(space.name).with(std::int64_t{space.type}).isDone() &&
               removeRoots(space.name) && writeRoots(space);
    });
}

bool SqliteProjectSpaces::removeRoots(Name const& space) {
    SqliteStatement remove = file_->prepare("DELETE FROM space_roots WHERE space = ?1");
    return remove && StatementRun(remove).with(space).isDone();
}

bool SqliteProjectSpaces::writeRoots(ProjectSpaceRecord const& space) {
    SqliteStatement put = file_->prepare(
        "INSERT INTO space_roots (space, position, path, local_path, other_path)"
        " VALUES (?1, ?2, ?3, ?4, ?5)");
    std::int64_t position = 0;
    return put && std::all_of(space.roots.begin(), space.roots.end(), [&](RemoteRoot const& root) {
               return StatementRun(put)
                   .with(space.name)
                   .with(position++)
                   .with(root.path)
                   .with(root.localPath)
                   .with(root.otherPath)
                   .isDone();
           });
}

bool SqliteProjectSpaces::remove(Name const& name) {
    std::lock_guard const scope(file_->lock);
    return file_->change("the project space \"" + toUTF8(name).str() + "\"", [&] {
        SqliteStatement remove = file_->prepare("DELETE FROM spaces WHERE name = ?1");
        return remove && StatementRun(remove).with(name).isDone() && removeRoots(name);
    });
}

bool SqliteProjectSpaces::isThere(Name const& name) {
    SqliteStatement count = file_->prepare("SELECT 1 FROM spaces WHERE name = ?1");
    return count && StatementRun(count).with(name).nextRow();
}

bool SqliteProjectSpaces::setCurrent(Name const& name) {
    bool isKnown = false;
    std::lock_guard const scope(file_->lock);
    bool const isDone = file_->change("the current project space", [&] {
        isKnown = name.empty() || isThere(name);
        SqliteStatement mark = file_->prepare("UPDATE spaces SET is_current = (name = ?1)");
        return !isKnown || (mark && StatementRun(mark).with(name).isDone());
    });
    return isDone && isKnown;
}
