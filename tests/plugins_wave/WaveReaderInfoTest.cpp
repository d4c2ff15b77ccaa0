/// The reader among others: for which files it answers, and how it is chosen.
#include "files/PlayFileCache.h"
#include "files/QuarantinedFiles.h"
#include "gtest/gtest.h"
#include "host/memory/MemoryCatalogue.h"
#include "plugins/wave/WaveReaderInfo.h"
#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/BuiltPlugin.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WaveMaker.h"

namespace {

using namespace test;
using playfile_wave::WaveReaderInfo;

constexpr std::uint32_t nothing = 0;

class WaveReaderInfoTest : public ::testing::Test {
protected:
    bool canOpen(std::string const& bytes, OpenType type = OpenType::audio) {
        return info.canOpen(folder.write("file", bytes), type);
    }
    /// What the reader offers for a file of these bytes that somebody has described so.
    std::uint32_t readableTypes(std::string const& bytes, char const* codec,
                                OpenType type = OpenType::audio) {
        Aud::Metadata stream;
        stream.codec = codec;
        auto const name = folder.write("file", bytes);
        PlayFileMetadataRep metadata(name);
        return info.getReadableTypes(name, type, &metadata, stream);
    }

    std::string const good = wave::plainFile({}, 10);
    TemporaryFolder folder;
    LogRecorder log;
    WaveReaderInfo info;
};

TEST_F(WaveReaderInfoTest, TakesAllFormsWhateverTheirNames) {
    for (char const* const form : {"RIFF", "RF64", "BW64"}) {
        EXPECT_TRUE(canOpen(std::string(form) + "....WAVE")) << form;
    }
}

TEST_F(WaveReaderInfoTest, LeavesOtherFilesAlone) {
    for (std::string const bytes :
         {"", "RIFF", "RIFF....WAV", "RIFF....AVI ", "RIFX....WAVE", "....RIFFWAVE"}) {
        EXPECT_FALSE(canOpen(bytes)) << bytes;
    }
    EXPECT_FALSE(info.canOpen(folder.name("missing"), OpenType::audio));
    EXPECT_FALSE(info.canOpen(fromUTF8(folder.path().c_str()), OpenType::audio));
    EXPECT_TRUE(log.log().empty());
}

TEST_F(WaveReaderInfoTest, AnswersForSoundAlone) {
    auto const name = folder.write("file", good);
    for (OpenType const type : {OpenType::unknown, OpenType::video, OpenType::both}) {
        EXPECT_FALSE(info.canOpen(name, type));
        EXPECT_FALSE(info.openFile(name, DecodeFormat(), type));
        EXPECT_EQ(readableTypes(good, "pcm_s16le", type), nothing);
    }
    EXPECT_TRUE(info.openFile(name, DecodeFormat(), OpenType::audio));
}

TEST_F(WaveReaderInfoTest, OffersSoundOfAFileThatIsDescribedInACodecOfItsOwn) {
    EXPECT_EQ(readableTypes(good, "pcm_s16le"), OpenType(OpenType::audio).mask());
    EXPECT_EQ(readableTypes(good, "pcm_f64le"), OpenType(OpenType::audio).mask());
    EXPECT_EQ(readableTypes("no wave file", "pcm_s16le"), nothing);
}

TEST_F(WaveReaderInfoTest, OffersNothingInCodecsOfOthers) {
    for (char const* const codec : {"", "mp3", "pcm_alaw", "pcm_s16be"}) {
        EXPECT_EQ(readableTypes(good, codec), nothing) << codec;
    }
}

TEST_F(WaveReaderInfoTest, HasAName) {
    EXPECT_EQ(info.readerName.str(), "Wave");
}

/// The plug-in as it is loaded, on the whole road.
class WavePluginTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(loadBuiltPlugin("wave")); }
    ~WavePluginTest() override { PlayFileCache::Shared()->closeAll(); }

    Ox::Ptr<FileReadInstance> open(std::string const& bytes) {
        path = folder.write("a.wav", bytes);
        MemoryCatalogue::instance().add(cookie, path);
        return PlayFileCache::Shared()->open(cookie, DecodeFormat::getDefault(), 0);
    }

    TemporaryFolder folder;
    LogRecorder log;
    Cookie const cookie = makeCookie(1, 'S', 1);
    LightweightString<wchar_t> path;
};

TEST_F(WavePluginTest, ServesSoundThroughTheCache) {
    Ox::Ptr<FileReadInstance> const file = open(wave::plainFile({}, 10));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->readableTypes, OpenType(OpenType::audio).mask());
    EXPECT_EQ(PlayFileCache::getSampleCount(cookie), 10U);
    EXPECT_EQ(log.log(), LogRecorder::Lines{"Open   \"" + toUTF8(path).str() + "\" with Wave for audio\n"});
}

TEST_F(WavePluginTest, ABadFileLeavesALineAndAMark) {
    EXPECT_FALSE(open(wave::plainFile({}, 10).substr(0, 20)));
    EXPECT_EQ(log.count("Wave: \"" + toUTF8(path).str() + "\" "), 1U);
    EXPECT_TRUE(QuarantinedFiles::contains(path));
    QuarantinedFiles::remove(path);
}

}  // namespace
