#include "tools/playfile/ImportWalk.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "tools/playfile/InputFile.h"
#include "tools/playfile/Interrupt.h"

namespace cli {
namespace {

bool anyName(std::string const&) {
    return true;
}

std::string childOf(std::string const& folder, std::string const& name) {
    return (folder == "/" ? "" : folder) + '/' + name;
}

}  // namespace

void ImportWalk::run(std::vector<std::string> const& paths) {
    std::map<std::string, std::set<std::string>> named;
    for (std::string const& path : paths) {
        addArgument(path, named);
    }
    for (auto const& [folder, names] : named) {
        visitNamed(folder, names);
    }
}

void ImportWalk::addArgument(std::string const& path, std::map<std::string, std::set<std::string>>& named) {
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0) {
        int const error = errno;
        if (error == ENOENT || error == ENOTDIR || error == ELOOP) {
            problems_.vanished(path);
        } else {
            problems_.unreadable(path, error);
        }
        return;
    }
    std::error_code error;
    if (S_ISDIR(facts.st_mode)) {
        walk(std::filesystem::canonical(path, error).string());
        return;
    }
    std::filesystem::path const file = InputFile(path).path();
    named[file.parent_path().string()].insert(file.filename().string());
}

void ImportWalk::walk(std::string const& folder) {
    std::vector<Pending> pending{{folder, {}}};
    while (!pending.empty()) {
        Pending const next = std::move(pending.back());
        pending.pop_back();
        if (isNew(next.path)) {
            checkForInterrupt();
            visit(next, pending);
        }
    }
}

bool ImportWalk::isNew(std::string const& folder) {
    struct stat facts {};
    if (folder.empty() || ::stat(folder.c_str(), &facts) != 0) {
        problems_.vanished(folder);
        return false;
    }
    return visited_.emplace(facts.st_dev, facts.st_ino).second;
}

/// Folders are put down in backward order, so that they are visited in the order of their names.
void ImportWalk::visit(Pending const& folder, std::vector<Pending>& pending) {
    FolderListing listing = listFolder(folder.path, problems_, anyName);
    passedOver_ += listing.passedOver;
    std::erase_if(listing.files,
                  [&](FoundFile const& file) { return folder.proxies.contains(file.realPath); });
    std::set<std::string> proxies;
    for (MediaGroup const& group : groupMedia(listing.files, proxiesIn(folder.path, listing.folders))) {
        for (FoundFile const& proxy : group.proxies) {
            proxies.insert(proxy.realPath);
        }
        take_(group);
    }
    if (!isRecursive_) {
        passedOver_ += listing.folders.size();
        return;
    }
    for (auto name = listing.folders.rbegin(); name != listing.folders.rend(); ++name) {
        std::error_code error;
        std::filesystem::path const path = std::filesystem::canonical(childOf(folder.path, *name), error);
        if (error) {
            problems_.vanished(childOf(folder.path, *name));
        } else {
            pending.push_back({path.string(), isProxyFolder(*name) ? proxies : std::set<std::string>()});
        }
    }
}

void ImportWalk::visitNamed(std::string const& folder, std::set<std::string> const& names) {
    FolderListing const listing = listFolder(folder, problems_, [&](std::string const& name) {
        return names.contains(name) || isCalledProxy(name) || isProxyFolder(name);
    });
    std::vector<FoundFile> files;
    std::vector<FoundFile> proxies = proxiesIn(folder, listing.folders);
    for (FoundFile const& file : listing.files) {
        (names.contains(file.name) ? files : proxies).push_back(file);
    }
    for (std::string const& name : names) {
        passedOver_ += isImportable(name) ? 0 : 1;
    }
    for (MediaGroup const& group : groupMedia(files, proxies)) {
        take_(group);
    }
}

/// What can't be looked at there is told when the folder is visited, if it is.
std::vector<FoundFile> ImportWalk::proxiesIn(std::string const& folder,
                                             std::vector<std::string> const& folders) {
    std::vector<FoundFile> proxies;
    ImportProblems untold(false);
    for (std::string const& name : folders) {
        if (isProxyFolder(name)) {
            std::error_code error;
            std::string const path = std::filesystem::canonical(childOf(folder, name), error).string();
            FolderListing const listing = error ? FolderListing() : listFolder(path, untold, anyName);
            proxies.insert(proxies.end(), listing.files.begin(), listing.files.end());
        }
    }
    return proxies;
}

}  // namespace cli
