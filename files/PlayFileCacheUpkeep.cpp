/// What happens to the cache of open files after they were opened: eviction, and the world's changes.
#include "files/PlayFileCache.h"
#include "playfile/Counters.h"
#include "playfile/Trace.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/services/Log.h"

namespace {

void traceEviction(FileReadInstance const& file) {
    if (PlayFileTrace::isOn()) {
        TraceEvent event;
        event.category = "files";
        event.name = "evicted";
        event.with("media", 0, file.openType.asString()).of(file.filename);
        PlayFileTrace::add(std::move(event));
    }
}

}  // namespace

/// The room is made file by file, and the size is read without the lock: another thread's open may
/// make it wrong at once, and the bound is then kept by that thread's own call.
void PlayFileCache::limitUsage(unsigned int bound) {
    {
        ScopedLock const scope(cacheLock_);
        for (auto const& [key, file] : openFiles_) {
            file->limitUsage();
        }
    }
    while (getOpenCount() > bound && removeOldestEntry()) {
    }
}

void PlayFileCache::limitUsage() {
    limitUsage(static_cast<unsigned int>(sizeMin_));
}

void PlayFileCache::purge() {
    limitUsage(0U);
}

void PlayFileCache::flushUnreferenced() {
    limitUsage(0U);
}

/// The file goes when the lock is left, as its end may have to wait for its queue.
bool PlayFileCache::removeOldestEntry() {
    Ox::Ptr<FileReadInstance> removed;
    {
        ScopedLock const scope(cacheLock_);
        auto oldest = openFiles_.end();
        std::uint64_t oldestUse = PlayFile::neverUsed;
        for (auto entry = openFiles_.begin(); entry != openFiles_.end(); ++entry) {
            entry->second->limitUsage();
            if (entry->second.useCount() == 1 && entry->second->lastUse < oldestUse) {
                oldest = entry;
                oldestUse = entry->second->lastUse;
            }
        }
        if (oldest != openFiles_.end()) {
            removed = oldest->second;
            removed->purge();
            openFiles_.erase(oldest);
            noteOpenCount();
        }
    }
    if (!removed) {
        return false;
    }
    PlayFileCounters::add(playFileCounters().filesEvicted);
    traceEviction(*removed);
    return true;
}

void PlayFileCache::reOpen(LightweightString<wchar_t> const& filename) {
    ScopedLock const scope(cacheLock_);
    failedOpens_.erase(CacheEntry{filename, OpenType::video});
    failedOpens_.erase(CacheEntry{filename, OpenType::audio});
}

void PlayFileCache::reportUsage() {
    ScopedLock const scope(cacheLock_);
    LogBoth("PlayFileCache\n\n");
    LogBoth("   %d files open\n", static_cast<int>(openFiles_.size()));
    for (auto const& [key, file] : openFiles_) {
        LogBoth("      %ls\n", key.filename.c_str());
    }
}

void PlayFileCache::closeAll() {
    ScopedLock const scope(cacheLock_);
    for (auto const& [key, file] : openFiles_) {
        file->purge();
    }
    FileMap closed;
    closed.swap(openFiles_);
    noteOpenCount();
}

int PlayFileCache::handleRepositoryEvents(iAssetRepository::Event const& event) {
    bool const isAvailableAgain = (event.flags & iAssetRepository::Event::reachabilityFlag) != 0 &&
                                  event.kind == iAssetRepository::Event::becameAvailable;
    if (isAvailableAgain) {
        {
            ScopedLock const scope(cacheLock_);
            failedOpens_.clear();
        }
        DiskNotification notification;
        notification.message = DiskNotification::mediaChanged;
        notification.type = NotifyMsgTypeDictionary::instance().getDiskChangeType();
        DiskManager::instance().notify(notification);
    }
    return 0;
}

void PlayFileCache::noteOpenCount() {
    openCount_.store(openFiles_.size(), std::memory_order_relaxed);
}
