#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "host/memory/MemoryEditStore.h"
#include "host/sqlite/SqliteClips.h"
#include "tests/fakes/CallLog.h"
#include "tests/support/Installed.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Threads.h"
#include "toolkit/edit/EditInfo.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Cookie> listed(CookieVec const& cookies) {
    return {cookies.begin(), cookies.end()};
}

/// What every store of clips must do, run on each that there is.
class EditStoreContract : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam()) {
            std::string error;
            auto file = ProjectFile::open(folder_.name("a.project"), error);
            ASSERT_TRUE(file) << error;
            store_ = std::make_unique<SqliteEditStore>(std::move(file));
        } else {
            store_ = std::make_unique<MemoryEditStore>();
        }
        installed_ = std::make_unique<InstalledEditStore>(store_.get());
    }
    [[nodiscard]] Ox::Ptr<Edit> opened() {
        Ox::Ptr<Edit> edit = store_->open(clip_);
        store_->close(*edit);
        return edit;
    }
    [[nodiscard]] std::string setting(char const* key) {
        LightweightString<char> value("none");
        auto const edit = opened();
        if (edit->getDecodeSettings() != nullptr) {
            static_cast<void>(edit->getDecodeSettings()->in(key, value));
        }
        return value.str();
    }

    TemporaryFolder folder_;
    Ox::UUID const uuid_ = Ox::UUID::generate();
    Cookie const clip_{uuid_, 'E', Cookie::wholeClip};
    std::unique_ptr<ClipStore> store_;
    std::unique_ptr<InstalledEditStore> installed_;
};

TEST_P(EditStoreContract, OpensNothingForAnUnknownClip) {
    EXPECT_FALSE(store_->open(clip_));
    EXPECT_EQ(store_->getOpenCount(), 0);
    store_->add(Cookie(Ox::UUID::generate(), 'E', Cookie::wholeClip));
    EXPECT_FALSE(store_->open(clip_));
}

TEST_P(EditStoreContract, KnowsLittleOfAClipThatWasOnlyAdded) {
    ASSERT_TRUE(store_->add(clip_));
    auto const edit = opened();
    EXPECT_EQ(edit->getCookie(), clip_);
    EXPECT_TRUE(edit->getName().empty());
    EXPECT_EQ(edit->getLogType(), logUnknown);
    EXPECT_FALSE(edit->isImage());
    EXPECT_EQ(edit->getDecodeSettings(), nullptr);
    EXPECT_TRUE(edit->getAttrib("chans").empty());
    EXPECT_THAT(listed(edit->getReferences(Edit::mediaReferences)), IsEmpty());
    EXPECT_EQ(edit->getAudioInputSampleRate().calcCombinedSampleRate(), 0.0);
    EXPECT_FALSE(edit->wantsAudioMetadata());
}

TEST_P(EditStoreContract, KeepsWhatWasSetOfAClip) {
    store_->setName(clip_, L"Take 1");
    store_->setLogType(clip_, logShot);
    store_->setIsImage(clip_, true);
    store_->setAttrib(clip_, "reel", "A001");
    store_->setAudioInputSampleRate(clip_, Aud::SampleRate(48000.0, 1000.0 / 1001.0));
    auto const edit = opened();
    EXPECT_EQ(narrow(edit->getName()), "Take 1");
    EXPECT_EQ(edit->getLogType(), logShot);
    EXPECT_TRUE(edit->isImage());
    EXPECT_EQ(edit->getAttrib("reel"), LightweightString<char>("A001"));
    EXPECT_TRUE(edit->getAttrib("other").empty());
    EXPECT_DOUBLE_EQ(edit->getAudioInputSampleRate().calcCombinedSampleRate(), 48000.0 / 1.001);
}

TEST_P(EditStoreContract, KeepsNamesOfAnyScript) {
    for (std::string const name :
         {"\xC3\xA4\xC3\x9F", "\xE6\xBC\xA2\xE5\xAD\x97", "\xD8\xB9\xD8\xB1\xD8\xA8\xD9\x8A",
          "\xF0\x9F\x98\x80", "it's \"100%\"; DROP TABLE clips", " \t\n x"}) {
        ASSERT_TRUE(store_->setName(clip_, wide(name)));
        EXPECT_EQ(narrow(opened()->getName()), name);
    }
}

TEST_P(EditStoreContract, ListsVideoChannelsFrom0AndAudioChannelsFrom1) {
    store_->setChannels(clip_, 2, 3);
    auto const edit = opened();
    Vector<int> channels{99};
    edit->getChans(channels, Edit::videoChannels, Edit::allChannels);
    EXPECT_THAT(channels, ElementsAre(0, 1));
    edit->getChans(channels, Edit::audioChannels, Edit::allChannels);
    EXPECT_THAT(channels, ElementsAre(1, 2, 3));
}

TEST_P(EditStoreContract, AClipRefersToItsOwnChannelsWhereNothingElseWasSaid) {
    store_->setChannels(clip_, 1, 2);
    store_->setReferences(clip_, Edit::clipReferences, {});
    std::vector<Cookie> const own{Cookie(uuid_, 'V', 0), Cookie(uuid_, 'S', 1), Cookie(uuid_, 'S', 2)};
    auto const edit = opened();
    EXPECT_EQ(listed(edit->getReferences(Edit::mediaReferences)), own);
    EXPECT_EQ(listed(edit->getReferences(Edit::ownMediaReferences)), own);
    EXPECT_THAT(listed(edit->getReferences(Edit::clipReferences)), IsEmpty());
}

TEST_P(EditStoreContract, KeepsReferencesOfEachKindInTheirOrder) {
    Cookie const first(Ox::UUID::generate(), 'V', 3);
    Cookie const second(Ox::UUID::generate(), 'E', Cookie::wholeClip);
    store_->setReferences(clip_, Edit::mediaReferences, {first, second});
    store_->setReferences(clip_, Edit::ownMediaReferences, {second, first, first});
    auto const edit = opened();
    EXPECT_THAT(listed(edit->getReferences(Edit::mediaReferences)), ElementsAre(first, second));
    EXPECT_THAT(listed(edit->getReferences(Edit::ownMediaReferences)), ElementsAre(second, first, first));
}

TEST_P(EditStoreContract, AllChannelsAreInUseUnlessSomethingElseWasSaid) {
    store_->setChannels(clip_, 1, 2);
    EXPECT_EQ(opened()->getAttrib("chans"), LightweightString<char>("V,A1,A2"));
    EXPECT_EQ(EditInfo(clip_).getAttrib("chans"), LightweightString<char>("V,A1,A2"));
    store_->setAttrib(clip_, "chans", "A2");
    EXPECT_EQ(opened()->getAttrib("chans"), LightweightString<char>("A2"));
    store_->setAttrib(clip_, "chans", {});
    store_->setChannels(clip_, 0, 1);
    EXPECT_EQ(opened()->getAttrib("chans"), LightweightString<char>("A1"));
}

TEST_P(EditStoreContract, HasDecodeSettingsOnlyWhereTheyWereGiven) {
    configb settings;
    settings.set("gain", "2");
    settings.set("empty", "");
    store_->add(clip_, settings);
    EXPECT_EQ(setting("gain"), "2");
    EXPECT_EQ(setting("empty"), "");
    store_->add(clip_, configb());
    EXPECT_NE(opened()->getDecodeSettings(), nullptr);
    store_->add(clip_);
    EXPECT_EQ(opened()->getDecodeSettings(), nullptr);
}

TEST_P(EditStoreContract, AddingAClipAgainKeepsTheRest) {
    store_->setName(clip_, L"Take 1");
    store_->add(clip_);
    EXPECT_EQ(narrow(opened()->getName()), "Take 1");
}

TEST_P(EditStoreContract, AClipThatIsOpenStaysAsItWas) {
    store_->setName(clip_, L"before");
    auto const edit = opened();
    store_->setName(clip_, L"after");
    EXPECT_EQ(narrow(edit->getName()), "before");
    store_->remove(clip_);
    EXPECT_EQ(narrow(edit->getName()), "before");
}

TEST_P(EditStoreContract, WantsToKnowItsSoundUntilItWasTold) {
    store_->setChannels(clip_, 1, 2);
    auto const one = opened();
    auto const other = opened();
    EXPECT_TRUE(one->wantsAudioMetadata());
    one->setAudioMetadata({Aud::Metadata()});
    EXPECT_FALSE(one->wantsAudioMetadata());
    EXPECT_FALSE(other->wantsAudioMetadata());
    store_->setChannels(clip_, 1, 3);
    EXPECT_FALSE(opened()->wantsAudioMetadata());
}

TEST_P(EditStoreContract, KeepsAllOfTheFormatOfASound) {
    store_->add(clip_);
    Aud::Metadata mono;
    mono.channels = 1;
    opened()->setAudioMetadata({mono, Aud::Metadata{2, 3, 4, 24, 1024, 44100.5, "aac", true}});
    std::vector<Aud::Metadata> const streams = store_->find(clip_)->audioStreams;
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0].channels, 1U);
    EXPECT_EQ(streams[1].channels, 2U);
    EXPECT_EQ(streams[1].sampleFormat, 3U);
    EXPECT_EQ(streams[1].bytesPerSample, 4U);
    EXPECT_EQ(streams[1].bitsPerSample, 24U);
    EXPECT_EQ(streams[1].samplesPerCodecFrame, 1024U);
    EXPECT_EQ(streams[1].sampleRate, 44100.5);
    EXPECT_TRUE(streams[1].isAAC());
    EXPECT_TRUE(streams[1].isCompressed);
}

TEST_P(EditStoreContract, TellingTheSoundOfAClipThatHasGoneDoesNotBringItBack) {
    store_->setChannels(clip_, 0, 1);
    auto const edit = opened();
    store_->remove(clip_);
    edit->setAudioMetadata({Aud::Metadata()});
    EXPECT_FALSE(store_->open(clip_));
    EXPECT_FALSE(edit->wantsAudioMetadata());
}

TEST_P(EditStoreContract, ForgetsAllOfAClipThatIsRemoved) {
    store_->setAttrib(clip_, "reel", "A001");
    store_->setReferences(clip_, Edit::mediaReferences, {clip_});
    EXPECT_TRUE(store_->remove(clip_));
    EXPECT_TRUE(store_->remove(clip_));
    EXPECT_FALSE(store_->open(clip_));
    store_->add(clip_);
    EXPECT_TRUE(opened()->getAttrib("reel").empty());
    EXPECT_THAT(listed(opened()->getReferences(Edit::mediaReferences)), IsEmpty());
}

TEST_P(EditStoreContract, ARecordTakesThePlaceOfAllThatWasKnown) {
    store_->setAttrib(clip_, "reel", "A001");
    ClipRecord record;
    record.name = wide("new");
    record.attributes["scene"] = "7";
    store_->set(clip_, record);
    EXPECT_TRUE(opened()->getAttrib("reel").empty());
    EXPECT_EQ(opened()->getAttrib("scene"), LightweightString<char>("7"));
}

TEST_P(EditStoreContract, FindsItsClipsByTheirKind) {
    constexpr std::uint32_t everything = 0x804C;
    std::vector<Cookie> clips;
    for (std::uint32_t const logType : {logShot, logGroup, logImage}) {
        clips.emplace_back(Ox::UUID::generate(), 'E', Cookie::wholeClip);
        store_->setLogType(clips.back(), logType);
    }
    EXPECT_THAT(store_->search(1, logShot | logImage), testing::UnorderedElementsAre(clips[0], clips[2]));
    EXPECT_THAT(store_->search(1, everything), testing::UnorderedElementsAreArray(clips));
    EXPECT_THAT(store_->search(2, everything), IsEmpty());
}

TEST_P(EditStoreContract, SearchesInTheOrderOfTheCookies) {
    for (int number = 0; number < 20; ++number) {
        store_->add(Cookie(Ox::UUID::generate(), 'E', Cookie::wholeClip));
    }
    std::vector<Cookie> const found = store_->search(1, 0x8000);
    EXPECT_EQ(found.size(), 20U);
    EXPECT_TRUE(std::is_sorted(found.begin(), found.end()));
}

TEST_P(EditStoreContract, OnlyAStillStands) {
    store_->setChannels(clip_, 1, 1);
    auto const velocityOf = [&](std::uint32_t number) {
        auto const edit = opened();
        Ox::Ptr<Cel> const cel = edit->getCel(edit->getId(number));
        return cel ? cel->get_strip_velocity(cel->get_start_ceh()) : -1.0;
    };
    EXPECT_EQ(velocityOf(0), 1.0);
    store_->setIsImage(clip_, true);
    EXPECT_EQ(velocityOf(0), 0.0);
    EXPECT_EQ(velocityOf(1), 1.0);
    EXPECT_EQ(velocityOf(2), -1.0);
}

TEST_P(EditStoreContract, CountsTheClipsThatAreOpen) {
    store_->add(clip_);
    {
        EditPtr one;
        EditPtr other;
        one.i_open(clip_);
        other.i_open(clip_);
        EXPECT_EQ(store_->getOpenCount(), 2);
    }
    EXPECT_EQ(store_->getOpenCount(), 0);
}

TEST_P(EditStoreContract, AnOpenClipOutlivesItsStore) {
    store_->setChannels(clip_, 0, 1);
    auto const edit = opened();
    installed_ = nullptr;
    store_ = nullptr;
    EXPECT_TRUE(edit->wantsAudioMetadata());
}

TEST_P(EditStoreContract, ManyWhoChangeOneClipLoseNothing) {
    constexpr int changes = 10;
    std::atomic<int> next{0};
    {
        Threads const threads(4, [&] {
            for (int number = 0; number < changes; ++number) {
                std::string const key = std::to_string(next++);
                store_->setAttrib(clip_, LightweightString<char>(key), "x");
            }
        });
    }
    EXPECT_EQ(store_->find(clip_)->attributes.size(), std::size_t{4 * changes});
}

INSTANTIATE_TEST_SUITE_P(Implementations, EditStoreContract, ::testing::Bool(),
                         [](auto const& tested) { return tested.param ? "Sqlite" : "Memory"; });

}  // namespace
}  // namespace test
