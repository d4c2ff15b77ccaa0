#pragma once

#include <string>

#include "tests/fakes/CacheFixture.h"

/// Clips with channels, opened and closed through the shared cache; there is one reader.
class ClipsFixture : public CacheFixture {
protected:
    static inline DecodeFormat const original{levelOriginal};
    static inline DecodeFormat const proxy{levelProxy};

    /// A clip with channels of which every file is there.
    Cookie addEdit(std::size_t videoChannels, std::size_t audioChannels) {
        catalogue.addEdit(edit, nullptr);
        catalogue.setChannels(edit, videoChannels, audioChannels);
        return edit;
    }
    Cookie channel(CookieType type, unsigned char number) const { return convertCookie(edit, type, number); }
    /// Files a channel under both levels.
    void addChannel(CookieType type, unsigned char number, std::string const& path) {
        addFile(path);
        addFile(path + ".proxy");
        catalogue.addFile(channel(type, number), path);
        catalogue.addFile(channel(type, number), path + ".proxy", levelProxy);
    }
    static Ox::Ptr<FileReadInstance> open(Cookie const& cookie, DecodeFormat const& format = original) {
        return cache().open(cookie, format, 0);
    }
    static bool isOpen(Cookie const& cookie, DecodeFormat const& format = original) {
        return static_cast<bool>(cache().isOpen(cookie, format, 0));
    }
    static PlayFileCache& cache() { return *PlayFileCache::Shared(); }
    void failOpens() {
        reader->opens = [](ScriptedReader::OpenCall const&) { return false; };
    }

    Cookie const edit = makeCookie(1, 'E', Cookie::wholeClip);
    Ox::Ptr<ScriptedReader> reader = addReader("A");
};
