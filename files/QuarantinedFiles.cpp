#include "files/QuarantinedFiles.h"

#include "files/PlayFileCache.h"

void QuarantinedFiles::add(LightweightString<wchar_t> const& filename, OpenType type) {
    PlayFileCache::Shared()->addToQuarantine(filename, type);
}

void QuarantinedFiles::remove(LightweightString<wchar_t> const& filename, OpenType type) {
    PlayFileCache::Shared()->removeFromQuarantine(filename, type);
}

bool QuarantinedFiles::contains(LightweightString<wchar_t> const& filename, OpenType type) {
    return PlayFileCache::Shared()->quarantineContains(filename, type);
}

void QuarantinedFiles::remove(Cookie const& cookie, OpenType type) {
    PlayFileCache::Shared()->removeFromQuarantine(cookie, type);
}

bool QuarantinedFiles::contains(Cookie const& cookie, OpenType type) {
    return PlayFileCache::Shared()->quarantineContains(cookie, type);
}

void QuarantinedFiles::remove(LightweightString<wchar_t> const& filename) {
    remove(filename, OpenType::video);
    remove(filename, OpenType::audio);
}

bool QuarantinedFiles::contains(LightweightString<wchar_t> const& filename) {
    return contains(filename, OpenType::video) || contains(filename, OpenType::audio);
}

void QuarantinedFiles::remove(Cookie const& cookie) {
    remove(cookie, OpenType::video);
    remove(cookie, OpenType::audio);
}

bool QuarantinedFiles::contains(Cookie const& cookie) {
    return contains(cookie, OpenType::video) || contains(cookie, OpenType::audio);
}

LightweightString<char> QuarantinedFiles::getAnalysisPrefKey(LightweightString<wchar_t> const& filename,
                                                             OpenType) {
    return LightweightString<char>("Analysing ") + toUTF8(filename);
}
