#include "host/posix/PosixFileManager.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>

#include "host/posix/FileCopy.h"
#include "host/posix/Folders.h"
#include "host/posix/PosixErrors.h"
#include "host/posix/PosixFile.h"
#include "host/posix/PosixVolume.h"
#include "host/posix/Rename.h"
#include "toolkit/services/Paths.h"

namespace {

constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
constexpr wchar_t replacement = 0xFFFD;
/// A letter alone before the colon is a drive of another system.
constexpr std::size_t leastSchemeLength = 2;

std::string systemPath(LightweightString<wchar_t> const& path) {
    return toUTF8(path).str();
}

/// Answers `isDone` and, if it is false, keeps the reason.
bool keepingError(bool isDone) {
    if (!isDone) {
        keepSystemError();
    }
    return isDone;
}

std::uint64_t nanoseconds(statx_timestamp const& time) {
    return static_cast<std::uint64_t>(time.tv_sec) * nanosecondsPerSecond + time.tv_nsec;
}

bool isLetter(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

bool isSchemeCharacter(wchar_t c) {
    return isLetter(c) || (c >= L'0' && c <= L'9') || c == L'+' || c == L'-' || c == L'.';
}

/// True for the control characters and for values that aren't characters.
bool isUnfitForDisplay(wchar_t character) {
    auto const code = static_cast<std::uint32_t>(character);
    bool const isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    return isControl || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF;
}

/// The names in a folder, without "." and ".."; the folder may end in a separator, and empty is the current one.
std::vector<std::string> namesIn(std::string const& folder) {
    std::vector<std::string> names;
    std::unique_ptr<DIR, int (*)(DIR*)> const open(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    if (!open) {
        keepSystemError();
        return names;
    }
    while (dirent const* const entry = readdir(open.get())) {
        std::string const name = static_cast<char const*>(entry->d_name);
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Whether a name is meant by the last component of a `findFiles` pattern.
bool isMeant(std::string const& name, std::string const& pattern) {
    bool const isOpen = pattern.size() > 2 && pattern.compare(pattern.size() - 2, 2, ".*") == 0;
    return isOpen ? name.size() >= pattern.size() &&
                        name.compare(0, pattern.size() - 1, pattern, 0, pattern.size() - 1) == 0
                  : name == pattern;
}

}  // namespace

iFileManager::eCopyRC PosixFileManager::copyFile(Name const& source, Name const& destination,
                                                 bool replaceExisting, CopyProgress progress, void* context) {
    return FileCopy(systemPath(source), systemPath(destination), progress, context).run(replaceExisting);
}

bool PosixFileManager::renameFile(Name const& from, Name const& to, bool replaceExisting) {
    std::string const oldPath = systemPath(from);
    std::string const newPath = systemPath(to);
    return keepingError(replaceExisting ? std::rename(oldPath.c_str(), newPath.c_str()) == 0
                                        : renameWithoutReplacing(oldPath, newPath));
}

bool PosixFileManager::deleteFile(Name const& path) {
    return keepingError(unlink(systemPath(path).c_str()) == 0);
}

bool PosixFileManager::fileExists(Name const& path) {
    struct stat status {};
    return keepingError(stat(systemPath(path).c_str(), &status) == 0);
}

bool PosixFileManager::isRemote(Name const& path) {
    std::wstring_view const text = path.view();
    std::size_t const schemeLength = text.find(L"://");
    if (schemeLength == std::wstring_view::npos || schemeLength < leastSchemeLength || !isLetter(text[0])) {
        return false;
    }
    for (wchar_t const character : text.substr(0, schemeLength)) {
        if (!isSchemeCharacter(character)) {
            return false;
        }
    }
    return true;
}

iFileManager::DirectoryItem PosixFileManager::getFileInfo(Name const& path) {
    DirectoryItem item;
    item.name = path;
    struct statx status {};
    if (!keepingError(
            statx(AT_FDCWD, systemPath(path).c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) == 0)) {
        return item;
    }
    item.attributes = status.stx_mode;
    item.size = S_ISDIR(status.stx_mode) ? 0 : status.stx_size;
    item.created = (status.stx_mask & STATX_BTIME) != 0 ? nanoseconds(status.stx_btime) : 0;
    item.modified = nanoseconds(status.stx_mtime);
    return item;
}

bool PosixFileManager::createDirectory(Name const& path) {
    return makeFolders(systemPath(path));
}

Ox::Ptr<iFile> PosixFileManager::openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t) {
    return PosixFile::open(systemPath(name).c_str(), access, behaviour, share);
}

Ox::Ptr<iVolume> PosixFileManager::getVolume(Name const& path) {
    return PosixVolume::find(systemPath(path));
}

std::uint64_t PosixFileManager::getFileSize(Name const& path) {
    return getFileInfo(path).size;
}

PosixFileManager::Name PosixFileManager::getDisplayFilename(Name const& name) {
    std::wstring text = name.str();
    for (wchar_t& character : text) {
        if (isUnfitForDisplay(character)) {
            character = replacement;
        }
    }
    return Name(text);
}

void PosixFileManager::findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files,
                                 bool folders) {
    Name const folder = getPath(pattern);
    std::string const wanted = systemPath(stripPath(pattern));
    for (std::string const& name : namesIn(systemPath(folder))) {
        if (!isMeant(name, wanted)) {
            continue;
        }
        Name const bareName = fromUTF8(name.c_str(), static_cast<int>(name.size()));
        DirectoryItem item = getFileInfo(folder + bareName);
        item.name = bareName;
        if (S_ISDIR(item.attributes) ? folders : files) {
            items.push_back(item);
        }
    }
}
