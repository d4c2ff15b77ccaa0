/// The marks of files that may not be trusted. Every query reads the preferences, there is no table in
/// memory, so that two processes see each other's marks.
#include "files/PlayFileCache.h"
#include "files/QuarantinedFiles.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/services/Preferences.h"

namespace {

/// A mark is per file, so any of the clip's media will do: its first picture.
bool findClipFile(Cookie const& cookie, LightweightString<wchar_t>& filename) {
    return SystemCache::instance()->findFileForCookie(convertCookie(cookie, 'V', Cookie::wholeClip), filename,
                                                      DecodeFormat::getDefault());
}

}  // namespace

void PlayFileCache::addToQuarantine(LightweightString<wchar_t> const& filename, OpenType type) {
    if (!filename.empty()) {
        prefs()->setPreference(QuarantinedFiles::getAnalysisPrefKey(filename, type), true);
    }
}

/// The failed opens are those of the shared cache, whichever object this is.
void PlayFileCache::removeFromQuarantine(LightweightString<wchar_t> const& filename, OpenType type) {
    if (!filename.empty()) {
        Shared()->reOpen(filename);
        prefs()->removePreference(QuarantinedFiles::getAnalysisPrefKey(filename, type));
    }
}

void PlayFileCache::removeFromQuarantine(Cookie const& cookie, OpenType type) {
    LightweightString<wchar_t> filename;
    if (findClipFile(cookie, filename)) {
        removeFromQuarantine(filename, type);
    }
}

/// The mark of a file that is being opened right now says nothing about that file.
bool PlayFileCache::quarantineContains(LightweightString<wchar_t> const& filename, OpenType type) {
    if (filename.empty() || accessQueue_.isAccessed(filename)) {
        return false;
    }
    return prefs()->getPreference(QuarantinedFiles::getAnalysisPrefKey(filename, type), false);
}

bool PlayFileCache::quarantineContains(Cookie const& cookie, OpenType type) {
    LightweightString<wchar_t> filename;
    return findClipFile(cookie, filename) && quarantineContains(filename, type);
}

bool PlayFileCache::isCorrupt(LightweightString<wchar_t> const& filename, OpenType type) {
    ScopedLock const scope(cacheLock_);
    bool const isBadVideo = failedOpens_.contains(CacheEntry{filename, OpenType::video});
    bool const isBadAudio = failedOpens_.contains(CacheEntry{filename, OpenType::audio});
    switch (std::int32_t(type)) {
        case OpenType::video:
            return isBadVideo;
        case OpenType::audio:
            return isBadAudio;
        case OpenType::both:
            return isBadVideo && isBadAudio;
        default:
            return isBadVideo || isBadAudio;
    }
}
