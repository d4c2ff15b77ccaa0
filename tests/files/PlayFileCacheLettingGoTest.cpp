/// What files meet, and other threads, while the cache lets go of them.
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/CacheFixture.h"
#include "tests/support/ThreadState.h"

namespace {

/// A file that does something of the test's own while the cache lets go of it.
class HookedFile : public ScriptedFile {
public:
    struct Hooks {
        std::function<void()> onPurge = [] {};
        std::function<void()> onDestroy = [] {};
    };

    HookedFile(ScriptedReader::OpenCall const& call, FileScriptPtr const& script, Hooks const& hooks)
        : ScriptedFile(narrow(call.name), call.type, script, call.format), hooks_(hooks) {}
    ~HookedFile() override { hooks_.onDestroy(); }

    void purge() override {
        ScriptedFile::purge();
        hooks_.onPurge();
    }

private:
    Hooks const& hooks_;
};

/// A cache of one's own whose files are hooked, with two of them open.
class ClosingFilesTest : public CacheFixture {
protected:
    ClosingFilesTest() {
        reader->make = [this](auto const& call) {
            return Ox::makePtr<HookedFile>(call, reader->script, hooks);
        };
        EXPECT_TRUE(openIn(cache, "a"));
        EXPECT_TRUE(openIn(cache, "b"));
        calls->clear();
    }
    ~ClosingFilesTest() override { hooks = {}; }

    [[nodiscard]] std::size_t countOpen() {
        std::size_t count = 0;
        for (Cookie const& cookie : cookies) {
            count += cache.isOpen(cookie, levelOriginal, 0) ? 1 : 0;
        }
        return count;
    }

    HookedFile::Hooks hooks;
    Ox::Ptr<ScriptedReader> reader = addReader("A");
    std::vector<Cookie> const cookies = {addClip("a", 'V', 1), addClip("b", 'V', 2)};
    PlayFileCache cache{2, 4};
};

/// What each file's destructor finds.
using Found = std::vector<std::size_t>;

TEST_F(ClosingFilesTest, CountNoneOpenWhenAllAreClosed) {
    Found found;
    hooks.onDestroy = [&] { found.push_back(cache.getOpenCount()); };
    cache.closeAll();
    EXPECT_EQ(found, (Found{0, 0}));
}

TEST_F(ClosingFilesTest, FindNeitherOpenWhenAllAreClosed) {
    Found found;
    hooks.onDestroy = [&] { found.push_back(countOpen()); };
    cache.closeAll();
    EXPECT_EQ(found, (Found{0, 0}));
}

TEST_F(ClosingFilesTest, MayRemoveEachOtherWhenAllAreClosed) {
    hooks.onDestroy = [this] {
        cache.remove(L"a");
        cache.remove(L"b");
    };
    cache.closeAll();
    EXPECT_EQ(calls->count(".purge"), 2U) << "once each";
    EXPECT_EQ(calls->count(".destroy"), 2U);
}

TEST_F(ClosingFilesTest, CountNoMoreThanIsLeftWhenOneIsRemoved) {
    Found found;
    hooks.onDestroy = [&] { found.push_back(cache.getOpenCount()); };
    cache.remove(cookies[0], levelOriginal);
    cache.remove(L"b");
    EXPECT_EQ(found, (Found{1, 0}));
}

TEST_F(ClosingFilesTest, MayRemoveTheNextWhenOneIsRemovedByItsName) {
    hooks.onDestroy = [this] { cache.remove(L"b"); };
    cache.remove(L"a");
    EXPECT_EQ(calls->count(".destroy"), 2U);
}

/// Another thread asks with the cache's lock while a file is purged.
class PurgeLockTest : public ClosingFilesTest {
protected:
    /// What happens to file "a" and to the thread that asks, in order, while `close` runs.
    CallLog::Lines eventsOf(std::function<void()> const& close) {
        std::jthread asking;
        hooks.onPurge = [&] {
            if (!asking.joinable()) {
                asking = std::jthread([this] { ask(); });
                test::waitForSleep(asker_);
            }
        };
        close();
        hooks.onPurge = [] {};
        if (asking.joinable()) {
            asking.join();
        }
        CallLog::Lines events = calls->all();
        std::erase_if(events, [](std::string const& line) {
            return line != "a.purge" && line != "a.destroy" && line != "answered";
        });
        return events;
    }
    /// Both the purge and the end of the file come first.
    CallLog::Lines const answeredLast = {"a.purge", "a.destroy", "answered"};

private:
    void ask() {
        asker_ = gettid();
        static_cast<void>(cache.isCorrupt(L"a", OpenType::video));
        calls->add("answered");
    }

    std::atomic<int> asker_{0};
};

TEST_F(PurgeLockTest, RemoveHasOthersWaitForThePurge) {
    EXPECT_EQ(eventsOf([this] { cache.remove(cookies[0], levelOriginal); }), answeredLast);
}

TEST_F(PurgeLockTest, RemoveByNameHasOthersWaitForThePurge) {
    EXPECT_EQ(eventsOf([this] { cache.remove(L"a"); }), answeredLast);
}

TEST_F(PurgeLockTest, CloseAllHasOthersWaitForThePurge) {
    EXPECT_EQ(eventsOf([this] { cache.closeAll(); }), answeredLast);
}

TEST_F(PurgeLockTest, CloseHasOthersWaitForThePurge) {
    Cookie const edit = convertCookie(cookies[0], 'E', Cookie::wholeClip);
    catalogue.addEdit(edit, nullptr);
    catalogue.setChannels(edit, 1, 0);
    EXPECT_EQ(eventsOf([&] { cache.close(edit, mediaOriginal); }), answeredLast);
}

}  // namespace
