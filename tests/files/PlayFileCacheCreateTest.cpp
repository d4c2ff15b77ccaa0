#include <gmock/gmock.h>

#include "files/PlayUtil.h"
#include "tests/fakes/CacheFixture.h"
#include "tests/fakes/ScriptedWriter.h"
#include "toolkit/catalogue/DiskManager.h"

namespace test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// A drive M at /m, and a writer of the format "fmt".
class Create : public CacheFixture {
protected:
    Create() {
        DiskManager::instance().setDriveRoot('M', L"/m");
        Ox::FileWriterInfo::add(writer_, 100);
        params_.format = "fmt";
        params_.drive = 'M';
    }
    ~Create() override {
        Ox::FileWriterInfo::remove(writer_);
        DiskManager::instance().removeDrive('M');
    }

    Ox::Ptr<FileWriteInstance> create(Cookie const& cookie) { return PlayFileCache::create(cookie, params_); }
    static std::string textOf(Cookie const& cookie) { return cookie.asString().str(); }
    [[nodiscard]] std::vector<std::string> filed() const { return calls->with("catalogue.addMaterial"); }

    Ox::Ptr<ScriptedWriter> const writer_ = Ox::makePtr<ScriptedWriter>("fmt", calls);
    Ox::FileWriterParams params_;
    Cookie const sound_ = makeCookie(1, 'S', 1);
    Cookie const vision_ = makeCookie(1, 'V', 0);
};

TEST_F(Create, TakesTheFirstExtensionOfTheFormat) {
    writer_->extensions = {L"one", L"two"};
    ASSERT_TRUE(create(vision_));
    EXPECT_THAT(calls->with("writer.open"), ElementsAre("writer.open /m/Video/" + textOf(vision_) + ".one"));
}

TEST_F(Create, KeepsTheCataloguesNameForAFormatWithoutExtensions) {
    ASSERT_TRUE(create(vision_));
    EXPECT_THAT(calls->with("writer.open"), ElementsAre("writer.open /m/Video/" + textOf(vision_)));
}

TEST_F(Create, FilesSoundAndThenItsHeader) {
    params_.audioMetadata.resize(2);
    params_.audioMetadata[0].sampleRate = 44100.0;
    params_.audioMetadata[0].bitsPerSample = 24;
    Ox::Ptr<FileWriteInstance> const file = create(sound_);
    ASSERT_TRUE(file);
    std::string const entry = "catalogue.addMaterial " + textOf(sound_) + " M Sound/" + textOf(sound_) + " 0";
    EXPECT_THAT(filed(), ElementsAre(entry));
    EXPECT_EQ(calls->all().back(), "material.writeHeader " + textOf(sound_));
    EXPECT_STREQ(catalogue.header.medium, "sound");
    EXPECT_EQ(catalogue.header.input_rate, 44100.0);
    EXPECT_EQ(catalogue.header.bytes_per_sample, 3);
    EXPECT_EQ(catalogue.header.orig_fname, file->filename);
}

TEST_F(Create, DividesBitsByEightAsWholeNumbers) {
    params_.audioMetadata.resize(1);
    params_.audioMetadata[0].bitsPerSample = 23;
    params_.audioMetadata[0].bytesPerSample = 4;
    ASSERT_TRUE(create(sound_));
    EXPECT_EQ(catalogue.header.bytes_per_sample, 2);
}

TEST_F(Create, TakesSoundWithoutDescriptionForRate0) {
    ASSERT_TRUE(create(sound_));
    EXPECT_EQ(catalogue.header.input_rate, 0.0);
    EXPECT_EQ(catalogue.header.bytes_per_sample, 0);
}

TEST_F(Create, GivesAFileOfSoundItsStreamsAndNoSamples) {
    params_.audioMetadata.resize(2);
    Ox::Ptr<FileWriteInstance> const file = create(sound_);
    EXPECT_EQ(file->metadata->audioStreams.size(), 2U);
    EXPECT_EQ(file->metadata->audioSampleCount, 0U);
}

TEST_F(Create, FilesVisionAndThenItsHeader) {
    params_.video.setFrameRate({25, 1});
    ASSERT_TRUE(create(vision_));
    EXPECT_THAT(filed(), ElementsAre("catalogue.addMaterial " + textOf(vision_) + " M Video/" +
                                     textOf(vision_) + " 0"));
    EXPECT_STREQ(catalogue.header.medium, "vision");
    EXPECT_STREQ(catalogue.header.vision_type, "PAL");
}

TEST_F(Create, GivesUpAFileWhoseHeaderCantBeStoredButNotItsEntry) {
    catalogue.takesHeaders = false;
    for (Cookie const& cookie : {sound_, vision_}) {
        calls->clear();
        EXPECT_FALSE(create(cookie));
        EXPECT_EQ(filed().size(), 1U);
        EXPECT_THAT(calls->with("console"), IsEmpty());
    }
}

TEST_F(Create, TellsOfAFileThatCantBeMade) {
    writer_->openResult = 77;
    EXPECT_FALSE(create(vision_));
    EXPECT_THAT(calls->with("console"),
                ElementsAre("console PlayFile[" + textOf(vision_) +
                                "]::create: *** Unable to create material file (/m/Video/" + textOf(vision_) +
                                ") ***\n",
                            "console plf_open: failed to open file\n"));
    EXPECT_THAT(calls->with("log "), IsEmpty());
    EXPECT_THAT(filed(), IsEmpty());
}

TEST_F(Create, TellsTheSameWhereNoWriterKnowsTheFormat) {
    params_.format = "unknown";
    EXPECT_FALSE(create(vision_));
    EXPECT_EQ(calls->with("console").size(), 2U);
}

TEST_F(Create, ReportsACookieOfNoMediumAndGivesItsFile) {
    Cookie const image = makeCookie(1, 'I', 0);
    EXPECT_TRUE(create(image));
    EXPECT_THAT(calls->with("console"),
                ElementsAre("console PlayFile[" + textOf(image) + "]::create: *** Bad type ***\n"));
    EXPECT_THAT(filed(), IsEmpty());
    EXPECT_THAT(calls->with("material.writeHeader"), IsEmpty());
}

TEST_F(Create, PutsNothingIntoTheCache) {
    Ox::Ptr<FileWriteInstance> const file = create(vision_);
    EXPECT_FALSE(PlayFileCache::Shared()->isOpen(vision_, DecodeFormat(), 0));
}

TEST_F(Create, DropsWhatAFailedWriterLeaves) {
    writer_->openResult = oxFailure;
    writer_->leavesAFile = true;
    EXPECT_FALSE(PlayUtil::openWrite(L"/m/a", params_));
}

TEST_F(Create, TakesOnlyOneForSuccess) {
    writer_->openResult = 2;
    writer_->leavesAFile = true;
    EXPECT_FALSE(PlayUtil::openWrite(L"/m/a", params_));
}

TEST_F(Create, AsksTheWriterOfTheLowestNumberFirst) {
    auto const earlier = Ox::makePtr<ScriptedWriter>("fmt", calls);
    earlier->extensions = {L"early"};
    writer_->extensions = {L"late"};
    Ox::FileWriterInfo::add(earlier, 50);
    EXPECT_EQ(Ox::FileWriterInfo::getFileWriterFor(params_), earlier);
    EXPECT_EQ(Ox::FileWriterInfo::getExtensionsForFormat("fmt").front(), L"early");
    Ox::FileWriterInfo::remove(earlier);
    EXPECT_EQ(Ox::FileWriterInfo::getFileWriterFor(params_), writer_);
}

}  // namespace
}  // namespace test
