/// What the trace tells of files that are opened and evicted.
#include "tests/fakes/CacheFixture.h"
#include "tests/support/TraceFile.h"

namespace {

class PlayFileCacheTrace : protected TraceFile, public CacheFixture {
protected:
    Ox::Ptr<ScriptedReader> reader = addReader("A");
};

TEST_F(PlayFileCacheTrace, TellsAnOpenWithReaderAndResult) {
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    EXPECT_EQ(only("open")["args"], (Json{{"media", "video"}, {"isOpen", 1}, {"file", "/m/a.mov"}}));
    Json const choice = only("choose reader");
    EXPECT_EQ(choice["args"]["reader"], "A");
}

TEST_F(PlayFileCacheTrace, TellsAFailedOpen) {
    addFile("/m/a.mov");
    reader->opens = [](ScriptedReader::OpenCall const&) { return false; };
    static_cast<void>(openFile("/m/a.mov"));
    EXPECT_EQ(only("open")["args"]["isOpen"], 0);
}

TEST_F(PlayFileCacheTrace, TellsAnEviction) {
    addFile("/m/a.mov");
    static_cast<void>(openFile("/m/a.mov"));
    PlayFileCache::Shared()->limitUsage(0U);
    EXPECT_EQ(only("evicted")["args"], (Json{{"media", "video"}, {"file", "/m/a.mov"}}));
}

}  // namespace
