#include "playfile/Counters.h"

#include "tests/fakes/CacheFixture.h"

namespace {

class CacheCounters : public CacheFixture {
protected:
    PlayFileCounters const& counters = playFileCounters();
    Ox::Ptr<ScriptedReader> reader = addReader("A");
    std::uint64_t const hits = counters.cacheHits;
    std::uint64_t const opened = counters.filesOpened;
    std::uint64_t const failed = counters.opensFailed;
    std::uint64_t const evicted = counters.filesEvicted;
};

TEST_F(CacheCounters, TellOpensFromHits) {
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    static_cast<void>(openFile("/m/a.mov"));
    EXPECT_EQ(counters.filesOpened, opened + 1);
    EXPECT_EQ(counters.cacheHits, hits + 1);
}

TEST_F(CacheCounters, CountAFailedOpenOnce) {
    reader->opens = [](ScriptedReader::OpenCall const&) { return false; };
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    static_cast<void>(openFile("/m/a.mov"));
    EXPECT_EQ(counters.opensFailed, failed + 1);
    EXPECT_EQ(counters.filesOpened, opened);
}

TEST_F(CacheCounters, CountAFileThatMadeRoom) {
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    PlayFileCache::Shared()->limitUsage(0U);
    EXPECT_EQ(counters.filesEvicted, evicted + 1);
}

TEST_F(CacheCounters, DontCountAsEvictedWhatIsClosed) {
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    PlayFileCache::Shared()->closeAll();
    EXPECT_EQ(counters.filesEvicted, evicted);
}

}  // namespace
