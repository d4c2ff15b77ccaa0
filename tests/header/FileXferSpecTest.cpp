#include "header/FileXferSpec.h"

#include <gmock/gmock.h>

#include "host/memory/MemoryTaskLog.h"
#include "tests/fakes/CacheFixture.h"
#include "toolkit/catalogue/DiskManager.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Something else that a plug-in offers under the same type.
class OtherResource : public OxResourceTypeBase {};

/// A manager that copies nothing and answers as it is told.
class ScriptedManager : public iFileXferManager {
public:
    ScriptedManager(std::string name, std::shared_ptr<CallLog> calls)
        : name_(std::move(name)), calls_(std::move(calls)) {
        OxDeviceDriverManager::instance().add(fileXferResource, this);
    }
    ~ScriptedManager() override { OxDeviceDriverManager::instance().remove(this); }

    [[nodiscard]] bool canTransfer(FileXferSpec*) override {
        calls_->add(name_ + ".canTransfer");
        return isAble;
    }
    OxResult transfer(FileXferSpec* spec, LoggerHandle& log) override {
        calls_->add(name_ + ".transfer " + std::to_string(spec->startSample) + " " +
                    std::to_string(spec->endSample) + " status " + std::to_string(spec->xferStatus));
        log.reportProgress({}, 1.0);
        onTransfer();
        return result;
    }

    bool isAble = true;
    /// Run at the end of each transfer.
    std::function<void()> onTransfer = [] {};
    OxResult result = oxSuccess;

private:
    std::string const name_;
    std::shared_ptr<CallLog> const calls_;
};

/// A clip of 100 frames at 25 a second, and one of 1000 samples at 100 a second.
class Extract : public CacheFixture {
protected:
    Extract() {
        DiskManager::instance().setDriveRoot('M', L"/m");
        addClip("/m/v.mov", 'V', 1);
        addClip("/m/s.wav", 'S', 1);
        catalogue.addEdit(makeCookie(1, 'E', 255), nullptr);
        catalogue.setAudioRate(makeCookie(1, 'E', 255), Aud::SampleRate(100.0));
    }
    ~Extract() override { DiskManager::instance().removeDrive('M'); }

    [[nodiscard]] FileXferSpec specOf(CookieType type, double start, double end) const {
        FileXferSpec spec;
        spec.source = makeCookie(1, type, type == 'S' ? 1 : 0);
        spec.destination = makeCookie(2, type, type == 'S' ? 1 : 0);
        spec.frameRate = {25, 1};
        spec.startTime = start;
        spec.endTime = end;
        return spec;
    }
    OxResult extract(CookieType type, double start, double end) {
        FileXferSpec spec = specOf(type, start, end);
        return spec.get_extract(handle_);
    }
    /// The samples that a manager was handed.
    [[nodiscard]] std::vector<std::string> transfers() const { return calls->with(".transfer "); }
    [[nodiscard]] std::vector<std::string> filed() const { return calls->with("catalogue.addMaterial"); }

    Ox::Ptr<ScriptedReader> const reader_ = addReader("any");
    Ox::Ptr<MemoryTaskLog> const log_ = Ox::makePtr<MemoryTaskLog>();
    LoggerHandle handle_{log_};
    ScriptedManager manager_{"A", calls};
};

TEST_F(Extract, GoesToTheDriveForRenders) {
    EXPECT_EQ(FileXferSpec().drive, DriveId('M'));
    DiskManager::instance().setDriveRoot('R', L"/r");
    DiskManager::instance().setDriveForTask("render", 'R');
    EXPECT_EQ(FileXferSpec().drive, DriveId('R'));
    DiskManager::instance().removeDrive('R');
}

TEST_F(Extract, HandsTheSectionToAPluginAndFilesTheCopy) {
    EXPECT_EQ(extract('V', 0.04, 2.0), 1U);
    EXPECT_THAT(transfers(), ElementsAre("A.transfer 1 50 status 0"));
    std::string const copy = makeCookie(2, 'V', 0).asString().str();
    EXPECT_THAT(filed(), ElementsAre("catalogue.addMaterial " + copy + " M Video/" + copy + " 0"));
    EXPECT_EQ(log_->calcAggregateProgress(), 1.0);
}

TEST_F(Extract, TakesATimeJustBeforeAFrameForTheFrame) {
    FileXferSpec spec = specOf('V', 0.0399, 0.0398);
    spec.get_vision_samples();
    EXPECT_EQ(spec.startSample, 1U);
    EXPECT_EQ(spec.endSample, 0U);
}

TEST_F(Extract, IsMoreExactWithSound) {
    FileXferSpec spec = specOf('S', 0.0099995, 0.009998);
    spec.get_sound_samples();
    EXPECT_EQ(spec.startSample, 1U);
    EXPECT_EQ(spec.endSample, 0U);
}

TEST_F(Extract, TakesTheRateOfTheClipsSound) {
    EXPECT_EQ(get_soundfile_sample_rate(makeCookie(1, 'S', 1)), 100.0);
    EXPECT_EQ(get_soundfile_sample_rate(makeCookie(9, 'S', 1)), 0.0);
    EXPECT_EQ(catalogue.openEdits(), 0);
    catalogue.setAudioRate(makeCookie(1, 'E', 255), Aud::SampleRate(48000.0, 1000.0 / 1001.0));
    EXPECT_DOUBLE_EQ(get_soundfile_sample_rate(makeCookie(1, 'S', 1)), 48000000.0 / 1001.0);
}

TEST_F(Extract, CopiesNothingOfASectionThatBeginsBefore0) {
    EXPECT_EQ(extract('V', -1.0, 5.0), 1U);
    EXPECT_EQ(extract('V', -2.0, -1.0), 1U);
    EXPECT_EQ(extract('V', -2.5, 0.0), 1U);
    std::string const name = makeCookie(1, 'V', 0).asString().str();
    EXPECT_THAT(calls->with("get_extract"),
                ElementsAre("console get_extract: file '" + name + "' needs 1 seconds black padding\n",
                            "console get_extract: requested section before start\n",
                            "console get_extract: file '" + name + "' needs 2.5 seconds black padding\n"));
    EXPECT_THAT(transfers(), IsEmpty());
    EXPECT_THAT(filed(), IsEmpty());
}

TEST_F(Extract, AsksForTheStartOffsetFirstAlsoOfASectionOfWhichNothingIsCopied) {
    catalogue.onStartOffset = [this](Cookie const& cookie) {
        calls->add("offset of " + cookie.asString().str());
    };
    EXPECT_EQ(extract('V', -2.0, -1.0), 1U);
    EXPECT_EQ(extract('S', 1.0, 1.0), 2059U);
    EXPECT_THAT(calls->all(), ElementsAre("offset of " + makeCookie(1, 'V', 0).asString().str(),
                                          "console get_extract: requested section before start\n",
                                          "offset of " + makeCookie(1, 'S', 1).asString().str()));
}

TEST_F(Extract, RefusesAnEmptyOrReversedSection) {
    EXPECT_EQ(extract('V', 1.0, 1.0), 2059U);
    EXPECT_EQ(extract('V', 2.0, 1.0), 2059U);
    EXPECT_EQ(extract('I', 2.0, 1.0), 2059U);
    EXPECT_THAT(transfers(), IsEmpty());
}

TEST_F(Extract, RefusesASourceOfNoMedium) {
    EXPECT_EQ(extract('I', 0.0, 1.0), 0U);
    EXPECT_THAT(calls->with("console"), ElementsAre("console get_extract_samples(): Unknown Cookie type"));
}

TEST_F(Extract, ClipsASectionToTheFile) {
    EXPECT_EQ(extract('V', 1.0, 100.0), 1U);
    EXPECT_EQ(extract('S', 1.0, 100.0), 1U);
    EXPECT_THAT(transfers(), ElementsAre("A.transfer 25 100 status 0", "A.transfer 100 1000 status 0"));
}

TEST_F(Extract, AddsTheStartOffsetToSoundBeforeItIsClipped) {
    catalogue.setStartOffset(makeCookie(1, 'S', 1), 60);
    EXPECT_EQ(extract('S', 1.0, 2.0), 1U);
    EXPECT_EQ(extract('S', 1.0, 9.9), 1U);
    EXPECT_THAT(transfers(), ElementsAre("A.transfer 160 260 status 0", "A.transfer 160 1000 status 0"));
}

TEST_F(Extract, AddsNoStartOffsetToVision) {
    catalogue.setStartOffset(makeCookie(1, 'V', 0), 60);
    EXPECT_EQ(extract('V', 1.0, 2.0), 1U);
    EXPECT_THAT(transfers(), ElementsAre("A.transfer 25 50 status 0"));
}

TEST_F(Extract, PassesOnAStartBehindTheClippedEnd) {
    EXPECT_EQ(extract('V', 8.0, 9.0), 1U);
    EXPECT_THAT(transfers(), ElementsAre("A.transfer 200 100 status 0"));
}

TEST_F(Extract, TellsOfASourceThatCantBeOpened) {
    fileManager.removeFile("/m/v.mov");
    EXPECT_EQ(extract('V', 0.0, 1.0), 0U);
    EXPECT_EQ(calls->with("PlayFile::extract").back(),
              "log PlayFile::extract(): Unable to open input material file\n");
    EXPECT_THAT(transfers(), IsEmpty());
}

TEST_F(Extract, HoldsTheSourceOnlyThroughTheCacheWhileItIsCopied) {
    std::vector<unsigned> alive;
    manager_.onTransfer = [&] {
        alive.push_back(reader_->aliveCount());
        PlayFileCache::Shared()->remove(L"/m/v.mov");
        alive.push_back(reader_->aliveCount());
    };
    EXPECT_EQ(extract('V', 0.0, 1.0), 1U);
    EXPECT_THAT(alive, ElementsAre(1U, 0U));
}

TEST_F(Extract, TakesTheFirstManagerThatCan) {
    OtherResource other;
    OxDeviceDriverManager::instance().add(fileXferResource, &other);
    ScriptedManager const second("B", calls);
    manager_.isAble = false;
    EXPECT_EQ(extract('V', 0.0, 1.0), 1U);
    EXPECT_THAT(calls->with(".canTransfer"), ElementsAre("A.canTransfer", "B.canTransfer"));
    EXPECT_THAT(transfers(), ElementsAre("B.transfer 0 25 status 0"));
    OxDeviceDriverManager::instance().remove(&other);
}

TEST_F(Extract, FailsWithoutAWordWhereNoManagerCan) {
    manager_.isAble = false;
    EXPECT_EQ(extract('V', 0.0, 1.0), 0U);
    EXPECT_THAT(calls->with("extract"), IsEmpty());
    EXPECT_THAT(filed(), IsEmpty());
}

TEST_F(Extract, TellsHowACopyEndedAndFilesNothingThatFailed) {
    for (auto const& [result, words] :
         std::vector<std::pair<OxResult, std::string>>{{3, "playfile_extract: *** Interrupted ***\n"},
                                                       {0, "playfile_extract: *** Error copying file ***\n"},
                                                       {77, "playfile_extract: *** Error ***\n"}}) {
        calls->clear();
        manager_.result = result;
        EXPECT_EQ(extract('V', 0.0, 1.0), result);
        EXPECT_THAT(calls->with("playfile_extract"), ElementsAre("console " + words, "log " + words));
        EXPECT_THAT(filed(), IsEmpty());
    }
}

TEST_F(Extract, ForgetsTheStatusOfAnEarlierCopy) {
    FileXferSpec spec = specOf('V', 0.0, 1.0);
    spec.xferStatus = 9;
    EXPECT_EQ(spec.get_extract(handle_), 1U);
    EXPECT_THAT(transfers(), ElementsAre("A.transfer 0 25 status 0"));
}

}  // namespace
}  // namespace test
