/// The commands about material: its header, its size, its deletion.
#include "playfile/playfile.h"
#include "tests/tools/ToolTest.h"

namespace tooltest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class MaterialCommands : public ToolTest {
protected:
    [[nodiscard]] static std::string version() { return playfileDllVersionStr(); }
    [[nodiscard]] bool isThere(std::string const& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path(name)));
    }
    /// What `header --check` says of a text, without the text's name.
    [[nodiscard]] std::vector<std::string> problemsOf(std::string const& text) const {
        std::string const file = writeFile("text.sav", text);
        Ended const ended = run({"header", "--check", file});
        std::vector<std::string> lines;
        for (std::string const& line : linesOf(ended.out)) {
            EXPECT_TRUE(line.starts_with(file + ":")) << line;
            lines.push_back(line.substr(file.size() + 1));
        }
        EXPECT_EQ(ended.exitCode, lines == std::vector<std::string>{" nothing is wrong"} ? 0 : 1);
        return lines;
    }
};

TEST_F(MaterialCommands, HeaderShowsTheOneThatAFileWouldGet) {
    std::string const clip = makeH264Clip();
    Ended const ended = run({"header", clip});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(ended.out,
              "not stored; it would be:\nheader_version 6\nmedium vision\ninput_rate 25.00000000\n"
              "replay_rate 25.00000000\nformat data\ndrop_frame 0\ntimecode_rate 0.00000000\n"
              "start_time_code 0.00000000\nend_time_code 0.00000000\nstart_offset 0\nvision_type PAL\n"
              "width 160\nheight 120\nsequence -1\ntransfer_type -1\nreelid \norig_fname " +
                  clip + "\nox_ver " + version() + "\nvideo_field both\n");
}

TEST_F(MaterialCommands, HeaderShowsTheOneThatAnExtractionHasStored) {
    std::string const clip = makeH264Clip();
    ASSERT_EQ(run({"extract", clip, "--to", "3", "-o", path("a.mov")}).exitCode, 0);
    Ended const ended = run({"header", path("a.mov")});
    EXPECT_THAT(ended.out, HasSubstr("stored in " + path("a.sav") + ":\n"));
    EXPECT_THAT(ended.out, HasSubstr("\norig_fname " + clip + "\n"));
    EXPECT_THAT(run({"header", path("a.mov"), "--json"}).out, HasSubstr("\"width\": \"160\""));
}

TEST_F(MaterialCommands, HeaderCheckFindsNothingInATextThatWasWritten) {
    ASSERT_EQ(run({"extract", makeH264Clip(), "--to", "3", "-o", path("a.mov")}).exitCode, 0);
    Ended const ended = run({"header", "--check", path("a.sav")});
    EXPECT_EQ(ended.out, path("a.sav") + ": nothing is wrong\n");
    EXPECT_EQ(ended.exitCode, 0);
}

TEST_F(MaterialCommands, HeaderCheckTellsWhatIsWrongAndWhere) {
    EXPECT_THAT(problemsOf("header_version 6\n\rmedium vision\n\rwidth 7x\n\rwidth 8\n\rcolour red\n\r"
                           "number_of_channels 2\n\rreelid REEL00012\n\rinput_rate\n\rreplay_rate 2,5\n\r"
                           "sound_format x\n\rvideo_field both fields\n\r"),
                ElementsAre("3: '7x' is no whole number of 32 bits",
                            "4: 'width' stands in line 3 already, which counts",
                            "5: 'colour' is no key: the line is passed over",
                            "6: 'number_of_channels' means nothing for the medium 'vision'",
                            "7: 'REEL00012' is cut to 8 characters",
                            "8: 'input_rate' has no value: it counts as missing", "9: '2,5' is no number",
                            "10: 'sound_format' isn't read in a text of version 6",
                            "11: only 'both' counts: the value ends at its first blank"));
}

TEST_F(MaterialCommands, HeaderCheckKnowsLinesOfEveryEnd) {
    for (std::string const end : {"\n", "\r", "\r\n", "\n\r"}) {
        EXPECT_THAT(problemsOf("header_version 6" + end + "medium film" + end),
                    ElementsAre("2: 'film' is no medium: write 'sound' or 'vision'"));
    }
}

TEST_F(MaterialCommands, HeaderCheckLooksAtTheTextAsAWhole) {
    EXPECT_THAT(problemsOf("header_version 9\n"),
                ElementsAre(" there is no 'medium': it counts as sound",
                            " this is of version 9, and 6 is the latest that is known"));
    EXPECT_THAT(problemsOf(std::string(20'000, 'x')),
                ElementsAre(" this is longer than any header, 10731 bytes"));
    EXPECT_THAT(problemsOf("header_version 6\nmedium sound\nformat " + std::string(503, 'f') + "\n"),
                ElementsAre("3: the line is longer than 511 bytes with its end",
                            "3: '" + std::string(503, 'f') + "' is cut to 20 characters"));
}

TEST_F(MaterialCommands, HeaderCheckTakesOldTexts) {
    EXPECT_THAT(problemsOf("medium sound\nsampling_frequency 48000\nsound_format s16\n"),
                ElementsAre(" nothing is wrong"));
    EXPECT_THAT(problemsOf("medium sound\ninput_rate 48000\n"),
                ElementsAre("2: 'input_rate' isn't read in a text of version 1"));
}

TEST_F(MaterialCommands, HeaderWantsAFileOrAText) {
    Ended const ended = run({"header"});
    EXPECT_EQ(ended.exitCode, 2);
    EXPECT_THAT(ended.err, HasSubstr("name a media file, or a text with --check"));
}

TEST_F(MaterialCommands, SizeAddsUp) {
    std::string const one = writeFile("one.mov", std::string(999, 'x'));
    std::string const two = writeFile("two.mov", std::string(1'500'000, 'x'));
    EXPECT_EQ(run({"size", one, two}).out,
              "999  999 bytes  " + one + "\n1500000  1.5 MB  " + two + "\n1500999  1.5 MB  in all\n");
    EXPECT_EQ(run({"size", one}).out, "999  999 bytes  " + one + "\n");
    EXPECT_THAT(run({"size", one, "--json"}).out, HasSubstr("\"bytes\": 999"));
}

TEST_F(MaterialCommands, SizeNamesAFileThatIsMissing) {
    Ended const ended = run({"size", path("gone.mov")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("there is no file '" + path("gone.mov") + "'"));
}

TEST_F(MaterialCommands, DeleteTakesTheHeaderAlongAndKeepsTheRest) {
    ASSERT_EQ(run({"extract", makeH264Clip(), "--to", "3", "-o", path("a.mov")}).exitCode, 0);
    static_cast<void>(writeFile("a.txt", "notes"));
    Ended const ended = run({"delete", path("a.mov"), "--yes"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(ended.out, "delete " + path("a.mov") + "\ndelete " + path("a.sav") + "\nkeep   " +
                             path("a.txt") + ": it is no part of the material\n");
    EXPECT_FALSE(isThere("a.mov"));
    EXPECT_FALSE(isThere("a.sav"));
    EXPECT_TRUE(isThere("a.txt"));
}

TEST_F(MaterialCommands, DeleteKeepsAHeaderThatOtherMediaMayNeed) {
    ASSERT_EQ(run({"extract", makeH264Clip(), "--to", "3", "-o", path("a.mov")}).exitCode, 0);
    static_cast<void>(writeFile("a.wav", "sound"));
    Ended const ended = run({"delete", path("a.mov"), "--yes"});
    EXPECT_THAT(ended.out, HasSubstr("keep   " + path("a.sav") + ": other media of that name may need"));
    EXPECT_TRUE(isThere("a.sav"));
    EXPECT_TRUE(isThere("a.wav"));
}

TEST_F(MaterialCommands, DeleteOfALinkKeepsTheMedia) {
    std::string const media = writeFile("media.mov", "media");
    std::filesystem::create_symlink(media, path("link.mov"));
    Ended const ended = run({"delete", path("link.mov"), "--yes"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.out, HasSubstr("keep   " + media + ": the link to it goes, not the media"));
    EXPECT_FALSE(isThere("link.mov"));
    EXPECT_TRUE(isThere("media.mov"));
}

TEST_F(MaterialCommands, DeleteDoesNothingUnlessItIsTold) {
    std::string const file = writeFile("a.mov", "media");
    EXPECT_EQ(run({"delete", file, "--dry-run"}).out, "delete " + file + "\n");
    Ended const unconfirmed = run({"delete", file});
    EXPECT_EQ(unconfirmed.exitCode, 2);
    EXPECT_THAT(unconfirmed.err, HasSubstr("say --yes"));
    EXPECT_TRUE(isThere("a.mov"));
    EXPECT_THAT(run({"delete", file, "--dry-run", "--json"}).out, HasSubstr("\"keep\": []"));
}

TEST_F(MaterialCommands, DeleteDeletesNothingIfOneFileIsMissing) {
    std::string const file = writeFile("a.mov", "media");
    EXPECT_EQ(run({"delete", file, path("gone.mov"), "--yes"}).exitCode, 1);
    EXPECT_TRUE(isThere("a.mov"));
}

TEST_F(MaterialCommands, DeleteThatFailsSaysSoAndKeepsTheHeader) {
    std::filesystem::create_directory(path("out"));
    environment["PLAYFILE"] = PLAYFILE_CLI;
    environment["OUT"] = path("out");
    static_cast<void>(writeFile("out/a.mov", "media"));
    static_cast<void>(writeFile("out/a.sav", "header_version 6\nmedium vision\n"));
    Ended const ended = runOther({"unshare", "--mount", "sh", "-c",
                                  "mount --bind \"$OUT\" \"$OUT\" && mount -o remount,ro,bind \"$OUT\" && "
                                  "\"$PLAYFILE\" delete \"$OUT/a.mov\" --yes"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("cannot delete all of '" + path("out/a.mov") + "'"));
    EXPECT_TRUE(isThere("out/a.mov"));
    EXPECT_TRUE(isThere("out/a.sav"));
}

}  // namespace
}  // namespace tooltest
