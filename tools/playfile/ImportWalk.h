#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/playfile/MediaGroups.h"

namespace cli {

/// Goes through the files and folders of a command line and finds the clips in them.
///
/// A folder is visited once, however many links lead to it. In memory is one folder at a time, and which ones were
/// visited.
///
/// Threads  One at a time.
class ImportWalk {
public:
    using Take = std::function<void(MediaGroup const&)>;

    /// @param isRecursive  true visits the folders in folders as well
    /// @param take         is given each clip that is found; what it throws ends the walk
    ImportWalk(bool isRecursive, ImportProblems& problems, Take take)
        : isRecursive_(isRecursive), problems_(problems), take_(std::move(take)) {}

    /// Of files only those that are named become clips, with their proxies, wherever they are.
    void run(std::vector<std::string> const& paths);

    /// What is no media, and folders that weren't visited.
    [[nodiscard]] std::uint64_t passedOver() const { return passedOver_; }

private:
    /// A folder that is still to be visited, and what of it serves as proxies of the folder above.
    struct Pending {
        std::string path;
        std::set<std::string> proxies;
    };

    void addArgument(std::string const& path, std::map<std::string, std::set<std::string>>& named);
    void walk(std::string const& folder);
    void visit(Pending const& folder, std::vector<Pending>& pending);
    void visitNamed(std::string const& folder, std::set<std::string> const& names);
    [[nodiscard]] bool isNew(std::string const& folder);
    [[nodiscard]] std::vector<FoundFile> proxiesIn(std::string const& folder,
                                                   std::vector<std::string> const& folders);

    bool const isRecursive_;
    ImportProblems& problems_;
    Take const take_;
    std::set<std::pair<dev_t, ino_t>> visited_;
    std::uint64_t passedOver_ = 0;
};

}  // namespace cli
