#include "host/memory/MemoryCatalogue.h"

#include <atomic>

#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<SystemCache*> installedCatalogue{nullptr};
constinit std::atomic<MaterialInfo::iStore*> installedStore{nullptr};

bool isSameTypeOfClip(Cookie const& a, Cookie const& b) {
    return a.uuid() == b.uuid() && a.type() == b.type();
}

}  // namespace

/// For the clip as a whole, entries of its type begin at channel 0; the first of the level is meant.
bool MemoryCatalogue::findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                        DecodeFormat const& format) {
    std::lock_guard const scope(lock_);
    auto found = files_.find(Key{cookie, format.level});
    if (found == files_.end() && cookie.channel() == Cookie::wholeClip) {
        found = files_.lower_bound(Key{convertCookie(cookie, cookie.type(), 0), 0});
        while (found != files_.end() && isSameTypeOfClip(found->first.cookie, cookie) &&
               found->first.level != format.level) {
            ++found;
        }
        if (found != files_.end() && !isSameTypeOfClip(found->first.cookie, cookie)) {
            found = files_.end();
        }
    }
    if (found == files_.end()) {
        return false;
    }
    filename = found->second;
    return true;
}

std::int32_t MemoryCatalogue::getStartOffset(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    auto const found = startOffsets_.find(cookie);
    return found == startOffsets_.end() ? 0 : found->second;
}

void MemoryCatalogue::add(Cookie const& cookie, LightweightString<wchar_t> const& filename,
                          eProxyLevel level) {
    std::lock_guard const scope(lock_);
    files_[Key{cookie, level}] = filename;
}

void MemoryCatalogue::remove(Cookie const& cookie, eProxyLevel level) {
    std::lock_guard const scope(lock_);
    files_.erase(Key{cookie, level});
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
    iStore* const installed = installedStore.load(std::memory_order_acquire);
    return installed ? installed->getStartOffset(cookie) : MemoryCatalogue::instance().getStartOffset(cookie);
}

MaterialInfo::iStore* MaterialInfo::install(iStore* store) noexcept {
    return installedStore.exchange(store);
}
