/// Opening through the cache.
///
/// A hit costs one lock and two look-ups. A miss goes on without the lock: room is made first, then the
/// file's name is taken in the access queue, so that a second thread that wants the same file, for any
/// medium, waits and then finds what the first one made. Everything that may be slow (the test whether
/// the file is there, the readers) runs with the name held and no lock, so that other files aren't held
/// up.
#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "ole/os/OS.h"
#include "ole/os/Shutdown.h"
#include "playfile/Counters.h"
#include "playfile/Settings.h"
#include "playfile/Trace.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/edit/Edit.h"
#include "toolkit/services/Log.h"

PlayFileCache* PlayFileCache::Shared() {
    static PlayFileCache cache(readCacheSizeMin(), readCacheSizeMax(), eLockRank::sharedCache);
    // At process exit whoever still opens files is stopped before the cache is destroyed.
    [[maybe_unused]] static bool const isShutdownArranged = [] {
        Shutdown::runBeforeEarlierStatics();
        return true;
    }();
    return &cache;
}

PlayFileCache::PlayFileCache(int sizeMin, int sizeMax, eLockRank rank)
    : cacheLock_(rank, "PlayFileCache"), sizeMin_(sizeMin), sizeMax_(sizeMax) {
    using Listener = Ox::FunctionCallback<int, iAssetRepository::Event>;
    listeners_.push_back(AssetRepositoryManager::addListener(Ox::makePtr<Listener>(
        [this](iAssetRepository::Event const& event) { return handleRepositoryEvents(event); })));
    enrol();
}

PlayFileCache::~PlayFileCache() {
    withdraw();
    listeners_.clear();
    closeAll();
}

Ox::Ptr<FileReadInstance> PlayFileCache::open(LightweightString<wchar_t> const& filename,
                                              Cookie const& cookie, DecodeFormat const& format, OpenType type,
                                              unsigned int streamIndex) {
    CacheEntry const key{filename, type};
    Ox::Ptr<FileReadInstance> file;
    {
        ScopedLock const scope(cacheLock_);
        if (findKnown(key, file)) {
            PlayFileCounters::add(playFileCounters().cacheHits);
            return file;
        }
    }
    limitUsage(static_cast<unsigned int>(sizeMax_));
    accessQueue_.beginAccess(filename);
    file = openUnderAccess(key, cookie, format, streamIndex);
    accessQueue_.endAccess(filename);
    return file;
}

Ox::Ptr<FileReadInstance> PlayFileCache::open(Cookie const& cookie, DecodeFormat const& format,
                                              unsigned int streamIndex) {
    LightweightString<wchar_t> filename;
    if (!SystemCache::instance()->findFileForCookie(cookie, filename, format)) {
        return {};
    }
    return open(filename, cookie, format, PlayUtil::getType(cookie), streamIndex);
}

Ox::Ptr<FileReadInstance> PlayFileCache::isOpen(Cookie const& cookie, DecodeFormat const& format,
                                                unsigned int) {
    Ox::Ptr<FileReadInstance> file;
    LightweightString<wchar_t> filename;
    if (SystemCache::instance()->findFileForCookie(cookie, filename, format)) {
        ScopedLock const scope(cacheLock_);
        findKnown(CacheEntry{filename, PlayUtil::getType(cookie)}, file);
    }
    return file;
}

std::uint64_t PlayFileCache::getSampleCount(Cookie const& cookie) {
    Ox::Ptr<FileReadInstance> const file = Shared()->open(cookie, DecodeFormat(levelOriginal), 0);
    if (!file) {
        return 0;
    }
    switch (cookie.type()) {
        case 'V':
            return file->metadata->videoSampleCount;
        case 'S':
            return file->metadata->audioSampleCount;
        default:
            return 0;
    }
}

bool PlayFileCache::findKnown(CacheEntry const& key, Ox::Ptr<FileReadInstance>& file) {
    if (failedOpens_.contains(key)) {
        return true;
    }
    auto const found = openFiles_.find(key);
    if (found == openFiles_.end()) {
        return false;
    }
    stamp(*found->second);
    file = found->second;
    return true;
}

/// With the name held. `quarantineContains` answers false here, because the name is held; the test
/// keeps its place all the same.
Ox::Ptr<FileReadInstance> PlayFileCache::openUnderAccess(CacheEntry const& key, Cookie const& cookie,
                                                         DecodeFormat const& format,
                                                         unsigned int streamIndex) {
    {
        ScopedLock const scope(cacheLock_);
        if (quarantineContains(key.filename, key.type)) {
            LogBoth("PlayFileCache::open() : Failed to open (quarantined) %s for %s\n",
                    toUTF8(key.filename).c_str(), key.type.asString());
            failedOpens_[key] = nullptr;
        }
        Ox::Ptr<FileReadInstance> file;
        if (findKnown(key, file)) {
            return file;
        }
    }
    if (!OS()->getFileManager().fileExists(key.filename)) {
        return {};
    }
    return openReal(key, cookie, format, streamIndex);
}

/// The mark is set before any reader touches the file: if one brings the process down, it stays. A file
/// handle is held meanwhile, so that the volume stays mounted; whether it could be had doesn't matter.
Ox::Ptr<FileReadInstance> PlayFileCache::openReal(CacheEntry const& key, Cookie const& cookie,
                                                  DecodeFormat const& format, unsigned int streamIndex) {
    Ox::Ptr<iFile> const handle = OS()->getFileManager().openFile(key.filename, iFile::readAccess,
                                                                  iFile::existingOnly, iFile::shared, 0);
    TraceSlice slice("files", "open");
    slice.with("media", 0, key.type.asString()).of(key.filename);
    addToQuarantine(key.filename, key.type);
    Ox::Ptr<FileReadInstance> file = PlayUtil::openRead(key.filename, format, key.type, streamIndex);
    slice.with("isOpen", file ? 1 : 0);
    ScopedLock const scope(cacheLock_);
    if (file) {
        PlayFileCounters::add(playFileCounters().filesOpened);
        openFiles_[key] = file;
        noteOpenCount();
        stamp(*file);
        if (key.type == OpenType::video) {
            applyDecodeSettings(cookie, *file);
        }
        removeFromQuarantine(key.filename, key.type);
    } else {
        PlayFileCounters::add(playFileCounters().opensFailed);
        LogBoth("PlayFileCache::open() : Failed to open \"%s\" for %s\n", toUTF8(key.filename).c_str(),
                key.type.asString());
        failedOpens_[key] = nullptr;
    }
    return file;
}

/// Gives the reader the decode settings that are stored with the clip, or an empty set.
void PlayFileCache::applyDecodeSettings(Cookie const& cookie, FileReadInstance& file) {
    EditPtr edit;
    edit.i_open(convertCookie(cookie, 'E', Cookie::wholeClip));
    if (edit) {
        configb const* const settings = edit->getDecodeSettings();
        static_cast<void>(file.initDecodeOptionValues(settings ? *settings : configb()));
    }
    edit.i_close();
}

void PlayFileCache::stamp(FileReadInstance& file) {
    file.lastUse = ++useCounter_;
}
