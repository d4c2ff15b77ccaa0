#include "plugins/ffmpeg/MovSampleTables.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "tests/plugins_ffmpeg/MovBoxes.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using playfile_ffmpeg::ByteFile;
using playfile_ffmpeg::MovSampleTables;

constexpr std::uint32_t trackId = 7;
constexpr std::uint32_t moreThanMostSamples = (1U << 24) + 1;

class MovSampleTablesTest : public ::testing::Test {
protected:
    /// Reads track 7 of a file of these bytes.
    [[nodiscard]] std::optional<MovSampleTables> readFile(std::string const& bytes) const {
        folder_.write("clip.mov", bytes);
        ByteFile file;
        std::string error;
        EXPECT_TRUE(file.open(folder_.file("clip.mov"), error)) << error;
        return MovSampleTables::read(file, trackId);
    }
    /// Reads the table of a file that holds it alone.
    [[nodiscard]] std::optional<MovSampleTables> read() const {
        return readFile(movie(track(trackId, table_)));
    }

    /// "position+size" of each sample.
    [[nodiscard]] static std::string placesIn(std::optional<MovSampleTables> const& tables) {
        std::ostringstream places;
        for (std::uint32_t sample = 0; tables && sample < tables->sampleCount(); ++sample) {
            places << tables->positionOf(sample) << '+' << tables->sizeOf(sample) << ' ';
        }
        return places.str();
    }
    [[nodiscard]] std::string places() const { return placesIn(read()); }

    [[nodiscard]] std::vector<std::int32_t> offsets() const {
        std::vector<std::int32_t> offsets;
        std::optional<MovSampleTables> const tables = read();
        for (std::uint32_t sample = 0; tables && sample < tables->sampleCount(); ++sample) {
            offsets.push_back(tables->offsetOf(sample));
        }
        return offsets;
    }
    [[nodiscard]] bool isRefused() const { return !read(); }

    TemporaryFolder folder_;
    SampleTable table_ = fourSamples();
};

TEST_F(MovSampleTablesTest, PlacesEachSampleBehindTheOneBeforeItInItsChunk) {
    EXPECT_EQ(places(), "100+10 110+20 200+30 230+40 ");
}

TEST_F(MovSampleTablesTest, TakesPlacesOfSixtyFourBits) {
    table_.erase("stco");
    table_["co64"] = rows(2, be64({1ULL << 40, 1ULL << 41}));
    EXPECT_EQ(places(), "1099511627776+10 1099511627786+20 2199023255552+30 2199023255582+40 ");
}

TEST_F(MovSampleTablesTest, ChangesTheSamplesOfAChunkWhereANewRunBegins) {
    table_["stco"] = rows(3, be32({100, 200, 300}));
    table_["stsc"] = rows(2, be32({1, 1, 1, 3, 2, 1}));
    EXPECT_EQ(places(), "100+10 200+20 300+30 330+40 ");
}

TEST_F(MovSampleTablesTest, TakesOneSizeForAllSamples) {
    table_["stsz"] = be32({0, 25, 4});
    EXPECT_EQ(places(), "100+25 125+25 200+25 225+25 ");
}

TEST_F(MovSampleTablesTest, LeavesOutPlacesForWhichThereIsNoSample) {
    table_["stco"] = rows(3, be32({100, 200, 300}));
    EXPECT_EQ(places(), "100+10 110+20 200+30 230+40 ");
}

TEST_F(MovSampleTablesTest, HasNoOffsetsWithoutATableOfThem) {
    EXPECT_EQ(offsets(), (std::vector{0, 0, 0, 0}));
}

TEST_F(MovSampleTablesTest, GivesEachSampleTheOffsetOfItsRun) {
    table_["ctts"] = rows(3, be32({1, 5, 2, 9, 1, 3}));
    EXPECT_EQ(offsets(), (std::vector{5, 9, 9, 3}));
}

TEST_F(MovSampleTablesTest, HasNoOffsetsBehindTheEndOfTheirTable) {
    table_["ctts"] = rows(1, be32({2, 9}));
    EXPECT_EQ(offsets(), (std::vector{9, 9, 0, 0}));
}

TEST_F(MovSampleTablesTest, CutsARunOfOffsetsThatIsLongerThanTheTrack) {
    table_["ctts"] = rows(2, be32({1, 5, std::numeric_limits<std::uint32_t>::max(), 9}));
    EXPECT_EQ(offsets(), (std::vector{5, 9, 9, 9}));
}

TEST_F(MovSampleTablesTest, ShiftsByTheLowestOffsetBelowZero) {
    table_["ctts"] = rows(2, be32({2, static_cast<std::uint32_t>(-4), 2, 9}));
    EXPECT_EQ(read()->decodeShift(), 4);
}

TEST_F(MovSampleTablesTest, ShiftsByTheLowestNumberThereIsWithoutOverflow) {
    table_["ctts"] = rows(1, be32({4, 0x80000000U}));
    EXPECT_EQ(read()->decodeShift(), std::int64_t{1} << 31);
}

TEST_F(MovSampleTablesTest, DoesNotShiftWithoutOffsetsBelowZero) {
    table_["ctts"] = rows(1, be32({4, 3}));
    EXPECT_EQ(read()->decodeShift(), 0);
}

TEST_F(MovSampleTablesTest, CountsTheDescriptions) {
    table_["stsd"] = rows(2, "");
    EXPECT_EQ(read()->descriptionCount(), 2U);
}

TEST_F(MovSampleTablesTest, IsNotFragmentedByItself) {
    EXPECT_FALSE(read()->isFragmented());
}

TEST_F(MovSampleTablesTest, SaysThatMoreMayFollowInFragments) {
    std::string const fragments = box("mvex", box("trex", be32({0, trackId})));
    EXPECT_TRUE(readFile(movie(track(trackId, table_) + fragments))->isFragmented());
}

TEST_F(MovSampleTablesTest, FindsTheTrackByItsNumber) {
    SampleTable other = fourSamples();
    other["stsz"] = be32({0, 1, 4});
    EXPECT_EQ(placesIn(readFile(movie(track(1, other) + track(trackId, table_)))), places());
}

TEST_F(MovSampleTablesTest, FindsTheNumberBehindTimesOfSixtyFourBits) {
    std::string whole = movie(track(trackId, table_));
    std::string const shortHeader = box("tkhd", be32({0, 0, 0, trackId}));
    std::string const longHeader = box("tkhd", be32({1U << 24, 0, 0, 0, 0, trackId}));
    std::string const media = whole.substr(whole.find(shortHeader) + shortHeader.size());
    EXPECT_EQ(placesIn(readFile(movie(box("trak", longHeader + media)))), places());
}

TEST_F(MovSampleTablesTest, KnowsNothingOfATrackThatIsNotThere) {
    EXPECT_FALSE(readFile(movie(track(trackId + 1, table_))));
}

TEST_F(MovSampleTablesTest, FindsTheMovieBehindTheMediaData) {
    std::string const media = longBox("mdat", std::string(1000, 'x'));
    EXPECT_EQ(placesIn(readFile(media + movie(track(trackId, table_)))), places());
}

TEST_F(MovSampleTablesTest, TakesAMovieThatReachesToTheEndOfTheFile) {
    std::string const open = be32({0}) + "moov" + track(trackId, table_);
    EXPECT_EQ(placesIn(readFile(open)), places());
}

TEST_F(MovSampleTablesTest, KnowsNothingOfAFileWithoutAMovie) {
    EXPECT_FALSE(readFile(box("mdat", std::string(1000, 'x'))));
}

TEST_F(MovSampleTablesTest, RefusesAMovieThatIsCutShort) {
    std::string const whole = movie(track(trackId, table_));
    EXPECT_FALSE(readFile(whole.substr(0, whole.size() - 1)));
}

TEST_F(MovSampleTablesTest, RefusesABoxThatIsSmallerThanItsHeader) {
    EXPECT_FALSE(readFile(be32({7}) + "free" + movie(track(trackId, table_))));
}

TEST_F(MovSampleTablesTest, RefusesABoxLargerThanAnyFile) {
    std::string const box = be32({1}) + "free" + be64({std::numeric_limits<std::uint64_t>::max()});
    EXPECT_FALSE(readFile(box + movie(track(trackId, table_))));
}

TEST_F(MovSampleTablesTest, RefusesATrackWithoutSamples) {
    table_["stsz"] = be32({0, 10, 0});
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesMoreSamplesThanAnyTrackHas) {
    table_["stsz"] = be32({0, 10, moreThanMostSamples});
    table_["stco"] = rows(1, be32({100}));
    table_["stsc"] = rows(1, be32({1, moreThanMostSamples, 1}));
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesSizesThatAreNotAllThere) {
    table_["stsz"] = be32({0, 0, 4, 10, 20, 30});
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesPlacesThatAreNotAllThere) {
    table_["stco"] = rows(3, be32({100, 200}));
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesRunsThatAreNotAllThere) {
    table_["stsc"] = rows(2, be32({1, 2, 1}));
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesOffsetsThatAreNotAllThere) {
    table_["ctts"] = rows(2, be32({4, 3}));
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesSamplesThatLieNowhere) {
    table_["stco"] = rows(1, be32({100}));
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesATrackWithoutRunsOfChunks) {
    table_.erase("stsc");
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesPlacesBeyondWhatAFileCanBe) {
    table_.erase("stco");
    table_["co64"] = rows(2, be64({100, std::numeric_limits<std::uint64_t>::max() - 9}));
    EXPECT_TRUE(isRefused());
}

TEST_F(MovSampleTablesTest, RefusesASampleThatEndsBeyondWhatAFileCanBe) {
    table_.erase("stco");
    table_["co64"] = rows(2, be64({100, std::numeric_limits<std::int64_t>::max() - 69}));
    EXPECT_TRUE(isRefused());
}

/// Tracks whose samples a movie says to be in another file.
class MovDataReferences : public MovSampleTablesTest {
protected:
    static constexpr std::uint32_t isOwnFile = 1;

    /// @param number  of the reference that the description of the samples bears
    [[nodiscard]] bool lieElsewhere(std::vector<std::string> const& boxes, std::uint32_t number = 1) {
        table_["stsd"] = rows(1, box("sowt", std::string(6, '\0') + be32({number << 16})));
        folder_.write("clip.mov", movie(track(trackId, table_, references(boxes))));
        ByteFile file;
        std::string error;
        EXPECT_TRUE(file.open(folder_.file("clip.mov"), error)) << error;
        return MovSampleTables::lieElsewhere(file, trackId);
    }
    std::string const own_ = box("url ", be32({isOwnFile}));
    std::string const other_ = box("alis", be32({0}) + "a file");
};

TEST_F(MovDataReferences, LeadToTheFileItself) {
    EXPECT_FALSE(lieElsewhere({own_}));
}

TEST_F(MovDataReferences, LeadToAnotherFile) {
    EXPECT_TRUE(lieElsewhere({other_}));
}

TEST_F(MovDataReferences, CountOnlyWhereADescriptionBearsTheirNumber) {
    EXPECT_FALSE(lieElsewhere({own_, other_}, 1));
    EXPECT_TRUE(lieElsewhere({own_, other_}, 2));
}

TEST_F(MovDataReferences, ThatNameNothingLeadToTheFileItself) {
    EXPECT_FALSE(lieElsewhere({box("url ", be32({0}))}));
}

TEST_F(MovDataReferences, ThatAreNotThereLeadToTheFileItself) {
    EXPECT_FALSE(lieElsewhere({}));
    EXPECT_FALSE(lieElsewhere({own_}, 9));
}

}  // namespace
}  // namespace test
