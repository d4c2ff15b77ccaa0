#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/sqlite/SqliteProject.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/FakeProjectSpaces.h"
#include "tests/fakes/TransferFiles.h"

namespace test {

/// A project on disk, two drives M and N, a folder of things that lie elsewhere, one for what is taken out, and a store;
/// and the transfers that go on between them. All of it lies below one folder, so that another process can go on where
/// one was killed. What it makes of files tells of each whether it is whole.
///
/// Scenarios: single, proxy, chunked, sequence, remote, shared, shared-remote, external, relocate-copy, relocate-move,
/// sound, relocate-move-sound. The sound that the last of these moves was localised before.
///
/// Ownership  In force while it lives.
/// Threads    One at a time.
class TransferWorld {
public:
    using Files = std::map<std::string, std::string>;
    using Lines = CallLog::Lines;

    /// How transfers have ended.
    struct End {
        Files disk;
        Files catalogue;

        bool operator==(End const&) const = default;
    };
    /// How as many undisturbed runs of a scenario end.
    [[nodiscard]] static End undisturbed(std::string const& scenario, int runs);

    /// @param folder  ends in a separator
    TransferWorld(std::string folder, std::string scenario);
    ~TransferWorld();
    TransferWorld(TransferWorld const&) = delete;
    TransferWorld& operator=(TransferWorld const&) = delete;

    [[nodiscard]] static std::vector<std::string> const& scenarios();

    /// Makes the files and the clips of the scenario, once.
    void prepare();
    /// Lets the transfer run to its end.
    void run();

    [[nodiscard]] TransferFiles& files() { return files_; }
    /// Errors that the transfers' logs told since the beginning.
    [[nodiscard]] Lines errors() const { return calls_->with("log 4"); }

    /// All files below the drives, the places elsewhere and the store, with their contents; link files with their
    /// target.
    [[nodiscard]] Files disk() const;
    /// What the catalogue says of each clip, names from the folder on.
    [[nodiscard]] Files catalogue() const;
    /// Both of these, without what lies under temporary names.
    [[nodiscard]] End end() const;
    [[nodiscard]] bool isProjectWhole() const;

    // What is wrong with the world, in words; empty if nothing is.
    [[nodiscard]] std::string fault() const;
    /// Half files under names that are reached through temporary ones.
    [[nodiscard]] std::string faultOfDisk() const;
    /// Sources that aren't what they were; what is relocated and whole nowhere; another clip's file that was taken.
    [[nodiscard]] std::string faultOfSources() const;
    /// Clips that are said to be here and aren't.
    [[nodiscard]] std::string faultOfCatalogue() const;

private:
    void enterStore();
    void addClip(unsigned number, Cookie const& cookie, CookieMedia const& media, bool isMoving = true);
    void writeMedia(std::string const& path);
    void localise();
    /// What lies below the drive that is relocated from, with its contents; nothing in other scenarios.
    [[nodiscard]] Files relocated() const;
    [[nodiscard]] MediaFileInfo linked(std::string const& path, std::string const& target) const;
    [[nodiscard]] MediaFileInfo own(std::string const& path) const;
    [[nodiscard]] bool isRelocation() const { return scenario_.rfind("relocate", 0) == 0; }

    std::string const folder_;
    std::string const scenario_;
    std::shared_ptr<CallLog> const calls_ = std::make_shared<CallLog>();
    std::unique_ptr<SqliteProject> project_;
    TransferFiles files_;
    FakeProjectSpaces spaces_;
};

}  // namespace test
