#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class QuarantineCommand : public ToolTest {
protected:
    /// A file that no reader opens, after somebody has tried.
    [[nodiscard]] std::string makeMarkedFile(std::string const& name) const {
        std::string const file = writeFile(name, "This is a letter and no film.\n");
        EXPECT_EQ(run({"frames", file, "--md5"}).exitCode, 1);
        return file;
    }

    [[nodiscard]] std::vector<std::string> marked() const {
        Ended const ended = run({"quarantine", "list"});
        EXPECT_EQ(ended.exitCode, 0) << ended.err;
        return linesOf(ended.out);
    }
};

TEST_F(QuarantineCommand, ListsNothingAtFirst) {
    EXPECT_THAT(marked(), IsEmpty());
}

TEST_F(QuarantineCommand, ListsFilesWhoseOpeningFailed) {
    std::string const one = makeMarkedFile("one.mov");
    std::string const two = makeMarkedFile("two.mov");
    EXPECT_THAT(marked(), UnorderedElementsAre(one, two));
}

TEST_F(QuarantineCommand, AGoodFileGetsNoMark) {
    EXPECT_EQ(run({"frames", makeH264Clip(), "--md5"}).exitCode, 0);
    EXPECT_THAT(marked(), IsEmpty());
}

TEST_F(QuarantineCommand, AMarkedFileIsWarnedOfAndOpenedAllTheSame) {
    std::string const file = makeMarkedFile("clip.mp4");
    static_cast<void>(makeH264Clip("clip.mp4"));
    Ended const ended = run({"info", file, "--json"});
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_THAT(ended.err, HasSubstr("warning: an earlier opening of '" + file + "' failed"));
    EXPECT_THAT(ended.out, HasSubstr("\"isQuarantined\": true"));
    EXPECT_THAT(marked(), IsEmpty()) << "a good opening must wipe the mark";
}

TEST_F(QuarantineCommand, ReleasesOneFile) {
    std::string const one = makeMarkedFile("one.mov");
    std::string const two = makeMarkedFile("two.mov");
    Ended const ended = run({"quarantine", "release", one});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(ended.out, "released " + one + "\n");
    EXPECT_THAT(marked(), UnorderedElementsAre(two));
}

TEST_F(QuarantineCommand, ReleasesAFileThatIsGone) {
    std::string const file = makeMarkedFile("gone.mov");
    ASSERT_EQ(runOther({"rm", file}).exitCode, 0);
    EXPECT_EQ(run({"quarantine", "release", file}).exitCode, 0);
    EXPECT_THAT(marked(), IsEmpty());
}

TEST_F(QuarantineCommand, ReleasesAllFiles) {
    static_cast<void>(makeMarkedFile("one.mov"));
    static_cast<void>(makeMarkedFile("two.mov"));
    EXPECT_THAT(linesOf(run({"quarantine", "release", "--all"}).out), testing::SizeIs(2));
    EXPECT_THAT(marked(), IsEmpty());
}

TEST_F(QuarantineCommand, RefusesToReleaseAFileWithoutAMark) {
    Ended const ended = run({"quarantine", "release", path("clean.mov")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("bears no mark"));
}

TEST_F(QuarantineCommand, TakesOtherPreferences) {
    std::string const file = writeFile("text.mov", "no film");
    EXPECT_EQ(run({"info", file, "--preferences", path("mine.db")}).exitCode, 1);
    EXPECT_THAT(marked(), IsEmpty());
    EXPECT_EQ(run({"quarantine", "list", "--preferences", path("mine.db")}).out, file + "\n");
}

TEST_F(QuarantineCommand, RefusesPreferencesThatCannotBeKept) {
    std::string const file = writeFile("file", "x");
    Ended const ended = run({"quarantine", "list", "--preferences", file + "/mine.db"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("cannot keep preferences in '" + file + "/mine.db'"));
    EXPECT_THAT(linesOf(ended.err), testing::SizeIs(1));
}

TEST_F(QuarantineCommand, LeavesAFileAloneThatHoldsSomethingElse) {
    std::string const file = writeFile("novel.txt", "It was a dark and stormy night.");
    Ended const ended = run({"quarantine", "list", "--preferences", file});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("it holds something else"));
    EXPECT_EQ(runOther({"cat", file}).out, "It was a dark and stormy night.");
}

TEST_F(QuarantineCommand, WithoutAPlaceForPreferencesFilesAreOpenedAllTheSame) {
    environment["XDG_CONFIG_HOME"] = writeFile("file", "x");
    Ended const ended = run({"info", makeH264Clip()});
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_THAT(ended.out, HasSubstr("frames: 30"));
    EXPECT_THAT(ended.err, HasSubstr("warning: cannot keep preferences in"));
}

}  // namespace
}  // namespace tooltest
