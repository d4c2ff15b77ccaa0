/// The choice of a reader: who reads the file, once it is known what it is.
#include <cstdint>

#include "tests/files/PlayUtilFixture.h"

namespace {

/// Reader A can't open files itself but serves them once B, or C, has found out what they are.
class SecondPassTest : public PlayUtilFixture {
protected:
    SecondPassTest() {
        first->canOpenFiles = false;
        second->describe = [](PlayFileMetadataRep& metadata) { metadata.originCode = 77; };
    }
    Ox::Ptr<ScriptedReader> first = addReader("A");
    Ox::Ptr<ScriptedReader> second = addReader("B");
};

TEST_F(SecondPassTest, ReopensWithAnEarlierReaderThatBorrowsTheMetadata) {
    first->describe = knowNothing;
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(readerCalls(), (CallLog::Lines{"A.canOpen", "B.canOpen", "B.openFile", "B.getReadableTypes",
                                             "A.getReadableTypes", "A.openFile"}));
    EXPECT_EQ(logged(), (CallLog::Lines{"log reopen \"/m/x.mov\" with A for video\n",
                                        "log Open   \"/m/x.mov\" with A for video\n"}));
    EXPECT_EQ(calls->count("updateMetadataFrom"), 1U);
    EXPECT_EQ(file->metadata->originCode, 77);
    EXPECT_EQ(first->aliveCount(), 1U);
    EXPECT_EQ(second->aliveCount(), 0U);
}

TEST_F(SecondPassTest, KeepsTheProbeBeforeAnEarlierReaderThatKnowsTheFileItself) {
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(logged(), (CallLog::Lines{"log reopen \"/m/x.mov\" with A for video\n",
                                        "log Open   \"/m/x.mov\" with B for video\n"}));
    EXPECT_EQ(first->aliveCount(), 0U);
    EXPECT_EQ(second->aliveCount(), 1U);
    EXPECT_EQ(calls->count("updateMetadataFrom"), 0U);
}

TEST_F(SecondPassTest, BorrowsForTheMediumThatIsWanted) {
    first->describe = [](PlayFileMetadataRep& metadata) { metadata.audioInfoCount = 0; };
    Ox::Ptr<FileReadInstance> const video = open(OpenType::video);
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with B for video\n");
    Ox::Ptr<FileReadInstance> const audio = open(OpenType::audio);
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with A for audio\n");
}

TEST_F(SecondPassTest, NeverBorrowsForBothMediaAtOnce) {
    first->describe = knowNothing;
    Ox::Ptr<FileReadInstance> const file = open(OpenType::both);
    EXPECT_EQ(logged(), (CallLog::Lines{"log reopen \"/m/x.mov\" with A for video and audio\n",
                                        "log Open   \"/m/x.mov\" with B for video and audio\n"}));
}

TEST_F(SecondPassTest, WantsAllBitsOfTheType) {
    first->readableTypes = OpenType::video;
    second->readableTypes = OpenType::audio;
    EXPECT_FALSE(open(OpenType::both));
    EXPECT_EQ(logged(), CallLog::Lines{"log PlayUtil::openRead() : Failed to open \"/m/x.mov\" for video "
                                       "and audio\n"});
}

TEST_F(SecondPassTest, TakesALaterReaderWhenTheProbeDoesNotServeTheType) {
    second->readableTypes = 0;
    auto const third = addReader("C");
    first->readableTypes = 0;
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(logged(), (CallLog::Lines{"log reopen \"/m/x.mov\" with C for video\n",
                                        "log Open   \"/m/x.mov\" with C for video\n"}));
    EXPECT_EQ(third->aliveCount(), 1U);
    EXPECT_EQ(second->aliveCount(), 0U);
    EXPECT_EQ(file->readableTypes, 3U);
}

TEST_F(SecondPassTest, StillOpensLaterReadersAfterAnEarlierOneThatDoesNotBorrow) {
    second->readableTypes = 0;
    auto const third = addReader("C");
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(logged(), (CallLog::Lines{"log reopen \"/m/x.mov\" with A for video\n",
                                        "log reopen \"/m/x.mov\" with C for video\n",
                                        "log Open   \"/m/x.mov\" with A for video\n"}));
    EXPECT_EQ(third->aliveCount(), 0U);
    EXPECT_EQ(first->aliveCount(), 1U);
}

TEST_F(SecondPassTest, ReplacesAReaderThatDoesNotBorrowByALaterOneThatDoes) {
    second->readableTypes = 0;
    auto const third = addReader("C");
    third->describe = knowNothing;
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with C for video\n");
    EXPECT_EQ(first->aliveCount(), 0U);
    EXPECT_EQ(third->aliveCount(), 1U);
    EXPECT_EQ(file->metadata->originCode, 77) << "what the probe had found";
}

TEST_F(SecondPassTest, EndsThePassWithAReaderThatBorrows) {
    second->readableTypes = 0;
    auto const third = addReader("C");
    first->describe = knowNothing;
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(third->openCount(), 0U);
    EXPECT_EQ(calls->count("C.getReadableTypes"), 0U);
}

TEST_F(SecondPassTest, GoesOnAfterAReopenThatFails) {
    first->describe = knowNothing;
    first->opens = [](auto const&) { return false; };
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(logged(), (CallLog::Lines{"log reopen \"/m/x.mov\" with A for video\n",
                                        "log Open   \"/m/x.mov\" with B for video\n"}));
}

TEST_F(SecondPassTest, AsksReadersWithTheMetadataOfWhatIsOpenSoFar) {
    std::int64_t seen = 0;
    first->onReadableTypes = [&](PlayFileMetadataRep const& metadata, auto const&) {
        seen = metadata.originCode;
        return 0U;
    };
    Ox::Ptr<FileReadInstance> const file = open();
    EXPECT_EQ(seen, 77);
}

TEST_F(SecondPassTest, SetsTheMaskOfAReopenedFile) {
    first->describe = knowNothing;
    first->readableTypes = 5;
    EXPECT_EQ(open()->readableTypes, 5U);
}

TEST_F(SecondPassTest, AsksForTheCountAnew) {
    Ox::Ptr<ScriptedReader> added;
    first->readableTypes = 0;
    second->opens = [&](auto const&) {
        added = added ? added : addReader("C");
        return false;
    };
    EXPECT_TRUE(open());
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with C for video\n");
}

/// The second pass, in which readers join.
class JoiningReaderTest : public SecondPassTest {
protected:
    JoiningReaderTest() { second->readableTypes = 0; }
};

TEST_F(JoiningReaderTest, IsAskedWhenItComesWhileOthersAreAskedWhatTheyServe) {
    first->onReadableTypes = [this](auto const&, auto const&) {
        addReader("C");
        return 0U;
    };
    EXPECT_TRUE(open());
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with C for video\n");
}

TEST_F(JoiningReaderTest, IsAskedWhenItComesWhileAnotherReopensTheFile) {
    first->onOpen = [this](auto const&) { addReader("C"); };
    first->opens = [](auto const&) { return false; };
    EXPECT_TRUE(open());
    EXPECT_EQ(logged().back(), "log Open   \"/m/x.mov\" with C for video\n");
}

/// B has found out what the file is but can't serve it, A takes its place with what it knows itself, and C
/// is asked behind it.
class ReplacedProbeTest : public SecondPassTest {
protected:
    ReplacedProbeTest() {
        second->readableTypes = 0;
        second->describe = [](PlayFileMetadataRep& metadata) { describeAs(metadata, 77, 1); };
        first->describe = [](PlayFileMetadataRep& metadata) { describeAs(metadata, 55, 6); };
        third->onReadableTypes = [this](PlayFileMetadataRep const& metadata, Aud::Metadata const& stream) {
            origin = metadata.originCode;
            channels = stream.channels;
            return 0U;
        };
    }
    /// Two streams, of which the second has so many channels.
    static void describeAs(PlayFileMetadataRep& metadata, std::int64_t originCode,
                           std::uint32_t channelCount) {
        metadata.originCode = originCode;
        metadata.audioStreams.resize(2);
        metadata.audioStreams[0].channels = 2;
        metadata.audioStreams[1].channels = channelCount;
    }

    Ox::Ptr<ScriptedReader> third = addReader("C");
    /// What C was asked about.
    std::int64_t origin = 0;
    std::uint32_t channels = 0;
};

TEST_F(ReplacedProbeTest, LaterReadersAreAskedWithTheMetadataOfTheFileThatReplacedIt) {
    EXPECT_TRUE(open(OpenType::audio, 1));
    EXPECT_EQ(origin, 55);
}

TEST_F(ReplacedProbeTest, LaterReadersAreAskedAboutTheStreamOfTheFileThatReplacedIt) {
    EXPECT_TRUE(open(OpenType::audio, 1));
    EXPECT_EQ(channels, 6U);
}

}  // namespace
