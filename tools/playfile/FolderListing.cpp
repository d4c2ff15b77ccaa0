#include "tools/playfile/FolderListing.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>

#include "tools/playfile/MediaKind.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

bool isText(std::string const& name) {
    return narrowName(fromUTF8(name.c_str(), static_cast<int>(name.size()))) == name;
}

struct Entry {
    std::string name;
    unsigned char type;
};

/// In the order of their names.
std::vector<Entry> entriesOf(std::string const& folder, ImportProblems& problems) {
    std::vector<Entry> entries;
    std::unique_ptr<DIR, int (*)(DIR*)> const open(::opendir(folder.c_str()), ::closedir);
    if (!open) {
        int const error = errno;
        if (error == ENOENT || error == ENOTDIR) {
            problems.vanished(folder);
        } else {
            problems.unreadable(folder, error);
        }
        return entries;
    }
    while (dirent const* const entry = ::readdir(open.get())) {
        std::string name = static_cast<char const*>(entry->d_name);
        if (name != "." && name != "..") {
            entries.push_back({std::move(name), entry->d_type});
        }
    }
    std::sort(entries.begin(), entries.end(), [](Entry const& a, Entry const& b) { return a.name < b.name; });
    return entries;
}

/// Where a link leads in the end; empty if nowhere.
std::string targetOf(std::string const& path) {
    std::error_code error;
    std::filesystem::path const target = std::filesystem::canonical(path, error);
    return error ? std::string() : target.string();
}

/// Sorts one entry of a folder into its listing.
class Sorter {
public:
    Sorter(std::string const& folder, FolderListing& listing, ImportProblems& problems)
        : folder_(folder), listing_(listing), problems_(problems) {}

    /// Whatever can't be media by its name isn't looked at.
    void add(Entry const& entry) {
        bool const mayBeFolder = entry.type == DT_DIR || entry.type == DT_LNK || entry.type == DT_UNKNOWN;
        if (!mayBeFolder && (entry.type != DT_REG || !isImportable(entry.name))) {
            ++listing_.passedOver;
            return;
        }
        std::string const path = (folder_ == "/" ? "" : folder_) + '/' + entry.name;
        if (!isText(entry.name)) {
            problems_.unnameable(path);
            return;
        }
        struct stat facts {};
        if (::stat(path.c_str(), &facts) != 0) {
            addUnreachable(entry, path, errno);
        } else if (S_ISDIR(facts.st_mode)) {
            listing_.folders.push_back(entry.name);
        } else if (S_ISREG(facts.st_mode) && isImportable(entry.name)) {
            addFile(entry, path, static_cast<std::uint64_t>(facts.st_size));
        } else {
            ++listing_.passedOver;
        }
    }

private:
    void addUnreachable(Entry const& entry, std::string const& path, int errorNumber) {
        bool const isGone = errorNumber == ENOENT || errorNumber == ENOTDIR || errorNumber == ELOOP;
        if (!isGone) {
            problems_.unreadable(path, errorNumber);
        } else if (isImportable(entry.name)) {
            problems_.vanished(path);
        } else {
            ++listing_.passedOver;
        }
    }
    void addFile(Entry const& entry, std::string const& path, std::uint64_t size) {
        FoundFile file{entry.name, path, entry.type == DT_REG ? path : targetOf(path), size};
        if (file.realPath.empty()) {
            problems_.vanished(path);
            return;
        }
        if (!isText(file.realPath)) {
            problems_.unnameable(file.realPath);
            return;
        }
        if (isImportable(file.realPath)) {
            file.path = file.realPath;
        }
        listing_.files.push_back(std::move(file));
    }

    std::string const& folder_;
    FolderListing& listing_;
    ImportProblems& problems_;
};

}  // namespace

void ImportProblems::tell(std::string const& problem) const {
    if (isTold_) {
        writeProblem(problem);
    }
}

void ImportProblems::vanished(std::string const& path) {
    ++vanished_;
    tell(inQuotes(path) + " has vanished, or leads nowhere; import it again once it is back");
}

void ImportProblems::unreadable(std::string const& path, int errorNumber) {
    ++others_;
    tell("cannot look at " + inQuotes(path) + ": " + systemErrorText(errorNumber) +
         "; check the rights to it");
}

void ImportProblems::unnameable(std::string const& path) {
    ++others_;
    tell(inQuotes(path) + " isn't a name in UTF-8; rename it");
}

void ImportProblems::notOpened(std::string const& path) {
    ++others_;
    tell("no reader opens " + inQuotes(path) +
         "; it is imported by its name alone: check that it is a whole media file");
}

void ImportProblems::notPlaced(std::string const& path, std::string const& reason) {
    ++others_;
    tell(inQuotes(path) + " was not imported: " + reason);
}

bool isImportable(std::string const& name) {
    return kindOfMedia(name) != eMediaKind::none;
}

FolderListing listFolder(std::string const& folder, ImportProblems& problems,
                         std::function<bool(std::string const&)> const& isWanted) {
    FolderListing listing;
    Sorter sorter(folder, listing, problems);
    for (Entry const& entry : entriesOf(folder, problems)) {
        if (isWanted(entry.name)) {
            sorter.add(entry);
        }
    }
    return listing;
}

}  // namespace cli
