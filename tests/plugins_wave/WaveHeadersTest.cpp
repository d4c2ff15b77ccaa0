/// The layout of files: chunks in any order, of any length, stated rightly, wrongly or not at all.
#include "tests/plugins_wave/WaveFixture.h"

namespace {

using namespace test;
using wave::Shape;

constexpr std::uint32_t sampleTotal = 50;
/// Of one byte a sample, so that data can have an odd length.
Shape const mono8{1, Aud::sampleU8};
Shape const stereo16{2, Aud::sampleS16};

class WaveHeadersTest : public WaveFixture {
protected:
    [[nodiscard]] static std::string fmt(Shape const& shape = stereo16) {
        return wave::chunk("fmt ", wave::format(shape));
    }
    [[nodiscard]] static std::string samples(Shape const& shape = stereo16,
                                             std::uint32_t count = sampleTotal) {
        return wave::samples(shape, 0, count);
    }
    [[nodiscard]] static std::string data(Shape const& shape = stereo16) {
        return wave::chunk("data", samples(shape));
    }
    /// Text that shows whether the chunk that holds it was found.
    [[nodiscard]] static std::string title() {
        return wave::chunk("LIST", "INFO" + wave::chunk("INAM", "Found"));
    }

    /// Demands that the file has exactly the first `count` made samples.
    void expectSamples(std::uint64_t count = sampleTotal, Shape const& shape = stereo16) {
        ASSERT_TRUE(reader) << complaint();
        EXPECT_EQ(sampleCount(), count);
        EXPECT_EQ(readBlock(0, static_cast<std::uint32_t>(count) + 1).bytes, wave::samples(shape, 0, count));
    }
    void expectRefused(std::string const& why) {
        EXPECT_FALSE(reader);
        EXPECT_EQ(complaint(), why + "\n");
        EXPECT_EQ(log.console(), log.log());
    }
};

TEST_F(WaveHeadersTest, ReadsThePlainestFile) {
    open(wave::file(fmt() + data()));
    expectSamples();
    EXPECT_EQ(complaint(), "");
}

TEST_F(WaveHeadersTest, ReadsAFileOfNoSamples) {
    open(wave::file(fmt() + wave::chunk("data", "")));
    expectSamples(0);
}

TEST_F(WaveHeadersTest, PassesOverChunksThatItDoesNotKnow) {
    open(wave::file(wave::chunk("JUNK", std::string(28, '\0')) + fmt() + wave::chunk("PEAK", "12345678") +
                    data() + wave::chunk("cue ", "1234") + title()));
    expectSamples();
    EXPECT_EQ(text("tag.title"), "Found");
}

TEST_F(WaveHeadersTest, ReadsDataThatLieBeforeTheirFormat) {
    open(wave::file(data() + fmt()));
    expectSamples();
}

TEST_F(WaveHeadersTest, ReadsDataOfOddLengthBeforeTheirFormat) {
    open(wave::file(wave::chunk("data", samples(mono8, 51)) + fmt(mono8)));
    expectSamples(51, mono8);
}

TEST_F(WaveHeadersTest, GoesOnBehindAPadByte) {
    open(wave::file(wave::chunk("note", "odd") + fmt() + data()));
    expectSamples();
}

TEST_F(WaveHeadersTest, GoesOnBehindAPadByteThatIsNotZero) {
    for (std::string const pad : {"\xFF", "x"}) {
        open(wave::file(wave::chunk("note", "odd", 3) + pad + fmt() + data()));
        expectSamples();
    }
}

TEST_F(WaveHeadersTest, GoesOnWithoutAPadByteWhereAHeaderFollowsAtOnce) {
    open(wave::file(wave::chunk("note", "odd", 3) + fmt() + data()));
    expectSamples();
}

TEST_F(WaveHeadersTest, FindsChunksBehindOddDataWithAndWithoutAPadByte) {
    std::string const odd = samples(mono8, 51);
    for (std::string const& pad : {std::string(1, '\0'), std::string()}) {
        open(wave::file(fmt(mono8) + wave::chunk("data", odd, 51) + pad + title()));
        expectSamples(51, mono8);
        EXPECT_EQ(text("tag.title"), "Found") << pad.size();
    }
}

TEST_F(WaveHeadersTest, LeavesOutASampleThatIsNotWhole) {
    open(wave::file(fmt() + wave::chunk("data", samples() + "xyz")));
    expectSamples();
}

TEST_F(WaveHeadersTest, TakesTheFirstFormatAndTheFirstData) {
    open(wave::file(fmt() + data() + fmt(mono8) + wave::chunk("data", "other")));
    expectSamples();
}

TEST_F(WaveHeadersTest, HoldsDataToTheFileAndSaysSo) {
    std::string const bytes = samples();
    open(wave::file(fmt() + wave::chunk("data", bytes, 1000)));
    expectSamples();
    EXPECT_EQ(complaint(), "\"data\" chunk at offset 36: 1000 bytes are stated, 200 are there\n");
    EXPECT_TRUE(log.console().empty());
}

TEST_F(WaveHeadersTest, HoldsTheLargestLengthThatIsNoMarkToTheFile) {
    open(wave::file(fmt() + wave::chunk("data", samples(), 0xFFFFFFFE)));
    expectSamples();
}

TEST_F(WaveHeadersTest, DataOfUnknownLengthReachToTheEndOfTheFile) {
    open(wave::file("RIFF", fmt() + wave::chunk("data", samples(), wave::noLength), wave::noLength));
    expectSamples();
    EXPECT_EQ(complaint(), "");
}

TEST_F(WaveHeadersTest, DataOfLength0ReachToTheEndOfAFileThatStatesNoLength) {
    for (std::uint32_t const formLength : {0U, wave::noLength}) {
        open(wave::file("RIFF", fmt() + wave::chunk("data", samples(), 0), formLength));
        expectSamples();
    }
}

TEST_F(WaveHeadersTest, DataOfLength0ReachToTheEndOfAFileThatStatesItsHeadersAlone) {
    constexpr std::uint32_t headersAlone = 36;
    open(wave::file("RIFF", fmt() + wave::chunk("data", samples(), 0), headersAlone));
    expectSamples();
}

TEST_F(WaveHeadersTest, DataOfLength0AreEmptyWhereTheFileStatesThatMoreFollows) {
    open(wave::file(fmt() + wave::chunk("data", "") + title()));
    expectSamples(0);
    EXPECT_EQ(text("tag.title"), "Found");
}

TEST_F(WaveHeadersTest, TheMarkOfABrokenRecorderCountsAsNoLength) {
    open(wave::file(fmt() + wave::chunk("data", samples(), 0xFF000000)));
    ASSERT_TRUE(reader);
    EXPECT_EQ(sampleCount(), sampleTotal);
    EXPECT_EQ(log.log(), LogRecorder::Lines{"found chunk length 0xFF000000\n"});
}

TEST_F(WaveHeadersTest, DoesNotMindAWrongLengthOfTheFile) {
    for (std::uint32_t const formLength : {1U, 20U, 0x7FFFFFFFU}) {
        open(wave::file("RIFF", fmt() + data() + title(), formLength));
        expectSamples();
        EXPECT_EQ(text("tag.title"), "Found") << formLength;
    }
}

TEST_F(WaveHeadersTest, EndsAtWhatIsNoChunk) {
    open(wave::file(fmt() + data() + std::string(1000, '\0') + title()));
    expectSamples();
    EXPECT_EQ(text("tag.title"), "(none)");
}

TEST_F(WaveHeadersTest, ReadsLongLengthsFromTheirTable) {
    for (char const* const form : {"RF64", "BW64"}) {
        open(wave::file(
            form, wave::sizes64(0, 200) + fmt() + wave::chunk("data", samples(), wave::noLength) + title(),
            wave::noLength));
        expectSamples();
        EXPECT_EQ(text("tag.title"), "Found") << form;
        EXPECT_EQ(reader->getDescription().str(), std::string("pcm_s16le in WAVE (") + form + ")");
    }
}

TEST_F(WaveHeadersTest, FindsTheLengthsOfOtherChunksInTheTable) {
    std::string const table = wave::tableEntry("blob", 6) + wave::tableEntry("blob", 4);
    open(wave::file("RF64",
                    wave::sizes64(0, 200, table) + wave::chunk("blob", "123456", wave::noLength) +
                        wave::chunk("blob", "1234", wave::noLength) + fmt() +
                        wave::chunk("data", samples(), wave::noLength) + title(),
                    wave::noLength));
    expectSamples();
    EXPECT_EQ(text("tag.title"), "Found");
}

TEST_F(WaveHeadersTest, BelievesALengthInTheHeaderThatIsNoMark) {
    open(wave::file("RF64", wave::sizes64(0, 8) + fmt() + data() + title(), wave::noLength));
    expectSamples();
    EXPECT_EQ(text("tag.title"), "Found");
}

TEST_F(WaveHeadersTest, ALengthOf0InTheHeaderOfLongDataIsLookedUp) {
    open(wave::file("RF64", wave::sizes64(0, 200) + fmt() + wave::chunk("data", samples(), 0) + title(),
                    wave::noLength));
    expectSamples();
    EXPECT_EQ(text("tag.title"), "Found");
}

TEST_F(WaveHeadersTest, HoldsALongLengthToTheFile) {
    for (std::uint64_t const length : {std::uint64_t{1000}, ~std::uint64_t{1}}) {
        open(wave::file("RF64",
                        wave::sizes64(0, length) + fmt() + wave::chunk("data", samples(), wave::noLength),
                        wave::noLength));
        expectSamples();
    }
}

TEST_F(WaveHeadersTest, ALongLengthThatWasNeverWrittenReachesToTheEndOfTheFile) {
    for (std::uint64_t const length : {std::uint64_t{0}, ~std::uint64_t{0}}) {
        open(wave::file("RF64",
                        wave::sizes64(0, length) + fmt() + wave::chunk("data", samples(), wave::noLength),
                        wave::noLength));
        expectSamples();
    }
}

TEST_F(WaveHeadersTest, ALongLengthOf0IsOneWhereTheFileStatesThatMoreFollows) {
    open(wave::file("RF64", wave::sizes64(200, 0) + fmt() + wave::chunk("data", "", wave::noLength) + title(),
                    wave::noLength));
    expectSamples(0);
    EXPECT_EQ(text("tag.title"), "Found");
}

TEST_F(WaveHeadersTest, ReadsOnWithoutATableOrWithHalfOfOne) {
    std::string const cutShort = wave::chunk("ds64", std::string(12, '\xFF'));
    for (std::string const& table : {std::string(), cutShort}) {
        open(wave::file("RF64", table + fmt() + wave::chunk("data", samples(), wave::noLength),
                        wave::noLength));
        expectSamples();
    }
}

TEST_F(WaveHeadersTest, ATableThatStatesMoreEntriesThanItHasIsReadToItsEnd) {
    std::string const contents =
        wave::number64(0) + wave::number64(200) + wave::number64(0) + wave::number32(0xFFFFFFFF) + "blob";
    open(wave::file("RF64",
                    wave::chunk("ds64", contents) + fmt() + wave::chunk("data", samples(), wave::noLength),
                    wave::noLength));
    expectSamples();
}

TEST_F(WaveHeadersTest, HasNoTableInAFileOfTheOldForm) {
    for (std::uint32_t const length : {wave::noLength, 0U}) {
        open(wave::file("RIFF", wave::sizes64(1000, 8) + fmt() + wave::chunk("data", samples(), length),
                        wave::noLength));
        expectSamples();
    }
}

TEST_F(WaveHeadersTest, RefusesAFileThatBeginsOtherwise) {
    for (std::string const start : {"", "RIFF", "RIFF1234AVI ", "RIFX1234WAVE", "riff1234WAVE"}) {
        log.clear();
        open(start + "fmt and data");
        expectRefused("doesn't begin as a WAVE file does");
    }
}

TEST_F(WaveHeadersTest, RefusesAFileWithoutAFormat) {
    open(wave::file(data()));
    expectRefused("no \"fmt \" chunk before offset 220, where the chunks end");
}

TEST_F(WaveHeadersTest, RefusesAFileWithoutData) {
    open(wave::file(fmt() + title()));
    expectRefused("no \"data\" chunk before offset 62, where the chunks end");
}

TEST_F(WaveHeadersTest, RefusesAFileOfNothingButItsForm) {
    open(wave::file(""));
    expectRefused("no \"fmt \" chunk before offset 12, where the chunks end");
}

TEST_F(WaveHeadersTest, NamesThePlaceOfAFormatThatIsCutShortByTheEndOfTheFile) {
    open(wave::file(wave::chunk("JUNK", "1234") + fmt()).substr(0, 42));
    expectRefused("\"fmt \" chunk at offset 24: 10 bytes, at least 16 are needed");
}

TEST_F(WaveHeadersTest, GivesUpAfterManyChunks) {
    std::string chunks;
    for (unsigned i = 0; i < 10000; ++i) {
        chunks += wave::chunk("many", "");
    }
    open(wave::file(chunks + fmt() + data()));
    expectRefused("no \"fmt \" chunk before offset 80012, where the chunks end");
}

TEST_F(WaveHeadersTest, SaysWhyAFileCannotBeOpened) {
    openAgain();
    expectRefused("can't be opened: No such file or directory");
}

}  // namespace
