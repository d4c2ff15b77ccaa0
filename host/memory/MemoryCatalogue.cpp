#include "host/memory/MemoryCatalogue.h"

#include <atomic>
#include <optional>
#include <utility>

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

}  // namespace

/// What the cookies have.
///
/// Threads  Any.
class MemoryCatalogue::Media final : public iMediaKeeper {
public:
    using Found = std::pair<Cookie, CookieMedia>;

    [[nodiscard]] bool change(Cookie const& cookie, Change const& change, CookieMedia& now) override {
        this->change(cookie, [&](CookieMedia& media) {
            static_cast<void>(change(media));
            now = media;
        });
        return true;
    }

    template <class Steps>
    void change(Cookie const& cookie, Steps const& steps) {
        std::lock_guard const scope(lock_);
        auto const entry = entries_.try_emplace(cookie).first;
        steps(entry->second);
        if (entry->second.isEmpty()) {
            entries_.erase(entry);
        }
    }

    /// For the clip as a whole the first entry of the cookie's type is meant.
    [[nodiscard]] std::optional<Found> find(Cookie const& cookie) {
        std::lock_guard const scope(lock_);
        auto found = entries_.find(cookie);
        if (found == entries_.end() && cookie.channel() == Cookie::wholeClip) {
            found = entries_.lower_bound(convertCookie(cookie, cookie.type(), 0));
            if (found != entries_.end() && !isSameTypeOfClip(found->first, cookie)) {
                found = entries_.end();
            }
        }
        return found == entries_.end() ? std::nullopt : std::optional<Found>(*found);
    }

    [[nodiscard]] std::vector<Found> findClip(Ox::UUID const& clip) {
        std::lock_guard const scope(lock_);
        std::vector<Found> found;
        for (auto entry = entries_.lower_bound(Cookie(clip, '\0', 0));
             entry != entries_.end() && entry->first.uuid() == clip; ++entry) {
            found.emplace_back(*entry);
        }
        return found;
    }

private:
    std::mutex lock_;
    std::map<Cookie, CookieMedia> entries_;
};

MemoryCatalogue::MemoryCatalogue() : media_(Ox::makePtr<Media>()) {}
MemoryCatalogue::~MemoryCatalogue() = default;

/// The name is made without a lock: it may ask the file manager.
bool MemoryCatalogue::findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                        DecodeFormat const& format) {
    auto const found = media_->find(cookie);
    MediaFileInfo const* const file = found ? found->second.ofLevel(format.level) : nullptr;
    if (file != nullptr) {
        filename = file->getPhysicalFilename();
    }
    return file != nullptr;
}

Ox::Ptr<FsysDirectoryEntry> MemoryCatalogue::findEntryForCookie(Cookie const& cookie) {
    auto const found = media_->find(cookie);
    return found ? Ox::makePtr<FsysDirectoryEntry>(found->first, found->second, media_)
                 : Ox::Ptr<FsysDirectoryEntry>();
}

std::vector<Ox::Ptr<FsysDirectoryEntry>> MemoryCatalogue::getClipMediaFiles(Cookie const& clip) {
    std::vector<Ox::Ptr<FsysDirectoryEntry>> entries;
    for (auto const& [cookie, media] : media_->findClip(clip.uuid())) {
        entries.push_back(Ox::makePtr<FsysDirectoryEntry>(cookie, media, media_));
    }
    return entries;
}

void MemoryCatalogue::addFile(Cookie const& cookie, MediaFileInfo const& file, bool) {
    media_->change(cookie, [&](CookieMedia& media) { media.add(file); });
}

/// The files are deleted without a lock, and what is gone already is no failure.
OxResult MemoryCatalogue::removeFile(Cookie const& cookie, eMediaTypes types, bool) {
    std::vector<MediaFileInfo> removed;
    media_->change(cookie, [&](CookieMedia& media) { removed = media.take(types); });
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
    media_->change(cookie, [&](CookieMedia& media) {
        static_cast<void>(media.take(level == levelProxy ? mediaProxy : mediaOriginal));
    });
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
