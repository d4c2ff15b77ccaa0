/// The choice of a reader: who finds out what a file is, and what is told of it.
#include <stdexcept>

#include "tests/files/PlayUtilFixture.h"
#include "toolkit/services/TimedTask.h"

namespace {

class PlayUtilTest : public PlayUtilFixture {};

TEST_F(PlayUtilTest, FailsWithAnEmptyRegistry) {
    EXPECT_FALSE(open());
    EXPECT_EQ(calls->with("PlayUtil"),
              loggedToBoth("PlayUtil::openRead() : Failed to open (all readers) \"/m/x.mov\" for video\n"));
}

TEST_F(PlayUtilTest, OpensWithTheFirstReaderThatCanAndAsksNoLaterOne) {
    addReader("A");
    addReader("B");
    EXPECT_TRUE(open());
    EXPECT_EQ(readerCalls(),
              (CallLog::Lines{"A.canOpen", "A.openFile", "A.getReadableTypes", "A.getReadableTypes"}));
}

TEST_F(PlayUtilTest, LogsWhatItOpenedWithThreeBlanksBehindTheWord) {
    addReader("A");
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(logged(), CallLog::Lines{"log Open   \"/m/x.mov\" with A for video\n"});
    EXPECT_EQ(calls->count("console Open   "), 1U);
}

TEST_F(PlayUtilTest, LogsAnUnsetReaderNameAsTheEmptyString) {
    addReader("");
    Ox::Ptr<FileReadInstance> const file = open(OpenType::audio);
    EXPECT_EQ(logged(), CallLog::Lines{"log Open   \"/m/x.mov\" with  for audio\n"});
}

TEST_F(PlayUtilTest, PassesReadersTheMountedNameAndLogsItsDisplayForm) {
    addReader("A");
    fileManager.mount = [](std::string const&) { return "/mounted"; };
    fileManager.display = [](std::string const& name) { return name + " shown"; };
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(calls->with("A."),
              (CallLog::Lines{"A.canOpen /mounted video", "A.openFile /mounted video",
                              "A.getReadableTypes /mounted video", "A.getReadableTypes /mounted video"}));
    EXPECT_EQ(narrow(file->filename), "/mounted");
    EXPECT_EQ(logged(), CallLog::Lines{"log Open   \"/mounted shown\" with A for video\n"});
}

TEST_F(PlayUtilTest, NeverUsesANameAsAFormat) {
    fileManager.display = [](std::string const&) { return "%s%n"; };
    EXPECT_FALSE(open());
    EXPECT_EQ(logged().front(),
              "log PlayUtil::openRead() : Failed to open (all readers) \"%s%n\" for video\n");
}

TEST_F(PlayUtilTest, PassesTheFormatAndTheTypeOn) {
    auto const reader = addReader("A");
    std::uint32_t level = 0;
    reader->onOpen = [&](ScriptedReader::OpenCall const& call) { level = call.format.level; };
    auto const file = PlayUtil::openRead(wide("/m/x.mov"), DecodeFormat(levelProxy), OpenType::audio, 0);
    EXPECT_EQ(level, levelProxy);
    EXPECT_EQ(file->openType, OpenType::audio);
}

TEST_F(PlayUtilTest, SetsTheMaskThatTheChosenReaderReports) {
    addReader("A")->readableTypes = 0xF1;
    EXPECT_EQ(open()->readableTypes, 0xF1U);
}

TEST_F(PlayUtilTest, GoesOnAfterAReaderThatOpensNothing) {
    addReader("A")->opens = [](auto const&) { return false; };
    addReader("B");
    EXPECT_TRUE(open());
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with B for video\n");
}

TEST_F(PlayUtilTest, LogsAnExceptionOfTheFirstPassAndTriesTheNextReader) {
    auto const reader = addReader("A");
    reader->readableTypes = 0;
    reader->onOpen = [](auto const&) { throw 42; };
    addReader("B");
    EXPECT_TRUE(open());
    EXPECT_EQ(logged(), (CallLog::Lines{"log Exception opening \"/m/x.mov\"\n",
                                        "log Open   \"/m/x.mov\" with B for video\n"}));
}

TEST_F(PlayUtilTest, FailsWhenEveryReaderThrowsOrRefuses) {
    addReader("A")->onOpen = [](auto const&) { throw std::runtime_error("bad"); };
    addReader("B")->canOpenFiles = false;
    EXPECT_FALSE(open());
    EXPECT_EQ(logged(), (CallLog::Lines{"log Exception opening \"/m/x.mov\"\n",
                                        "log PlayUtil::openRead() : Failed to open (all readers) "
                                        "\"/m/x.mov\" for video\n"}));
}

TEST_F(PlayUtilTest, AsksAllReadersOfAFullRegistryAndEnds) {
    while (Ox::FileReaderInfo::getNumFileReaders() < Ox::FileReaderInfo::maxReaders) {
        addReader("A")->canOpenFiles = false;
    }
    EXPECT_FALSE(open());
    EXPECT_EQ(calls->count("A.canOpen"), 255U);
}

TEST_F(PlayUtilTest, EndsTheSecondPassOfAFullRegistryThatServesNothing) {
    while (Ox::FileReaderInfo::getNumFileReaders() < Ox::FileReaderInfo::maxReaders) {
        addReader("A")->readableTypes = 0;
    }
    EXPECT_FALSE(open());
    EXPECT_EQ(calls->count("A.getReadableTypes"), 256U) << "the probe's reader once more";
}

TEST_F(PlayUtilTest, LetsAnExceptionFromCanOpenThrough) {
    addReader("A")->onCanOpen = [] { throw std::runtime_error("canOpen"); };
    EXPECT_THROW(static_cast<void>(open()), std::runtime_error);
    EXPECT_EQ(logged(), CallLog::Lines{});
}

TEST_F(PlayUtilTest, LetsAnExceptionFromGetReadableTypesThrough) {
    addReader("A")->onReadableTypes = [](auto const&, auto const&) -> std::uint32_t {
        throw std::runtime_error("types");
    };
    EXPECT_THROW(static_cast<void>(open()), std::runtime_error);
}

TEST_F(PlayUtilTest, LetsAnExceptionFromTheOpenOfTheSecondPassThrough) {
    auto const first = addReader("A");
    first->canOpenFiles = false;
    first->onOpen = [](auto const&) { throw std::runtime_error("reopen"); };
    addReader("B");
    EXPECT_THROW(static_cast<void>(open()), std::runtime_error);
    EXPECT_EQ(logged(), CallLog::Lines{"log reopen \"/m/x.mov\" with A for video\n"});
}

TEST_F(PlayUtilTest, FailsWhenNoReaderServesTheType) {
    addReader("A")->readableTypes = OpenType::audio;
    EXPECT_FALSE(open());
    EXPECT_EQ(logged(), CallLog::Lines{"log PlayUtil::openRead() : Failed to open \"/m/x.mov\" for video\n"});
}

TEST_F(PlayUtilTest, DropsTheInstanceWhenNoReaderServesTheType) {
    auto const reader = addReader("A");
    reader->readableTypes = OpenType::audio;
    EXPECT_FALSE(open());
    EXPECT_EQ(reader->aliveCount(), 0U);
}

/// Which audio stream readers are asked about.
class StreamIndexTest : public PlayUtilFixture {
protected:
    std::uint32_t channelsAskedFor(unsigned streamIndex) {
        auto const reader = addReader("A");
        reader->describe = [](PlayFileMetadataRep& metadata) {
            metadata.audioStreams.resize(2);
            metadata.audioStreams[0].channels = 2;
            metadata.audioStreams[1].channels = 6;
        };
        std::uint32_t channels = 99;
        reader->onReadableTypes = [&](auto const&, Aud::Metadata const& stream) {
            channels = stream.channels;
            return 3U;
        };
        EXPECT_TRUE(open(OpenType::audio, streamIndex));
        return channels;
    }
};

TEST_F(StreamIndexTest, PicksTheStreamsDescription) {
    EXPECT_EQ(channelsAskedFor(1), 6U);
}

TEST_F(StreamIndexTest, UsesADefaultDescriptionPastTheEnd) {
    EXPECT_EQ(channelsAskedFor(2), 0U);
}

TEST_F(PlayUtilTest, IsTimedAsSectionOpenReadOfTheTaskPlayUtilOnEveryWayOut) {
    auto const count = [] {
        auto const sections = TimedTaskManager::getTimedTask("PlayUtil")->getSections();
        return sections.empty() ? 0 : sections.front().count;
    };
    std::uint64_t const before = count();
    static_cast<void>(open());
    auto const reader = addReader("A");
    static_cast<void>(open());
    reader->onCanOpen = [] { throw 1; };
    EXPECT_ANY_THROW(static_cast<void>(open()));
    EXPECT_EQ(count(), before + 3);
    EXPECT_EQ(TimedTaskManager::getTimedTask("PlayUtil")->getSections().front().name.str(), "openRead");
}

TEST_F(PlayUtilTest, OpensACookieForAudioWhateverItIs) {
    addReader("A");
    Cookie const cookie = addClip("/m/x.mov", 'V');
    auto const file = PlayUtil::openRead(cookie, DecodeFormat(levelOriginal), 0);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->openType, OpenType::audio);
}

TEST_F(PlayUtilTest, AnswersEmptyAndSilentForACookieWithoutAFile) {
    addReader("A");
    EXPECT_FALSE(PlayUtil::openRead(makeCookie(9), DecodeFormat(levelOriginal), 0));
    EXPECT_EQ(calls->all(), CallLog::Lines{});
}

TEST_F(PlayUtilTest, TellsTheOpenTypeOfACookie) {
    EXPECT_EQ(PlayUtil::getType(makeCookie(1, 'S')), 2);
    EXPECT_EQ(PlayUtil::getType(makeCookie(1, 'V')), 1);
    for (char const type : {'E', 'I', '\0', 'v', 's'}) {
        EXPECT_EQ(PlayUtil::getType(makeCookie(1, type)), 0) << int(type);
    }
}

}  // namespace
