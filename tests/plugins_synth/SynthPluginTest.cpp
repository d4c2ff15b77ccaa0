/// Made files on the whole road: plug-in, catalogue, preferences, cache, queue.
#include <future>
#include <memory>
#include <string>

#include "files/PlayFileCache.h"
#include "files/QuarantinedFiles.h"
#include "gtest/gtest.h"
#include "host/memory/MemoryCatalogue.h"
#include "plugins/synth/SynthCode.h"
#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/LogToCalls.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/WatchedThreads.h"
#include "tests/support/SynthPlugin.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/plugins/FileReaderInfo.h"
#include "video/VideoReadRequest.h"

namespace {

class SynthPluginTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(test::loadSynthPlugin()); }
    ~SynthPluginTest() override {
        request = nullptr;
        EXPECT_TRUE(threads.waitUntilAllIdle());
        PlayFileCache::Shared()->closeAll();
    }

    /// Makes a file and files it in the catalogue.
    void makeFile(std::string const& name, std::string const& text = "") {
        path = folder.write(name, text);
        MemoryCatalogue::instance().add(cookie, path);
    }
    /// A file of 100 frames of 640 x 360 with more text.
    void makeBars(std::string const& text = "") { makeFile("bars_100f_640x360_25fps.synth", text); }
    Ox::Ptr<FileReadInstance> open() {
        return PlayFileCache::Shared()->open(cookie, DecodeFormat::getDefault(), 0);
    }
    /// Reads a frame; its picture is invalid if that failed.
    Ox::Image::Surface read(int frame, DecodeFormat const& format = DecodeFormat::getDefault()) {
        RecordingIssuer issuer;
        Ox::Image::Surface picture;
        OxResult const result = PlayFileCache::Shared()->videoReadRequest(
            request, cookie, frame, false, resultDecompressed, format, issuer.getProxy());
        if (result == oxSuccess && issuer.waitForCalls(1) && issuer.only().status == requestComplete) {
            Ox::dynamicPtrCast<FrameBufferRep>(issuer.only().result)->getSurface(0, picture);
        }
        return picture;
    }
    /// What the reader says of a file that it can't open.
    std::string complaint() {
        EXPECT_FALSE(open());
        auto const lines = calls->with("log synth: ");
        return lines.empty() ? "" : lines.front().substr(lines.front().rfind("\": ") + 3);
    }

    WatchedThreads& threads = WatchedThreads::instance();
    std::shared_ptr<CallLog> const calls = std::make_shared<CallLog>();
    LogToCalls const log{calls};
    test::TemporaryFolder const folder;
    Cookie const cookie = makeCookie(1);
    LightweightString<wchar_t> path;
    Ox::Ptr<VideoReadRequest> request;
};

TEST_F(SynthPluginTest, ReadsAFileMadeFromItsNameAlone) {
    makeBars();
    Ox::Ptr<FileReadInstance> const file = open();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->metadata->videoSampleCount, 100U);
    EXPECT_EQ(file->metadata->image.getWidth(), 640U);
    EXPECT_EQ(file->metadata->image.getHeight(), 360U);
    EXPECT_EQ(file->metadata->image.getDataFormat(), Ox::Image::yuv420p);
    EXPECT_EQ(file->metadata->videoSequence.frameRate, (Ox::FrameRate{25, 1}));
    EXPECT_EQ(calls->count("log Open   \"" + narrow(path) + "\" with synth for video\n"), 1U);
}

TEST_F(SynthPluginTest, TakesAnUnevenRateFromTheName) {
    makeFile("a_10f_64x32_30000-1001fps_gray.synth");
    Ox::Ptr<FileReadInstance> const file = open();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->metadata->videoSequence.frameRate, (Ox::FrameRate{30000, 1001}));
    EXPECT_EQ(file->metadata->image.getDataFormat(), Ox::Image::gray8);
}

TEST_F(SynthPluginTest, LetsTheTextWinOverTheName) {
    makeBars("# a comment\n\n frames = 7\r\nrate=30000/1001\norientation = 6\ngroup = 8\nstreaming = yes\n");
    Ox::Ptr<FileReadInstance> const file = open();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->metadata->videoSampleCount, 7U);
    EXPECT_EQ(file->metadata->videoSequence.frameRate, (Ox::FrameRate{30000, 1001}));
    EXPECT_EQ(file->metadata->orientation, 6);
    EXPECT_TRUE(file->metadata->frameGrouped);
    EXPECT_EQ(file->metadata->framesPerGroup, 8U);
    EXPECT_TRUE(file->metadata->readStreaming());
}

TEST_F(SynthPluginTest, EveryFrameBearsItsNumberInEveryFormat) {
    for (char const* const format : {"gray", "rgb24", "yuv420p"}) {
        makeFile(std::string("a_100f_33x17_25fps_") + format + ".synth");
        for (int const frame : {0, 1, 42, 99}) {
            EXPECT_EQ(SynthCode::read(read(frame)), std::uint32_t(frame)) << format;
        }
        EXPECT_FALSE(read(100).valid());
    }
}

TEST_F(SynthPluginTest, MakesPicturesThatDiffer) {
    makeFile("a_100f_64x64_25fps_gray.synth");
    Ox::Image::Surface const a = read(1);
    Ox::Image::Surface const b = read(2);
    EXPECT_NE(a.getPlane(0).data[a.getPlane(0).stride * 40], b.getPlane(0).data[b.getPlane(0).stride * 40]);
}

TEST_F(SynthPluginTest, HonoursTheSizeAndTheFormatThatAreWanted) {
    makeBars();
    DecodeFormat format = DecodeFormat::getDefault();
    format.setWidth(100);
    format.setHeight(50);
    format.setDataFormat(Ox::Image::rgb24);
    Ox::Image::Surface const picture = read(5, format);
    EXPECT_EQ(picture.getWidth(), 100U);
    EXPECT_EQ(picture.getHeight(), 50U);
    EXPECT_EQ(picture.getDataFormat(), Ox::Image::rgb24);
    EXPECT_EQ(SynthCode::read(picture), 5U);
}

TEST_F(SynthPluginTest, NumbersItsFramesFromItsOrigin) {
    makeBars("origin = 90000");
    EXPECT_EQ(SynthCode::read(read(5)), 90005U);
    EXPECT_EQ(request->frame, 90005U);
}

TEST_F(SynthPluginTest, AFileOfOneFrameHasEveryFrame) {
    makeBars("frames = 1");
    EXPECT_EQ(SynthCode::read(read(12345)), 12345U);
}

TEST_F(SynthPluginTest, FailsTheFramesThatAreToFail) {
    makeBars("fault = 3\nfault = 5");
    EXPECT_FALSE(read(3).valid());
    EXPECT_TRUE(threads.waitUntilAllIdle()) << "the status is stored after the issuers are told";
    EXPECT_EQ(request->getRequestStatus(), requestFailed);
    EXPECT_EQ(SynthCode::read(read(4)), 4U);
    EXPECT_FALSE(read(5).valid());
}

TEST_F(SynthPluginTest, FailsToOpenWhenItIsToAndLeavesAMark) {
    makeBars("failopen = yes");
    EXPECT_EQ(complaint(), "opening fails as its text says\n");
    EXPECT_TRUE(QuarantinedFiles::contains(path));
    QuarantinedFiles::remove(path);
    EXPECT_FALSE(QuarantinedFiles::contains(path));
}

TEST_F(SynthPluginTest, HoldsReadsUntilAFileVanishes) {
    folder.write("hold", "");
    makeBars("hold = " + folder.file("hold"));
    ASSERT_TRUE(open());
    auto reading = std::async(std::launch::async, [&] { return SynthCode::read(read(5)); });
    std::filesystem::remove(folder.file("hold"));
    EXPECT_EQ(reading.get(), 5U);
}

TEST_F(SynthPluginTest, HoldsItsOpenUntilAFileVanishesWithTheMarkHidden) {
    folder.write("hold", "");
    makeBars("holdopen = " + folder.file("hold"));
    auto opening = std::async(std::launch::async, [&] { return open(); });
    std::filesystem::remove(folder.file("hold"));
    EXPECT_TRUE(opening.get());
    EXPECT_FALSE(QuarantinedFiles::contains(path));
}

TEST_F(SynthPluginTest, ServesPicturesOnly) {
    makeBars();
    Cookie const sound = makeCookie(1, 'S', 1);
    MemoryCatalogue::instance().add(sound, path);
    EXPECT_FALSE(PlayFileCache::Shared()->open(sound, DecodeFormat::getDefault(), 0));
}

TEST_F(SynthPluginTest, LeavesFilesOfOtherNamesAlone) {
    makeFile("bars_100f_640x360_25fps.mov");
    EXPECT_EQ(complaint(), "");
}

TEST_F(SynthPluginTest, NamesTheLineThatItCannotRead) {
    makeBars("frames = 7\n\n# comment\nwidth = wide\n");
    EXPECT_EQ(complaint(), "line 4: \"wide\" is no number from 1 to 16384\n");
}

/// One wrong line, and what is said of it.
struct WrongText {
    char const* text;
    char const* complaint;
};

class WrongTextTest : public SynthPluginTest, public ::testing::WithParamInterface<WrongText> {};

TEST_P(WrongTextTest, IsNamed) {
    makeBars(GetParam().text);
    EXPECT_EQ(complaint(), std::string(GetParam().complaint) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrongTextTest,
    ::testing::Values(WrongText{"frames", "line 1: \"frames\" isn't of the form key = value"},
                      WrongText{"speed = 3", "line 1: \"speed\" is no setting"},
                      WrongText{"frames = -1", "line 1: \"-1\" is no number from 0 to 4294967295"},
                      WrongText{"frames = 4294967296",
                                "line 1: \"4294967296\" is no number from 0 to 4294967295"},
                      WrongText{"frames =", "line 1: \"\" is no number from 0 to 4294967295"},
                      WrongText{"rate = 0", "line 1: \"0\" is no rate like 25 or 30000/1001"},
                      WrongText{"rate = 25/0", "line 1: \"25/0\" is no rate like 25 or 30000/1001"},
                      WrongText{"format = jpeg", "line 1: \"jpeg\" is none of gray, rgb24, yuv420p"},
                      WrongText{"orientation = 9", "line 1: \"9\" is no number from 1 to 8"},
                      WrongText{"streaming = 1", "line 1: \"1\" is neither yes nor no"},
                      WrongText{"frames = 0", "frames is stated neither in the name nor in the text"},
                      WrongText{"width = 31", "a picture has at least 32 x 2 pixels"}));

TEST_F(SynthPluginTest, NamesTheSettingThatIsMissing) {
    makeFile("a_10f_640x360.synth");
    EXPECT_EQ(complaint(), "rate is stated neither in the name nor in the text\n");
}

TEST_F(SynthPluginTest, RefusesTextWithoutEnd) {
    makeBars(std::string(70000, '\n'));
    EXPECT_EQ(complaint(), "the text is longer than 65536 bytes\n");
}

TEST_F(SynthPluginTest, IsAskedBeforeTheUsualReaders) {
    ASSERT_GE(Ox::FileReaderInfo::getNumFileReaders(), 1);
    EXPECT_EQ(Ox::FileReaderInfo::getFileReaders(0)->readerName.str(), "synth");
}

}  // namespace
