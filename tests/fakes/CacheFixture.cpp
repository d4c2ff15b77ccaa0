#include "tests/fakes/CacheFixture.h"

#include "toolkit/catalogue/Repository.h"
#include "toolkit/services/Settings.h"

CacheFixture::CacheFixture() {
    setConfigInt("ReadPollDelay", 2);
}

/// A read that is under way while the cache forgets its file would keep the file for good.
CacheFixture::~CacheFixture() {
    for (Ox::Ptr<ScriptedReader> const& reader : readers_) {
        reader->script->readGate.open();
        reader->script->destroyGate.open();
    }
    EXPECT_TRUE(threads.waitUntilAllIdle());
    PlayFileCache::Shared()->closeAll();
    AssetRepositoryManager::fire(
        {iAssetRepository::Event::reachabilityFlag, iAssetRepository::Event::becameAvailable});
    for (Ox::Ptr<ScriptedReader> const& reader : readers_) {
        Ox::FileReaderInfo::remove(reader);
    }
}

Ox::Ptr<ScriptedReader> CacheFixture::addReader(std::string const& name) {
    auto reader = Ox::makePtr<ScriptedReader>(name, calls);
    Ox::FileReaderInfo::add(reader, static_cast<int>(readers_.size()));
    readers_.push_back(reader);
    return reader;
}

Cookie CacheFixture::addClip(std::string const& path, CookieType type, unsigned clip) {
    addFile(path);
    Cookie const cookie = makeCookie(clip, type, type == 'S' ? 1 : 0);
    catalogue.addFile(cookie, path);
    return cookie;
}

bool CacheFixture::isMarked(std::string const& path) const {
    auto const values = preferences.all();
    auto const found = values.find("Analysing " + path);
    return found != values.end() && found->second;
}

std::vector<std::string> loggedToBoth(std::string const& text) {
    return {"console " + text, "log " + text};
}
