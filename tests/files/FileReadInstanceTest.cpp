/// What an open file does of itself, whatever its reader is.
#include "files/FileReadInstance.h"

#include <memory>

#include "gtest/gtest.h"
#include "tests/fakes/ScriptedFile.h"
#include "video/QueuePools.h"

namespace {

/// A reader that overrides nothing that it needn't.
class PlainFile : public FileReadInstance {
public:
    using FileReadInstance::queueReadRequest;
    using FileReadInstance::readVideo;
    explicit PlainFile(OpenType type = OpenType::video) : FileReadInstance(L"/m/a.mov", levelProxy, type) {}
    [[nodiscard]] LightweightString<char> getDescription() const override { return "plain"; }
};

TEST(FileReadInstanceTest, StartsWithWhatItWasMadeFrom) {
    PlainFile const file(OpenType::both);
    EXPECT_EQ(narrow(file.filename), "/m/a.mov");
    EXPECT_EQ(narrow(file.metadata->filename), "/m/a.mov");
    EXPECT_EQ(file.openType, OpenType::both);
    EXPECT_EQ(file.decodeFormat.level, levelProxy);
    EXPECT_EQ(file.readableTypes, 0U);
    EXPECT_EQ(file.lastUse, 0xFFFFFFFFFFFFFFFFULL);
    EXPECT_FALSE(file.id().valid());
}

TEST(FileReadInstanceTest, KeepsTheStampThatItIsGiven) {
    PlainFile file;
    file.id(IdStamp(42));
    EXPECT_EQ(file.id(), IdStamp(42));
}

TEST(FileReadInstanceTest, AnswersForAReaderThatOverridesNothing) {
    auto const file = Ox::makePtr<PlainFile>();
    Ox::Ptr<IndexInfoRep> info;
    unsigned size = 7;
    file->OxFileIxCache_open(info, 5);
    file->recalculateSize(1, size);
    EXPECT_FALSE(info);
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(file->getVideoOrigin(), 0);
    EXPECT_TRUE(file->getDecodeOptions(file).empty());
    EXPECT_TRUE(file->getDecodeOptionValues().empty());
}

TEST(FileReadInstanceTest, ReadsNoFrameUnlessItsReaderDoes) {
    PlainFile file;
    Ox::Ptr<FrameBufferRep> buffer;
    Ox::Ptr<VideoReadRequest> request;
    EXPECT_EQ(file.readVideo(buffer, request), 3U);
}

TEST(FileReadInstanceTest, DoesNothingWithQueuesThatItNeverTook) {
    auto file = Ox::makePtr<PlainFile>();
    file->purge();
    file->limitUsage();
    file = nullptr;
    EXPECT_EQ(videoQueuePool().getCreated(), 0U);
    EXPECT_EQ(videoQueuePool().getFreeCount(), 0U);
}

/// A file whose options are a, b and c.
class DecodeOptionsTest : public ::testing::Test {
protected:
    DecodeOptionsTest() {
        for (char const* key : {"a", "b", "c"}) {
            script->optionValues.set(key, "own");
        }
    }
    static std::string textOf(configb const& values) {
        std::string text;
        for (auto const& [key, value] : values) {
            text += key.str() + "=" + value.str() + " ";
        }
        return text;
    }
    FileScriptPtr script = std::make_shared<FileScript>();
    Ox::Ptr<FileReadInstance> file = makeVideoFile(script);
};

TEST_F(DecodeOptionsTest, TakeTheSavedValuesOfTheirKeysInTheirOwnOrder) {
    configb saved;
    saved.set("c", "saved");
    saved.set("a", "saved");
    EXPECT_EQ(textOf(file->initDecodeOptionValues(saved)), "a=saved b=own c=saved ");
    ASSERT_EQ(script->optionsSet().size(), 1U);
    EXPECT_EQ(textOf(script->optionsSet().front()), "a=saved b=own c=saved ");
}

TEST_F(DecodeOptionsTest, IgnoreSavedKeysThatTheReaderDoesNotHave) {
    configb saved;
    saved.set("x", "saved");
    EXPECT_EQ(textOf(file->initDecodeOptionValues(saved)), "a=own b=own c=own ");
}

TEST_F(DecodeOptionsTest, AreSetEvenOnAReaderThatHasNone) {
    script->optionValues = configb();
    configb saved;
    saved.set("a", "saved");
    EXPECT_TRUE(file->initDecodeOptionValues(saved).empty());
    ASSERT_EQ(script->optionsSet().size(), 1U);
    EXPECT_TRUE(script->optionsSet().front().empty());
}

/// Own metadata that hold something everywhere, and another reader's that hold nothing yet.
class UpdateMetadataTest : public ::testing::Test {
protected:
    UpdateMetadataTest() {
        own.videoSampleCount = 100;
        own.audioSampleCount = 1000;
        other->videoSampleCount = 50;
        other->audioSampleCount = 500;
    }
    void makeOtherVariable() {
        other->frameRateMap = Ox::makePtr<Map>();
        other->minFrameRate = 20.0;
        other->maxFrameRate = 30.0;
        other->videoSequence.frameRate = {25, 1};
    }
    void update() { file->updateMetadataFrom(other); }

    class Map : public virtual iObject {};
    Ox::Ptr<FileReadInstance> file = Ox::makePtr<PlainFile>();
    PlayFileMetadataRep& own = *file->metadata;
    Ox::Ptr<PlayFileMetadataRep> other = Ox::makePtr<PlayFileMetadataRep>(L"/m/a.mov");
};

TEST_F(UpdateMetadataTest, CopiesAValidLabelToAnInvalidOne) {
    other->editLabel = EditLabel("reel", "01:00:00:00");
    update();
    EXPECT_EQ(own.editLabel.reel().str(), "reel");
}

TEST_F(UpdateMetadataTest, KeepsAValidLabel) {
    own.editLabel = EditLabel("mine", "");
    other->editLabel = EditLabel("reel", "");
    update();
    EXPECT_EQ(own.editLabel.reel().str(), "mine");
}

TEST_F(UpdateMetadataTest, KeepsAValidLabelBeforeAnInvalidOne) {
    own.editLabel = EditLabel("mine", "");
    update();
    EXPECT_EQ(own.editLabel.reel().str(), "mine");
}

TEST_F(UpdateMetadataTest, CopiesTheOriginCodeOnlyWhereThereIsNone) {
    other->originCode = -5;
    update();
    EXPECT_EQ(own.originCode, -5);
    other->originCode = 7;
    update();
    EXPECT_EQ(own.originCode, -5);
}

TEST_F(UpdateMetadataTest, KeepsItsOrientationBeforeAnUprightOne) {
    own.orientation = 6;
    update();
    EXPECT_EQ(own.orientation, 6);
}

TEST_F(UpdateMetadataTest, OverwritesItsOrientationAndItsValidPosters) {
    makeNumberedBuffer(1)->getSurface(0, own.posterSurface);
    own.orientation = 3;
    other->orientation = 8;
    update();
    EXPECT_EQ(own.orientation, 8);
    EXPECT_EQ(own.posterSurface.getOrientation(), 8);
}

TEST_F(UpdateMetadataTest, LeavesAnInvalidPosterInvalid) {
    other->orientation = 8;
    update();
    EXPECT_FALSE(own.posterSurface.valid());
}

TEST_F(UpdateMetadataTest, CopiesEveryExtraEntryAndOverwrites) {
    own.extraConfig.set("kept", "own");
    own.extraConfig.set("codec", "own");
    other->extraConfig.set("codec", "other");
    other->extraConfig.set("container", "other");
    update();
    LightweightString<char> value;
    EXPECT_EQ(own.extraConfig.size(), 3U);
    EXPECT_EQ(own.extraConfig.in("codec", value), 0);
    EXPECT_EQ(value.str(), "other");
    EXPECT_EQ(own.extraConfig.in("kept", value), 0);
    EXPECT_EQ(value.str(), "own");
}

TEST_F(UpdateMetadataTest, AppliesTheOthersFlagsUnlessTheyAreZero) {
    own.compressionFlags = 5;
    update();
    EXPECT_EQ(own.compressionFlags, 5U);
    other->compressionFlags = 9;
    update();
    EXPECT_EQ(own.compressionFlags, 9U);
}

TEST_F(UpdateMetadataTest, ChangesNeitherCountForAConstantStandardRate) {
    other->videoSequence.frameRate = {25, 1};
    other->audioSampleCount = 5000;
    update();
    EXPECT_EQ(own.videoSampleCount, 100U);
    EXPECT_EQ(own.audioSampleCount, 1000U);
    EXPECT_EQ(own.videoSequence.frameRate, Ox::FrameRate());
}

TEST_F(UpdateMetadataTest, CopiesRatesMapAndFrameCountForAVariableRate) {
    makeOtherVariable();
    update();
    EXPECT_EQ(own.minFrameRate, 20.0);
    EXPECT_EQ(own.maxFrameRate, 30.0);
    EXPECT_EQ(own.frameRateMap, other->frameRateMap);
    EXPECT_EQ(own.videoSequence.frameRate, (Ox::FrameRate{25, 1}));
    EXPECT_EQ(own.videoSampleCount, 50U);
}

TEST_F(UpdateMetadataTest, CopiesThemForANonStandardRateTooAndSoForgetsItsMap) {
    own.frameRateMap = Ox::makePtr<Map>();
    other->videoSequence.frameRate = {17, 1};
    update();
    EXPECT_EQ(own.videoSampleCount, 50U);
    EXPECT_FALSE(own.frameRateMap);
}

TEST_F(UpdateMetadataTest, TakesTheLargerAudioSampleCountWhereAllElseOverwrites) {
    makeOtherVariable();
    update();
    EXPECT_EQ(own.audioSampleCount, 1000U);
    other->audioSampleCount = 0x100000000ULL;
    update();
    EXPECT_EQ(own.audioSampleCount, 0x100000000ULL);
}

}  // namespace
