#include "toolkit/catalogue/MaterialLink.h"

#include <sys/stat.h>

#include <string>

#include "ole/os/OS.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/WriteProblem.h"

namespace {

using Name = LightweightString<wchar_t>;

constexpr std::string_view mark = "playfile link 1\n";

/// A name in the folder of `link` that nobody can know before.
Name partialNameFor(Name const& link) {
    Cookie const unique(Ox::UUID::generate(), 'E', Cookie::wholeClip);
    return getPath(link) + unique.asWString() + Name(L".partial");
}

/// A bare name lies in the process's current folder, which is there.
bool makeFolderOf(Name const& link) {
    Name const folder = getPath(link);
    return folder.empty() || OS()->getFileManager().createDirectory(folder);
}

bool isSymbolicLink(Name const& name) {
    struct stat status {};
    return lstat(toUTF8(name).c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool writeText(Name const& name, std::string const& text) {
    Ox::Ptr<iFile> const file =
        OS()->getFileManager().openFile(name, iFile::writeAccess, iFile::createAlways, iFile::exclusive);
    auto const byteCount = static_cast<std::uint32_t>(text.size());
    return file && file->write(text.data(), byteCount) == byteCount;
}

/// What lies at a link's place and may go for another link.
bool isReplaceable(Name const& name) {
    return isSymbolicLink(name) || !OS()->getFileManager().fileExists(name) ||
           !MaterialLink::readLink(name).empty();
}

bool refuse(Name const& link, char const* reason) {
    LogBoth("The link \"%ls\" can't be written: %s\n", link.c_str(), reason);
    return false;
}

}  // namespace

bool MaterialLink::createLink(Name const& link, Name const& target, bool replaceExisting) {
    std::string const path = toUTF8(target).str();
    if (link.empty() || path.empty() || path.size() > longestTarget) {
        return refuse(link, "it has no place, or no target that can be named");
    }
    if (replaceExisting && !isReplaceable(link)) {
        return refuse(link, "another file has that name; move it away");
    }
    iFileManager& files = OS()->getFileManager();
    Name const partial = partialNameFor(link);
    if (makeFolderOf(link) && writeText(partial, std::string(mark) + path) &&
        files.renameFile(partial, link, replaceExisting)) {
        return true;
    }
    OxResult const error = lastWriteError();
    files.deleteFile(partial);
    return refuse(link, writeProblemText(error).c_str());
}

Name MaterialLink::readLink(Name const& link) {
    if (link.empty() || isSymbolicLink(link)) {
        return {};
    }
    Ox::Ptr<iFile> const file =
        OS()->getFileManager().openFile(link, iFile::readAccess, iFile::existingOnly, iFile::shared);
    std::string begin(mark.size(), '\0');
    auto const markBytes = static_cast<std::uint32_t>(mark.size());
    if (!file || file->read(begin.data(), markBytes) != markBytes || begin != mark) {
        return {};
    }
    std::string path(longestTarget + 1, '\0');
    std::uint32_t const byteCount = file->read(path.data(), static_cast<std::uint32_t>(path.size()));
    return byteCount > longestTarget ? Name() : fromUTF8(path.data(), static_cast<int>(byteCount));
}
