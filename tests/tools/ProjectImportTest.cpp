#include <sys/stat.h>

#include <array>
#include <csignal>
#include <set>
#include <thread>

#include "tests/tools/Process.h"
#include "tests/tools/ProjectTest.h"

namespace tooltest {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class ProjectImport : public ProjectTest {
protected:
    /// Imports, and gives the report.
    [[nodiscard]] Json import(Arguments const& arguments) const { return ask("import", arguments); }
    void setDrive(std::string const& folder) const {
        std::filesystem::create_directories(path(folder));
        ASSERT_EQ(on("drives", {"--set", "A=" + path(folder)}).exitCode, 0);
    }
    /// Rows of a table of the project, as another process sees them.
    [[nodiscard]] int countOf(std::string const& table) const {
        sqlite3* database = nullptr;
        sqlite3_stmt* count = nullptr;
        sqlite3_open(project().c_str(), &database);
        sqlite3_prepare_v2(database, ("SELECT count(*) FROM " + table).c_str(), -1, &count, nullptr);
        int const rows = sqlite3_step(count) == SQLITE_ROW ? sqlite3_column_int(count, 0) : 0;
        sqlite3_finalize(count);
        sqlite3_close(database);
        return rows;
    }
    void makeMany(std::string const& folder, int count) const {
        for (int i = 0; i < count; ++i) {
            make(folder + "/" + std::to_string(i) + ".mov");
        }
    }
};

TEST_F(ProjectImport, TakesWhatIsMediaAndCountsWhatIsNot) {
    make("m/a.mov");
    make("m/b.WAV");
    make("m/c.png");
    make("m/d.txt");
    make("m/e");
    make("m/sub/f.mov");
    Ended const ended = on("import", {path("m")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(ended.out, AllOf(HasSubstr("imported: 3"), HasSubstr("passedOver: 3")));
    EXPECT_THAT(names(), ElementsAre("a.mov", "b.WAV", "c.png"));
}

TEST_F(ProjectImport, GoesThroughFoldersInFoldersIfItIsTold) {
    make("m/a.mov");
    make("m/1/2/3/b.mov");
    EXPECT_EQ(import({path("m"), "--recursive"})["imported"], 2);
}

TEST_F(ProjectImport, ImportsNothingTwice) {
    make("m/a.mov");
    make("m/a_proxy.mov");
    make("m/s.0001.dpx");
    make("m/s.0002.dpx");
    EXPECT_EQ(import({path("m")})["imported"], 2);
    Json const second = import({path("m")});
    EXPECT_EQ(second["imported"], 0);
    EXPECT_EQ(second["proxies"], 0);
    EXPECT_EQ(second["alreadyThere"], 2);
    EXPECT_EQ(import({path("m/a.mov"), path("m/../m/a.mov")})["alreadyThere"], 1);
    EXPECT_THAT(filesOf("a.mov"), SizeIs(2));
}

TEST_F(ProjectImport, AFileThatIsFiledUnderAnotherClipIsThereAlready) {
    std::string const media = make("m/a.mov");
    ASSERT_EQ(import({media})["imported"], 1);
    tamper(
        "UPDATE clips SET clip = '00000000000000000000000000000001';"
        "UPDATE media SET clip = '00000000000000000000000000000001'");
    EXPECT_EQ(import({media})["alreadyThere"], 1);
    EXPECT_THAT(names(), SizeIs(1));
}

TEST_F(ProjectImport, NumberedStillsAreOneClip) {
    for (char const* const number : {"0998", "0999", "1000", "1001", "1003"}) {
        make("m/shot." + std::string(number) + ".dpx");
    }
    EXPECT_EQ(import({path("m")})["imported"], 2);
    EXPECT_THAT(names(), ElementsAre("shot.0998.dpx", "shot.1003.dpx"));
    Json const series = ask("ls")[0];
    EXPECT_EQ(series["kind"], "image");
    EXPECT_EQ(series["bytes"], 20);
}

TEST_F(ProjectImport, NumberedFilmsAreClipsOfTheirOwn) {
    make("m/take1.mov");
    make("m/take2.mov");
    EXPECT_EQ(import({path("m")})["imported"], 2);
}

TEST_F(ProjectImport, TheChunksOfACameraAreOneClip) {
    make("m/A001_C001_001.R3D");
    make("m/A001_C001_002.R3D");
    make("m/A001_C002_001.R3D");
    make("m/A001_C001_proxy.mov");
    Json const report = import({path("m")});
    EXPECT_EQ(report["imported"], 2);
    EXPECT_EQ(report["proxies"], 1);
    EXPECT_EQ(filesOf("A001_C001_001.R3D")[1]["link"], path("m/A001_C001_proxy.mov"));
}

TEST_F(ProjectImport, ProxiesGoToTheClipBeside) {
    make("m/a.mov");
    make("m/a_proxy.mp4");
    make("m/a.PROXY.mov");
    make("m/Proxy/a.mp4");
    make("m/b.mov");
    make("m/proxies/b_proxy.mp4");
    make("m/proxies/lonely.mp4");
    Json const report = import({path("m"), "--recursive"});
    EXPECT_EQ(report["imported"], 3);
    EXPECT_EQ(report["proxies"], 4);
    EXPECT_THAT(names(), ElementsAre("a.mov", "b.mov", "lonely.mp4"));
    EXPECT_THAT(filesOf("a.mov"), SizeIs(4));
    EXPECT_EQ(filesOf("b.mov")[1]["role"], "proxy");
}

TEST_F(ProjectImport, AProxyThatComesLaterGoesToItsClip) {
    std::string const media = make("m/a.mov");
    ASSERT_EQ(import({media})["imported"], 1);
    make("m/a_proxy.mp4");
    Json const report = import({media});
    EXPECT_EQ(report["imported"], 0);
    EXPECT_EQ(report["proxies"], 1);
    EXPECT_THAT(filesOf("a.mov"), SizeIs(2));
}

TEST_F(ProjectImport, WhatIsCalledAProxyAndHasNoOriginalIsAClip) {
    EXPECT_EQ(import({make("m/a_proxy.mov")})["imported"], 1);
    EXPECT_THAT(names(), ElementsAre("a_proxy.mov"));
}

TEST_F(ProjectImport, LinksAreFollowedOnce) {
    make("m/a.mov");
    std::filesystem::create_directory_symlink(path("m"), path("m/loop"));
    std::filesystem::create_directory_symlink("..", path("m/up"));
    std::filesystem::create_symlink("a.mov", path("m/b.mov"));
    make("far/c.mov");
    std::filesystem::create_directory_symlink(path("far"), path("m/far"));
    Json const report = import({path("m"), "--recursive"});
    EXPECT_EQ(report["imported"], 2);
    EXPECT_EQ(report["alreadyThere"], 1);
    EXPECT_THAT(names(), ElementsAre("a.mov", "c.mov"));
}

TEST_F(ProjectImport, WhatHasVanishedIsSaid) {
    make("m/a.mov");
    std::filesystem::create_symlink("nowhere", path("m/gone.mov"));
    Ended const ended = on("import", {path("m"), path("m/missing.mov")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.out, AllOf(HasSubstr("imported: 1"), HasSubstr("vanished: 2")));
    EXPECT_THAT(ended.err, AllOf(HasSubstr("gone.mov"), HasSubstr("missing.mov")));
}

TEST_F(ProjectImport, FoldersThatMayNotBeReadAreSaid) {
    make("m/a.mov");
    make("m/closed/b.mov");
    ASSERT_EQ(::chmod(path("m/closed").c_str(), 0), 0);
    Ended const ended = runWithoutPrivileges({"project", "import", project(), path("m"), "-r"});
    ASSERT_EQ(::chmod(path("m/closed").c_str(), 0755), 0);
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.out, AllOf(HasSubstr("imported: 1"), HasSubstr("otherProblems: 1")));
    EXPECT_THAT(linesOf(ended.err), ElementsAre(HasSubstr("m/closed'")));
}

TEST_F(ProjectImport, NamesThatAreNoTextAreSaid) {
    make("m/a\xFF.mov");
    make("m/b.mov");
    Ended const ended = on("import", {path("m")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.out, AllOf(HasSubstr("imported: 1"), HasSubstr("otherProblems: 1")));
}

TEST_F(ProjectImport, WhatLiesBelowADriveIsFiledAtItsPlace) {
    setDrive("drive");
    make("drive/Film 1/a.mov");
    ASSERT_EQ(import({path("drive"), "-r"})["imported"], 1);
    Json const file = filesOf("a.mov")[0];
    EXPECT_EQ(file["drive"], "A");
    EXPECT_EQ(file["place"], path("drive/Film 1/a.mov"));
    EXPECT_TRUE(file["link"].is_null());
    std::filesystem::rename(path("drive"), path("moved"));
    ASSERT_EQ(on("drives", {"--set", "A=" + path("moved")}).exitCode, 0);
    EXPECT_EQ(stateOf("a.mov", {"--check"}), "here");
}

TEST_F(ProjectImport, LinkFilesArePutOnADrive) {
    setDrive("drive");
    std::string const media = make("m/a.mov");
    ASSERT_EQ(import({media, "--link", "--drive", "A"})["imported"], 1);
    Json const file = filesOf("a.mov")[0];
    EXPECT_EQ(file["link"], media);
    EXPECT_THAT(runOther({"cat", file["place"].get<std::string>()}).out, HasSubstr(media));
    EXPECT_EQ(on("check").exitCode, 0);
}

TEST_F(ProjectImport, LinkFilesAreNoMedia) {
    setDrive("drive");
    ASSERT_EQ(import({make("m/a.mov"), "--link"})["imported"], 1);
    Json const report = import({path("drive"), "-r"});
    EXPECT_EQ(report["imported"], 0);
    EXPECT_EQ(report["passedOver"], 1);
}

TEST_F(ProjectImport, CopiesAreWholeAndTheMediaStay) {
    setDrive("drive");
    std::string const media = make("m/a.mov", std::string(100000, 'x'));
    make("m/a_proxy.mov", "small");
    ASSERT_EQ(import({path("m"), "--copy"})["imported"], 1);
    Json const files = filesOf("a.mov");
    for (Json const& file : files) {
        EXPECT_TRUE(file["link"].is_null());
        EXPECT_TRUE(file["isThere"]);
    }
    EXPECT_EQ(runOther({"cmp", media, files[0]["place"].get<std::string>()}).exitCode, 0);
    EXPECT_EQ(stateOf("a.mov"), "here");
    EXPECT_EQ(import({path("m"), "--copy"})["alreadyThere"], 1);
}

TEST_F(ProjectImport, CopiesASeriesWithItsNumbers) {
    setDrive("drive");
    make("m/s.0009.dpx", "nine");
    make("m/s.0010.dpx", "ten");
    ASSERT_EQ(import({path("m"), "--copy"})["imported"], 1);
    std::string const place = filesOf("s.0009.dpx")[0]["place"];
    EXPECT_THAT(place, testing::EndsWith("-V000_0009.dpx"));
    std::string const next = place.substr(0, place.size() - 8) + "0010.dpx";
    EXPECT_EQ(runOther({"cat", next}).out, "ten");
}

TEST_F(ProjectImport, WithoutADriveNothingIsLinkedOrCopied) {
    std::string const media = make("m/a.mov");
    EXPECT_EQ(on("import", {media, "--copy"}).exitCode, 1);
    EXPECT_EQ(on("import", {media, "--link"}).exitCode, 1);
    EXPECT_EQ(on("import", {media, "--drive", "A"}).exitCode, 2);
    EXPECT_EQ(on("import", {media, "--copy", "--link"}).exitCode, 2);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ProjectImport, AClipThatCanNotBePlacedIsNotImported) {
    setDrive("drive");
    writeFile("drive/Video", "in the way");
    Ended const ended = on("import", {make("m/a.mov"), make("m/b.wav"), "--copy"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, AllOf(HasSubstr("m/a.mov' was not imported"), HasSubstr("make room")));
    EXPECT_THAT(names(), ElementsAre("b.wav"));
}

TEST_F(ProjectImport, AProbeFillsInWhatTheReaderSays) {
    std::string const film = makeH264Clip("film.mp4");
    std::string const sound =
        makeClip("sound.mov", {"-f", "lavfi", "-i", "sine=duration=1", "-map", "1:a", "-ac", "2"});
    std::string const letter = writeFile("letter.mov", "This is a letter and no film.\n");
    Ended const ended = on("import", {film, sound, letter, "--probe"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("no reader opens '" + letter + "'"));
    Json const clips = ask("ls");
    ASSERT_THAT(clips, SizeIs(3));
    EXPECT_EQ(clips[0]["videoChannels"], 1);
    EXPECT_EQ(clips[0]["audioChannels"], 0);
    EXPECT_EQ(clips[2]["videoChannels"], 0);
    EXPECT_EQ(clips[2]["audioChannels"], 2);
    EXPECT_EQ(filesOf("sound.mov")[0]["channels"], Json({"S1", "S2"}));
    EXPECT_EQ(clips[2]["bytes"], std::filesystem::file_size(sound)) << "one file, however many channels";
}

TEST_F(ProjectImport, EndsBetweenChangesWhenItIsStopped) {
    constexpr int clips = 6000;
    makeMany("m", clips);
    Process import({PLAYFILE_CLI, "project", "import", project(), path("m"), "--json"}, environment);
    while (countOf("clips") == 0) {
        std::this_thread::yield();
    }
    import.send(SIGINT);
    std::string out;
    std::string err;
    EXPECT_EQ(import.wait(out, err), 128 + SIGINT) << err;
    Json const report = Json::parse(out);
    EXPECT_EQ(names().size(), report["imported"].get<std::size_t>());
    EXPECT_EQ(countOf("media"), report["imported"].get<int>());
    EXPECT_GT(report["imported"].get<int>(), 0);
    EXPECT_LT(report["imported"].get<int>(), clips);
    EXPECT_EQ(this->import({path("m")})["imported"], clips - report["imported"].get<int>());
}

TEST_F(ProjectImport, TwoAtOnceLoseNothingAndTakeNothingTwice) {
    makeMany("one", 700);
    makeMany("shared", 700);
    makeMany("two", 700);
    Process first({PLAYFILE_CLI, "project", "import", project(), path("one"), path("shared"), "--json"},
                  environment);
    Process second({PLAYFILE_CLI, "project", "import", project(), path("shared"), path("two"), "--json"},
                   environment);
    std::string outs[2];
    std::string err;
    EXPECT_EQ(first.wait(outs[0], err), 0) << err;
    EXPECT_EQ(second.wait(outs[1], err), 0) << err;
    Json const reports[2] = {Json::parse(outs[0]), Json::parse(outs[1])};
    EXPECT_EQ(reports[0]["imported"].get<int>() + reports[1]["imported"].get<int>(), 2100);
    EXPECT_EQ(reports[0]["alreadyThere"].get<int>() + reports[1]["alreadyThere"].get<int>(), 700);
    EXPECT_THAT(names(), SizeIs(2100));
    EXPECT_EQ(on("check").exitCode, 0);
}

/// Ten thousand clips in deep folders, with names in many scripts, and among them whatever else a disk holds.
TEST_F(ProjectImport, ALargeTreeIsImportedWholeAndRight) {
    constexpr int clips = 10000;
    std::array<std::string, 6> const words = {"Straße", "Сцена", "シーン", "場景", "दृश्य", "مشهد"};
    for (int i = 0; i < clips; ++i) {
        std::string folder = "tree";
        for (int step = 1000; step >= 10; step /= 10) {
            folder += "/" + words[static_cast<std::size_t>(i / step) % 6] + std::to_string(i / step);
        }
        std::string const stem = folder + "/" + words[static_cast<std::size_t>(i) % 6] + std::to_string(i);
        make(stem + (i % 3 == 0 ? ".wav" : ".mov"));
        if (i % 10 == 0) {
            make(folder + "/notes.txt");
            std::filesystem::create_symlink(path("tree"), path(folder + "/loop"));
        }
        if (i % 100 == 1) {
            make(stem + "_proxy.mp4");
            std::filesystem::create_symlink("nowhere", path(folder + "/lost.mov"));
        }
    }
    Ended const ended = on("import", {path("tree"), "--recursive", "--json"});
    EXPECT_EQ(ended.exitCode, 1);
    Json const report = Json::parse(ended.out);
    EXPECT_EQ(report["imported"], clips);
    EXPECT_EQ(report["proxies"], 100);
    EXPECT_EQ(report["passedOver"], 1000);
    EXPECT_EQ(report["vanished"], 100);
    EXPECT_EQ(report["otherProblems"], 0);
    std::vector<std::string> const all = names();
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), static_cast<std::size_t>(clips));
    EXPECT_EQ(import({path("tree"), "-r"})["imported"], 0);
    EXPECT_EQ(on("check").exitCode, 0);
}

}  // namespace
}  // namespace tooltest
