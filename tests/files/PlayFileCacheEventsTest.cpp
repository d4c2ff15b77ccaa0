/// What the cache does when media can be reached again.
#include <future>
#include <memory>

#include "tests/fakes/CacheFixture.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/Repository.h"

namespace {

class PlayFileCacheEventsTest : public CacheFixture {
protected:
    using Event = iAssetRepository::Event;

    PlayFileCacheEventsTest() {
        addFile("/a/b.mov");
        guard = DiskManager::instance().addListener(
            Ox::makePtr<Ox::FunctionCallback<int, DiskNotification>>([this](DiskNotification const& note) {
                notes.push_back(note);
                if (onNote) {
                    onNote();
                }
                return 0;
            }));
        for (int const type : {1, 2, 3, 0}) {
            EXPECT_FALSE(openIn(cache, "/a/b.mov", type));
        }
    }
    bool isForgotten() { return !cache.isCorrupt(L"/a/b.mov", 0); }

    PlayFileCache cache{2, 4};
    std::vector<DiskNotification> notes;
    std::function<void()> onNote;
    Ox::Ptr<Ox::Guard> guard;
};

TEST_F(PlayFileCacheEventsTest, ForgetsAllFailedOpensWhateverTheirType) {
    EXPECT_EQ(cache.handleRepositoryEvents({1, 4}), 0);
    calls->clear();
    for (int const type : {1, 2, 3, 0}) {
        EXPECT_FALSE(openIn(cache, "/a/b.mov", type));
    }
    EXPECT_EQ(calls->count("fm.exists"), 4U);
}

TEST_F(PlayFileCacheEventsTest, LooksAtTheLowestBitOfTheFlagsOnly) {
    EXPECT_EQ(cache.handleRepositoryEvents({0xFF, 4}), 0);
    EXPECT_TRUE(isForgotten());
}

TEST_F(PlayFileCacheEventsTest, IgnoresAllOtherEvents) {
    for (Event const event : {Event{0, 4}, Event{0xFE, 4}, Event{1, 3}, Event{1, 5}, Event{1, 0},
                              Event{1, 0x104}, Event{1, 0x80000004}}) {
        EXPECT_EQ(cache.handleRepositoryEvents(event), 0);
    }
    EXPECT_FALSE(isForgotten());
    EXPECT_TRUE(notes.empty());
}

TEST_F(PlayFileCacheEventsTest, NotifiesThatTheDrivesMayHaveChanged) {
    cache.handleRepositoryEvents({1, 4});
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes.front().message, 3U);
    EXPECT_TRUE(notes.front().paths.empty());
    EXPECT_EQ(notes.front().time, 0.0);
    EXPECT_EQ(notes.front().type, NotifyMsgTypeDictionary::instance().getDiskChangeType());
}

TEST_F(PlayFileCacheEventsTest, NotifiesAfterTheOpensAreForgottenAndOutsideItsLock) {
    bool wasForgotten = false;
    onNote = [&] { wasForgotten = std::async(std::launch::async, [&] { return isForgotten(); }).get(); };
    cache.handleRepositoryEvents({1, 4});
    EXPECT_TRUE(wasForgotten);
}

TEST_F(PlayFileCacheEventsTest, KeepsOpenFilesAndMarks) {
    addReader("A");
    addFile("/a/good.mov");
    EXPECT_TRUE(openIn(cache, "/a/good.mov"));
    cache.handleRepositoryEvents({1, 4});
    EXPECT_EQ(cache.getOpenCount(), 1U);
    EXPECT_TRUE(isMarked("/a/b.mov"));
}

TEST_F(PlayFileCacheEventsTest, IsSubscribedFromItsConstruction) {
    AssetRepositoryManager::fire({1, 4});
    EXPECT_TRUE(isForgotten());
}

TEST_F(PlayFileCacheEventsTest, IsToldOfNothingWhenItHasGone) {
    auto other = std::make_unique<PlayFileCache>(2, 4);
    AssetRepositoryManager::fire({1, 4});
    std::size_t const withIt = notes.size();
    other.reset();
    AssetRepositoryManager::fire({1, 4});
    EXPECT_EQ(notes.size(), 2 * withIt - 1);
}

}  // namespace
