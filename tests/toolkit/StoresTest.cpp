#include <gtest/gtest.h>

#include "host/memory/MemoryCatalogue.h"
#include "host/memory/MemoryEditStore.h"
#include "tests/support/Installed.h"
#include "tests/support/Threads.h"
#include "toolkit/services/TimedTask.h"

namespace test {
namespace {

using Name = LightweightString<wchar_t>;

class CatalogueTest : public ::testing::Test {
protected:
    Name find(CookieType type, std::uint8_t channel, eProxyLevel level = levelOriginal) {
        Name name = L"untouched";
        bool const isFound = catalogue_.findFileForCookie(cookie(type, channel), name, DecodeFormat(level));
        EXPECT_EQ(isFound, name != Name(L"untouched"));
        return name;
    }
    [[nodiscard]] Cookie cookie(CookieType type, std::uint8_t channel) const {
        return Cookie(clip_, type, channel);
    }

    Ox::UUID const clip_ = Ox::UUID::generate();
    MemoryCatalogue catalogue_;
};

TEST_F(CatalogueTest, FindsTheFileOfACookie) {
    catalogue_.add(cookie('V', 0), L"/v.mov");
    EXPECT_EQ(Name(L"/v.mov"), find('V', 0));
}

TEST_F(CatalogueTest, LeavesTheNameAloneForAnUnknownCookie) {
    catalogue_.add(cookie('V', 0), L"/v.mov");
    EXPECT_EQ(Name(L"untouched"), find('V', 1));
    EXPECT_EQ(Name(L"untouched"), find('S', 0));
}

TEST_F(CatalogueTest, NeverFallsBackFromProxyToOriginal) {
    catalogue_.add(cookie('V', 0), L"/v.mov");
    EXPECT_EQ(Name(L"untouched"), find('V', 0, levelProxy));
    EXPECT_EQ(Name(L"untouched"), find('V', Cookie::wholeClip, levelProxy));
}

TEST_F(CatalogueTest, KeepsOriginalAndProxyApart) {
    catalogue_.add(cookie('V', 0), L"/v.mov");
    catalogue_.add(cookie('V', 0), L"/p.mov", levelProxy);
    EXPECT_EQ(Name(L"/v.mov"), find('V', 0));
    EXPECT_EQ(Name(L"/p.mov"), find('V', Cookie::wholeClip, levelProxy));
}

TEST_F(CatalogueTest, TheWholeClipMeansTheFirstChannelOfItsType) {
    catalogue_.add(cookie('S', 2), L"/s2.wav");
    catalogue_.add(cookie('S', 1), L"/s1.wav");
    catalogue_.add(cookie('V', 0), L"/v.mov");
    EXPECT_EQ(Name(L"/s1.wav"), find('S', Cookie::wholeClip));
}

TEST_F(CatalogueTest, TheWholeClipNeverMeansAnotherClip) {
    catalogue_.add(Cookie(Ox::UUID::generate(), 'V', 0), L"/other.mov");
    catalogue_.add(cookie('I', 0), L"/i.png");
    EXPECT_EQ(Name(L"untouched"), find('V', Cookie::wholeClip));
}

TEST_F(CatalogueTest, ForgetsWhatWasRemoved) {
    catalogue_.add(cookie('V', 0), L"/v.mov");
    catalogue_.remove(cookie('V', 0));
    EXPECT_EQ(Name(L"untouched"), find('V', 0));
}

TEST_F(CatalogueTest, AnInstalledOneIsInForce) {
    SystemCache const* const before = SystemCache::instance();
    {
        InstalledCatalogue const installed(&catalogue_);
        EXPECT_EQ(&catalogue_, SystemCache::instance());
    }
    EXPECT_EQ(before, SystemCache::instance());
}

TEST_F(CatalogueTest, KnowsStartOffsets) {
    InstalledStartOffsets const installed(&catalogue_);
    catalogue_.setStartOffset(cookie('S', 1), -4800);
    EXPECT_EQ(-4800, MaterialInfo::get_start_offset(cookie('S', 1)));
    EXPECT_EQ(0, MaterialInfo::get_start_offset(cookie('S', 2)));
}

class EditStoreTest : public ::testing::Test {
protected:
    MemoryEditStore store_;
    InstalledEditStore const installed_{&store_};
    Cookie const cookie_{Ox::UUID::generate(), 'E', Cookie::wholeClip};
};

TEST_F(EditStoreTest, OpensNothingForAnUnknownCookie) {
    EditPtr edit;
    edit.i_open(cookie_);
    EXPECT_FALSE(edit);
    EXPECT_EQ(0, store_.getOpenCount());
}

TEST_F(EditStoreTest, ClosesWhatItOpenedAtTheEnd) {
    store_.add(cookie_);
    {
        EditPtr edit;
        edit.i_open(cookie_, 0);
        EXPECT_TRUE(edit);
        EXPECT_EQ(1, store_.getOpenCount());
    }
    EXPECT_EQ(0, store_.getOpenCount());
}

TEST_F(EditStoreTest, OpeningAnotherClosesTheFirst) {
    store_.add(cookie_);
    EditPtr edit;
    edit.i_open(cookie_);
    edit.i_open(cookie_);
    EXPECT_EQ(1, store_.getOpenCount());
    edit.i_close();
    edit.i_close();
    EXPECT_EQ(0, store_.getOpenCount());
}

TEST_F(EditStoreTest, HasDecodeSettingsOnlyWhereTheyWereGiven) {
    store_.add(cookie_);
    EditPtr plain;
    plain.i_open(cookie_);
    EXPECT_EQ(nullptr, plain->getDecodeSettings());

    configb settings;
    settings.set("gain", "2");
    store_.add(cookie_, settings);
    EditPtr withSettings;
    withSettings.i_open(cookie_);
    ASSERT_TRUE(withSettings->getDecodeSettings());
    LightweightString<char> value;
    EXPECT_EQ(0, withSettings->getDecodeSettings()->in("gain", value));
}

TEST(TimedTasks, AreFoundByNameAndTheNewestCounts) {
    auto const first = TimedTaskManager::getTimedTask("Video");
    EXPECT_EQ(first.get(), TimedTaskManager::getTimedTask("Video").get());
    auto const second = TimedTaskManager::createTimedTask("Video");
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(second.get(), TimedTaskManager::getTimedTask("Video").get());
    EXPECT_EQ(2U, TimedTaskManager::getAll().size());
}

TEST(TimedTasks, SumTheirSections) {
    auto const task = TimedTaskManager::createTimedTask("Video");
    task->addRun("read", 5);
    task->addRun(std::string("read").c_str(), 7);
    task->addRun("open", 1);
    auto const sections = task->getSections();
    ASSERT_EQ(2U, sections.size());
    EXPECT_EQ(2U, sections[0].count);
    EXPECT_EQ(12U, sections[0].totalNs);
    EXPECT_EQ(7U, sections[0].longestNs);
}

TEST(TimedTasks, CountRunsOfManyThreads) {
    auto const task = TimedTaskManager::createTimedTask("Video");
    {
        Threads const threads(4, [&] {
            for (int round = 0; round < 500; ++round) {
                TimedSection const section(task, "read");
            }
        });
    }
    EXPECT_EQ(2000U, task->getSections().at(0).count);
}

TEST(TimedTasks, ASectionWithoutATaskCountsNothing) {
    { TimedSection const section({}, "read"); }
    EXPECT_TRUE(TimedTaskManager::getAll().empty());
}

}  // namespace
}  // namespace test
