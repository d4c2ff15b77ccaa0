#include "host/sidecar/HeaderFiles.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ole/os/OS.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"
#include "toolkit/services/WriteProblem.h"

namespace {

using Name = LightweightString<wchar_t>;

constexpr int decimal = 10;
constexpr int firstVersion = 1;
constexpr std::int32_t noTransferType = -1;

/// The file that the catalogue keeps for a cookie; empty if there is none.
Name materialOf(Cookie const& cookie) {
    Ox::Ptr<FsysDirectoryEntry> const entry = SystemCache::instance()->findEntryForCookie(cookie);
    return entry ? entry->getLinkFileName() : Name();
}

/// A name beside `name` that nobody else uses, in this process or another.
Name temporaryNameFor(Name const& name) {
    static std::atomic<unsigned> counter{0};
    std::string const end = "." + std::to_string(::getpid()) + "-" + std::to_string(++counter) + ".partial";
    return name + fromUTF8(end.c_str());
}

/// The text of a file that isn't longer than any header; empty for all others.
LightweightString<char> readText(Name const& name) {
    Ox::Ptr<iFile> const file =
        OS()->getFileManager().openFile(name, iFile::readAccess, iFile::existingOnly, iFile::shared);
    std::array<char, savHeaderTextBytes> text{};
    std::uint32_t const byteCount =
        file ? file->read(text.data(), static_cast<std::uint32_t>(text.size())) : 0;
    return byteCount < text.size() ? LightweightString<char>(text.data()) : LightweightString<char>();
}

/// Every text says what medium it is about.
bool isHeader(LightweightString<char> const& text) {
    return PlayHdrString_seek_value(text.c_str(), "medium") != nullptr;
}

/// A channel of no medium takes any header.
bool isAbout(SAV_HEADER const& header, CookieType type) {
    std::string const medium = header.medium;
    switch (type) {
        case 'V':
            return medium == "vision";
        case 'S':
            return medium == "sound";
        default:
            return true;
    }
}

bool writeText(Name const& name, char const* text, std::uint32_t byteCount) {
    Ox::Ptr<iFile> const file =
        OS()->getFileManager().openFile(name, iFile::writeAccess, iFile::createAlways, iFile::exclusive);
    return file && file->write(text, byteCount) == byteCount;
}

/// True if the file bears its name; nothing is left of one that doesn't.
bool writeWhole(Name const& name, char const* text, std::uint32_t byteCount) {
    iFileManager& files = OS()->getFileManager();
    Name const partial = temporaryNameFor(name);
    if (writeText(partial, text, byteCount) && files.renameFile(partial, name, true)) {
        return true;
    }
    OxResult const error = lastWriteError();
    files.deleteFile(partial);
    LogBoth("The header \"%ls\" can't be written: %s\n", name.c_str(), writeProblemText(error).c_str());
    return false;
}

}  // namespace

Name HeaderFiles::nameFor(Name const& material) {
    return stripExtension(material) + Name(L".sav");
}

SAV_HEADER HeaderFiles::parse(LightweightString<char> const& text) {
    std::string buffer = text.str();
    SAV_HEADER header;
    header.transfer_type = noTransferType;
    if (playhdr_get_version(buffer.data()) <= firstVersion) {
        parse_header_v1(&header, buffer.data());
    } else {
        parse_header_v2(&header, buffer.data());
    }
    if (char const* const value = PlayHdrString_seek_value(buffer.c_str(), "transfer_type")) {
        header.transfer_type = static_cast<std::int32_t>(std::strtol(value, nullptr, decimal));
    }
    if (char const* const value = PlayHdrString_seek_value(buffer.c_str(), "orig_fname")) {
        header.orig_fname = fromUTF8(std::string(value, std::strcspn(value, "\r\n")).c_str());
    }
    return header;
}

bool HeaderFiles::readFile(Name const& name, SAV_HEADER& header) {
    LightweightString<char> const text = readText(name);
    bool const isThere = isHeader(text);
    if (isThere) {
        header = parse(text);
    }
    return isThere;
}

bool HeaderFiles::readHeader(Cookie const& cookie, SAV_HEADER& header) {
    Name const material = materialOf(cookie);
    SAV_HEADER found;
    bool const isThere =
        !material.empty() && readFile(nameFor(material), found) && isAbout(found, cookie.type());
    if (isThere) {
        header = found;
    }
    return isThere;
}

bool HeaderFiles::canWriteHeader(Name const& material) {
    Name const name = nameFor(material);
    return !OS()->getFileManager().fileExists(name) || isHeader(readText(name));
}

bool HeaderFiles::writeHeader(Cookie const& cookie, SAV_HEADER const& header) {
    Name const material = materialOf(cookie);
    if (material.empty()) {
        LogBoth("The header of %s can't be written: the catalogue doesn't know its material\n",
                cookie.asString().c_str());
        return false;
    }
    Name const name = nameFor(material);
    if (!canWriteHeader(material)) {
        LogBoth("The header \"%ls\" can't be written: that file holds something else; move it away\n",
                name.c_str());
        return false;
    }
    SAV_HEADER copy = header;
    std::array<char, savHeaderTextBytes> text{};
    auto const byteCount = static_cast<std::uint32_t>(header_to_string(&copy, text.data()) - text.data());
    if (!writeWhole(name, text.data(), byteCount)) {
        return false;
    }
    std::lock_guard const scope(lock_);
    startOffsets_[cookie] = header.start_offset;
    return true;
}

/// The file is read without the lock; what was written meanwhile counts for more.
std::int32_t HeaderFiles::getStartOffset(Cookie const& cookie) {
    {
        std::lock_guard const scope(lock_);
        auto const found = startOffsets_.find(cookie);
        if (found != startOffsets_.end()) {
            return found->second;
        }
    }
    SAV_HEADER header;
    std::int32_t const offset = readHeader(cookie, header) ? header.start_offset : 0;
    std::lock_guard const scope(lock_);
    return startOffsets_.try_emplace(cookie, offset).first->second;
}
