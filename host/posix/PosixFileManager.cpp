#include "host/posix/PosixFileManager.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdio>
#include <cwctype>

#include "host/posix/FileDescriptor.h"
#include "host/posix/PosixFile.h"

namespace {

constexpr mode_t newFileMode = 0666;
constexpr mode_t newFolderMode = 0777;
constexpr wchar_t replacementCharacter = 0xFFFD;

bool statOf(LightweightString<wchar_t> const& path, struct stat& info) {
    return stat(toUTF8(path).c_str(), &info) == 0;
}

int openFlags(std::uint32_t access, std::uint32_t behaviour) {
    bool const isWriting = (access & iFile::writeAccess) != 0;
    bool const isReading = (access & iFile::readAccess) != 0;
    int flags = O_CLOEXEC | (isWriting ? (isReading ? O_RDWR : O_WRONLY) : O_RDONLY);
    if (behaviour == iFile::createAlways) {
        flags |= O_CREAT | O_TRUNC;
    } else if (behaviour == iFile::openOrCreate) {
        flags |= O_CREAT;
    }
    return flags;
}

bool isFolder(LightweightString<char> const& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

/// Renames without replacing; for file systems that can't do it at once, by a link and its removal.
bool renameExclusively(char const* from, char const* to) {
    if (syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    return link(from, to) == 0 && unlink(from) == 0;
}

}  // namespace

bool PosixFileManager::renameFile(LightweightString<wchar_t> const& from,
                                  LightweightString<wchar_t> const& to, bool replaceExisting) {
    LightweightString<char> const fromPath = toUTF8(from);
    LightweightString<char> const toPath = toUTF8(to);
    return replaceExisting ? rename(fromPath.c_str(), toPath.c_str()) == 0
                           : renameExclusively(fromPath.c_str(), toPath.c_str());
}

bool PosixFileManager::deleteFile(LightweightString<wchar_t> const& path) {
    return unlink(toUTF8(path).c_str()) == 0;
}

bool PosixFileManager::fileExists(LightweightString<wchar_t> const& path) {
    struct stat info {};
    return statOf(path, info);
}

bool PosixFileManager::isRemote(LightweightString<wchar_t> const& path) {
    auto const text = path.view();
    std::size_t const colon = text.find(L"://");
    if (colon == std::wstring_view::npos || colon == 0 || !std::iswalpha(static_cast<wint_t>(text[0]))) {
        return false;
    }
    for (wchar_t const c : text.substr(0, colon)) {
        if (!std::iswalnum(static_cast<wint_t>(c)) && c != L'+' && c != L'-' && c != L'.') {
            return false;
        }
    }
    return true;
}

iFileManager::DirectoryItem PosixFileManager::getFileInfo(LightweightString<wchar_t> const& path) {
    DirectoryItem item;
    item.name = path;
    struct stat info {};
    if (statOf(path, info)) {
        item.attributes = info.st_mode;
        item.size = static_cast<std::uint64_t>(info.st_size);
        item.created = static_cast<std::uint64_t>(info.st_ctim.tv_sec);
        item.modified = static_cast<std::uint64_t>(info.st_mtim.tv_sec);
    }
    return item;
}

bool PosixFileManager::createDirectory(LightweightString<wchar_t> const& path) {
    LightweightString<char> const whole = toUTF8(path);
    std::string_view const text = whole.view();
    for (std::size_t end = text.find('/', 1); end != std::string_view::npos; end = text.find('/', end + 1)) {
        mkdir(LightweightString<char>(text.substr(0, end)).c_str(), newFolderMode);
    }
    return mkdir(whole.c_str(), newFolderMode) == 0 || isFolder(whole);
}

Ox::Ptr<iFile> PosixFileManager::openFile(LightweightString<wchar_t> const& name, std::uint32_t access,
                                          std::uint32_t behaviour, std::uint32_t, std::uint32_t) {
    int const descriptor = open(toUTF8(name).c_str(), openFlags(access, behaviour), newFileMode);
    return descriptor == -1 ? Ox::Ptr<iFile>() : Ox::makePtr<PosixFile>(descriptor);
}

std::uint64_t PosixFileManager::getFileSize(LightweightString<wchar_t> const& path) {
    struct stat info {};
    return statOf(path, info) ? static_cast<std::uint64_t>(info.st_size) : 0;
}

LightweightString<wchar_t> PosixFileManager::getMountedFilename(LightweightString<wchar_t> const& name) {
    return name;
}

LightweightString<wchar_t> PosixFileManager::getDisplayFilename(LightweightString<wchar_t> const& name) {
    LightweightString<wchar_t> shown(name.view());
    for (std::uint32_t i = 0; i < shown.length(); ++i) {
        wchar_t& c = shown.data()[i];
        bool const isControl = c < 0x20 || (c >= 0x7F && c < 0xA0);
        c = isControl ? replacementCharacter : c;
    }
    return shown;
}
