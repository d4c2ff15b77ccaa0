#include "host/memory/MemoryCatalogue.h"

#include <atomic>

#include "ole/os/Immortal.h"
#include "toolkit/catalogue/OwnFiles.h"

namespace {

constinit std::atomic<SystemCache*> installedCatalogue{nullptr};
constinit std::atomic<MaterialInfo::iStore*> installedStore{nullptr};

MaterialInfo::iStore& storeInForce() {
    MaterialInfo::iStore* const installed = installedStore.load(std::memory_order_acquire);
    return installed != nullptr ? *installed : MemoryCatalogue::instance();
}

bool isSameTypeOfClip(Cookie const& a, Cookie const& b) {
    return a.uuid() == b.uuid() && a.type() == b.type();
}

template <class Files>
Ox::Ptr<FsysDirectoryEntry> entryOf(Cookie const& cookie, Files const& files) {
    return Ox::makePtr<FsysDirectoryEntry>(cookie, files.original.value_or(MediaFileInfo()), files.proxies);
}

}  // namespace

/// For the clip as a whole the first entry of the cookie's type is meant.
MemoryCatalogue::Entries::const_iterator MemoryCatalogue::find(Cookie const& cookie) const {
    auto found = entries_.find(cookie);
    if (found == entries_.end() && cookie.channel() == Cookie::wholeClip) {
        found = entries_.lower_bound(convertCookie(cookie, cookie.type(), 0));
        if (found != entries_.end() && !isSameTypeOfClip(found->first, cookie)) {
            found = entries_.end();
        }
    }
    return found;
}

/// The name is made without the lock: it may ask the file manager.
bool MemoryCatalogue::findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                        DecodeFormat const& format) {
    std::optional<MediaFileInfo> file;
    {
        std::lock_guard const scope(lock_);
        auto const found = find(cookie);
        if (found == entries_.end()) {
            return false;
        }
        Files const& files = found->second;
        if (format.level == levelProxy) {
            file = files.proxies.empty() ? std::nullopt : std::optional(files.proxies.front());
        } else {
            file = files.original;
        }
    }
    if (file) {
        filename = file->getPhysicalFilename();
    }
    return file.has_value();
}

Ox::Ptr<FsysDirectoryEntry> MemoryCatalogue::findEntryForCookie(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    auto const found = find(cookie);
    return found == entries_.end() ? Ox::Ptr<FsysDirectoryEntry>() : entryOf(found->first, found->second);
}

std::vector<Ox::Ptr<FsysDirectoryEntry>> MemoryCatalogue::getClipMediaFiles(Cookie const& clip) {
    std::lock_guard const scope(lock_);
    std::vector<Ox::Ptr<FsysDirectoryEntry>> entries;
    for (auto const& [cookie, files] : entries_) {
        if (cookie.uuid() == clip.uuid()) {
            entries.push_back(entryOf(cookie, files));
        }
    }
    return entries;
}

void MemoryCatalogue::addFile(Cookie const& cookie, MediaFileInfo const& file, bool) {
    std::lock_guard const scope(lock_);
    Files& files = entries_[cookie];
    if (file.isProxy()) {
        files.proxies.push_back(file);
    } else {
        files.original = file;
    }
}

/// The files are deleted without the lock, and what is gone already is no failure.
OxResult MemoryCatalogue::removeFile(Cookie const& cookie, eMediaTypes types, bool) {
    std::vector<MediaFileInfo> removed;
    {
        std::lock_guard const scope(lock_);
        auto const found = entries_.find(cookie);
        if (found == entries_.end()) {
            return oxSuccess;
        }
        Files& files = found->second;
        if ((types & mediaOriginal) != 0 && files.original) {
            removed.push_back(*files.original);
            files.original.reset();
        }
        if ((types & mediaProxy) != 0) {
            removed.insert(removed.end(), files.proxies.begin(), files.proxies.end());
            files.proxies.clear();
        }
        if (!files.original && files.proxies.empty()) {
            entries_.erase(found);
        }
    }
    return deleteOwnFiles(removed);
}

std::int32_t MemoryCatalogue::getStartOffset(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    auto const found = startOffsets_.find(cookie);
    if (found != startOffsets_.end()) {
        return found->second;
    }
    auto const header = headers_.find(cookie);
    return header == headers_.end() ? 0 : header->second.start_offset;
}

bool MemoryCatalogue::writeHeader(Cookie const& cookie, SAV_HEADER const& header) {
    std::lock_guard const scope(lock_);
    headers_[cookie] = header;
    return true;
}

bool MemoryCatalogue::readHeader(Cookie const& cookie, SAV_HEADER& header) {
    std::lock_guard const scope(lock_);
    auto const found = headers_.find(cookie);
    if (found == headers_.end()) {
        return false;
    }
    header = found->second;
    return true;
}

void MemoryCatalogue::add(Cookie const& cookie, LightweightString<wchar_t> const& filename,
                          eProxyLevel level) {
    MediaFileInfo file(MaterialFilename(DriveId::none, filename), 0);
    file.isProxyFile = level == levelProxy;
    remove(cookie, level);
    addFile(cookie, file);
}

void MemoryCatalogue::remove(Cookie const& cookie, eProxyLevel level) {
    std::lock_guard const scope(lock_);
    auto const found = entries_.find(cookie);
    if (found == entries_.end()) {
        return;
    }
    if (level == levelProxy) {
        found->second.proxies.clear();
    } else {
        found->second.original.reset();
    }
    if (!found->second.original && found->second.proxies.empty()) {
        entries_.erase(found);
    }
}

void MemoryCatalogue::setStartOffset(Cookie const& cookie, std::int32_t samples) {
    std::lock_guard const scope(lock_);
    startOffsets_[cookie] = samples;
}

MemoryCatalogue& MemoryCatalogue::instance() {
    return immortal<MemoryCatalogue>();
}

SystemCache* SystemCache::instance() noexcept {
    SystemCache* const installed = installedCatalogue.load(std::memory_order_acquire);
    return installed ? installed : &MemoryCatalogue::instance();
}

SystemCache* SystemCache::install(SystemCache* catalogue) noexcept {
    return installedCatalogue.exchange(catalogue);
}

std::int32_t MaterialInfo::get_start_offset(Cookie const& cookie) {
    return storeInForce().getStartOffset(cookie);
}

bool MaterialInfo::can_write_header(LightweightString<wchar_t> const& material) {
    return storeInForce().canWriteHeader(material);
}

int MaterialInfo::write_header(Cookie const& cookie, SAV_HEADER const& header) {
    return storeInForce().writeHeader(cookie, header) ? 0 : failed;
}

bool MaterialInfo::read_header(Cookie const& cookie, SAV_HEADER& header) {
    return storeInForce().readHeader(cookie, header);
}

MaterialInfo::iStore* MaterialInfo::install(iStore* store) noexcept {
    return installedStore.exchange(store);
}
