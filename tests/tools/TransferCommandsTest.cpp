/// The commands that transfer a project's media: download, localise, tasks and relocate, with a real project and a real
/// server.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "host/sqlite/SqliteProject.h"
#include "tests/fakes/CallLog.h"
#include "tests/support/HttpServer.h"
#include "tests/tools/Process.h"
#include "tests/tools/ToolTest.h"
#include "toolkit/catalogue/DiskManager.h"

namespace tooltest {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class TransferCommands : public ToolTest {
protected:
    TransferCommands() {
        for (char const* const name : {"m", "n", "out", "elsewhere"}) {
            fs::create_directories(path(name));
        }
        project_ = path("film.project");
        auto const project = open();
        EXPECT_TRUE(project->setDriveRoot('M', wide(path("m"))));
        EXPECT_TRUE(project->setDriveRoot('N', wide(path("n"))));
        EXPECT_TRUE(project->setDriveForTask("import", 'M'));
    }

    [[nodiscard]] std::unique_ptr<SqliteProject> open() const {
        std::string error;
        auto project = SqliteProject::open(wide(project_), error);
        EXPECT_TRUE(project) << error;
        return project;
    }
    static Cookie clipOf(unsigned number) { return videoOf(number, 'E', Cookie::wholeClip); }
    static Cookie videoOf(unsigned number, char type = 'V', std::uint8_t channel = 0) {
        Ox::UUID uuid;
        uuid.bytes[0] = 0xAB;
        uuid.bytes[15] = static_cast<std::uint8_t>(number);
        return {uuid, type, channel};
    }
    void addClip(unsigned number, std::string const& name, MediaFileInfo const& file) const {
        NewClip clip;
        clip.cookie = clipOf(number);
        clip.record.name = wide(name);
        clip.record.logType = logShot;
        clip.record.videoChannels = 1;
        clip.media = {{videoOf(number), {file, {}}}};
        ASSERT_TRUE(open()->addClip(clip));
    }
    /// A clip whose file is at a URL or a path elsewhere, with a place on drive M.
    void addLinked(unsigned number, std::string const& name, std::string const& target) const {
        addClip(number, name,
                {MaterialFilename('M', wide("v" + std::to_string(number) + ".mov")), wide(target), 1});
    }
    /// A clip with a file on drive M.
    void addOwn(unsigned number, std::string const& name, std::string const& contents) const {
        std::string const file = "deep/v" + std::to_string(number) + ".mov";
        fs::create_directories(path("m/deep"));
        writeFile("m/" + file, contents);
        addClip(number, name, {MaterialFilename('M', wide(file)), contents.size()});
    }
    void serve(std::string const& target, std::string const& body) {
        test::HttpScript script;
        script.body = body;
        server_.on(target, script);
    }
    [[nodiscard]] std::string contents(std::string const& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    [[nodiscard]] std::string placeOf(unsigned number) const {
        auto const project = open();
        project->install();
        return narrow(project->catalogue().findEntryForCookie(videoOf(number))->getPhysicalFilename());
    }
    [[nodiscard]] bool isEmpty(std::string const& folder) const { return fs::is_empty(path(folder)); }

    std::string project_;
    test::HttpServer server_;
};

// ---- download ----

TEST_F(TransferCommands, DownloadCopiesRemoteMediaAndNamesTheCopies) {
    serve("/a.mov", std::string(100'000, 'x'));
    addLinked(1, "Shot", server_.url("/a.mov"));
    Ended const ended = run({"download", project_, "Shot", "--to", path("out")});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(contents("out/Shot.mov"), std::string(100'000, 'x'));
    EXPECT_THAT(linesOf(ended.out),
                testing::AllOf(Contains("Downloading media : Shot"), Contains("  " + path("out/Shot.mov")),
                               Contains("complete")));
    EXPECT_EQ(placeOf(1), server_.url("/a.mov"));
}

TEST_F(TransferCommands, DownloadTellsItAsJson) {
    serve("/a.mov", "12345");
    addLinked(1, "Shot", server_.url("/a.mov"));
    Ended const ended = run({"download", project_, "--all", "--to", path("out"), "--json"});
    auto const report = nlohmann::json::parse(ended.out);
    EXPECT_EQ(report[0]["result"], "complete");
    EXPECT_EQ(report[0]["files"][0], path("out/Shot.mov"));
    EXPECT_EQ(report[0]["folder"], path("out"));
}

TEST_F(TransferCommands, SettingsAreWrittenAndReadBack) {
    serve("/a.mov", "12345");
    addLinked(1, "Shot", server_.url("/a.mov"));
    EXPECT_EQ(run({"download", project_, "--all", "--to", path("out/x"), "--naming", "file",
                   "--save-settings", path("s.json")})
                  .exitCode,
              0);
    auto const saved = nlohmann::json::parse(contents("s.json"));
    EXPECT_EQ(saved["Location"], path("out/x"));
    EXPECT_EQ(saved["Naming"], "file");
    fs::remove_all(path("out/x"));
    EXPECT_EQ(run({"download", project_, "--all", "--settings", path("s.json")}).exitCode, 0);
    EXPECT_EQ(contents("out/x/a.mov"), "12345");
}

TEST_F(TransferCommands, ProxiesComeFromTheServerToo) {
    serve("/a.mov", "original");
    serve("/p.mp4", "proxy");
    addLinked(1, "Shot", server_.url("/a.mov"));
    {
        auto const project = open();
        project->install();
        MediaFileInfo proxy(MaterialFilename('M', wide("p1.mp4")), wide(server_.url("/p.mp4")), 1);
        proxy.isProxyFile = true;
        project->catalogue().addFile(videoOf(1), proxy);
    }
    EXPECT_EQ(run({"download", project_, "Shot", "--to", path("out"), "--proxy-ext", "mp4"}).exitCode, 0);
    EXPECT_EQ(contents("out/Shot.proxy.mp4"), "proxy");
    EXPECT_EQ(run({"localise", project_, "Shot", "--media", "proxies"}).exitCode, 0);
    EXPECT_EQ(contents("m/p1.mp4"), "proxy");
    EXPECT_FALSE(fs::exists(path("m/v1.mov")));
}

TEST_F(TransferCommands, ATerminalShowsABarAndAPipeALineForEachTenth) {
    test::HttpScript script;
    script.body = std::string(600, 'x');
    script.isDripping = true;
    server_.on("/a.mov", script);
    addLinked(1, "Shot", server_.url("/a.mov"));
    std::string const command = std::string(PLAYFILE_CLI) + " --preferences " + path("p.db") + " download " +
                                project_ + " --all --to " + path("out");
    Ended const onTerminal = runOther({"script", "-qec", command, "/dev/null"});
    EXPECT_THAT(onTerminal.out, testing::ContainsRegex("\\[#+-*\\] [0-9]+ %  .*/s  [0-9]+:[0-9][0-9] left"));
    Ended const inPipe = run({"download", project_, "--all", "--to", path("out")});
    EXPECT_THAT(inPipe.out, Not(HasSubstr("[#")));
    EXPECT_THAT(linesOf(inPipe.out), Contains(testing::EndsWith("0 %")));
}

TEST_F(TransferCommands, BadSettingsAreRefused) {
    writeFile("s.json", "{\"Location\": \"/x\"}");
    Ended const ended = run({"download", project_, "--all", "--settings", path("s.json")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("\"ProxyExt\""));
    EXPECT_THAT(run({"download", project_, "--all"}).err, HasSubstr("--to"));
}

TEST_F(TransferCommands, AConnectionThatDropsIsAnErrorAndLeavesNothing) {
    test::HttpScript script;
    script.body = std::string(100'000, 'x');
    script.dropAfter = 5'000;
    server_.on("/a.mov", script);
    addLinked(1, "Shot", server_.url("/a.mov"));
    Ended const ended = run({"download", project_, "--all", "--to", path("out")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.out, HasSubstr("failed"));
    EXPECT_NE(ended.err, "");
    EXPECT_TRUE(isEmpty("out"));
}

TEST_F(TransferCommands, InterruptingADownloadLeavesNothing) {
    test::HttpScript script;
    script.body = std::string(100'000, 'x');
    script.stall = test::HttpScript::eStall::afterBytes;
    script.stallAfter = 50'000;
    server_.on("GET", "/a.mov", script);
    serve("/a.mov", std::string(100'000, 'x'));
    server_.on("GET", "/a.mov", script);
    addLinked(1, "Shot", server_.url("/a.mov"));
    Process process(
        {PLAYFILE_CLI, "--preferences", path("p.db"), "download", project_, "--all", "--to", path("out")},
        environment);
    ASSERT_TRUE(server_.waitForStalls(1));
    process.send(SIGINT);
    std::string out;
    std::string err;
    EXPECT_EQ(process.wait(out, err), 128 + SIGINT);
    EXPECT_TRUE(isEmpty("out"));
    EXPECT_THAT(out, HasSubstr("stopped"));
}

TEST_F(TransferCommands, ClipsThatAreNotThereAreNamed) {
    Ended const ended = run({"download", project_, "Nobody", "--to", path("out")});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("Nobody"));
    EXPECT_EQ(run({"download", project_, "--to", path("out")}).exitCode, 2);
    EXPECT_EQ(run({"download", path("missing.project"), "--all", "--to", path("out")}).exitCode, 1);
}

// ---- localise ----

TEST_F(TransferCommands, LocaliseBringsLinkedAndRemoteMediaToTheirPlaces) {
    serve("/a.mov", "remote");
    addLinked(1, "Far", server_.url("/a.mov"));
    addLinked(2, "Near", writeFile("elsewhere/b.mov", "linked"));
    Ended const ended = run({"localise", project_, "--all", "--media", "originals"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(contents("m/v1.mov"), "remote");
    EXPECT_EQ(contents("m/v2.mov"), "linked");
    EXPECT_EQ(placeOf(1), path("m/v1.mov"));
    EXPECT_EQ(placeOf(2), path("m/v2.mov"));
    EXPECT_THAT(linesOf(ended.out), Contains("  " + path("m/v2.mov")));
}

TEST_F(TransferCommands, LocaliseBringsMediaOfARemoteProjectSpaceOnceForAllClips) {
    serve("/space/space.json", R"({"version": 1, "roots": [{"path": "/p"}]})");
    serve("/space/media/r.mov", "remote");
    for (unsigned const number : {1U, 2U}) {
        std::string const clip = clipOf(number).asString(true).str();
        serve("/space/clips/" + clip + ".json",
              R"({"version": 1, "clip": ")" + clip +
                  R"(", "originals": [{"name": "media/r.mov", "size": 6}]})");
        addClip(number, "Clip " + std::to_string(number), MediaFileInfo());
    }
    EXPECT_EQ(run({"project", "spaces", project_, "--add", "film=" + server_.url("/space/"), "--use", "film"})
                  .exitCode,
              0);
    Ended const ended = run({"localise", project_, "--all", "--media", "originals"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(placeOf(1).rfind(path("m"), 0), 0U) << placeOf(1);
    EXPECT_EQ(placeOf(2), placeOf(1));
    std::ifstream in(placeOf(1));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "remote");
}

TEST_F(TransferCommands, LocaliseLeavesLinkedMediaAloneIfItIsAskedTo) {
    addLinked(2, "Near", writeFile("elsewhere/b.mov", "linked"));
    EXPECT_EQ(run({"localise", project_, "Near", "--remote-only"}).exitCode, 0);
    EXPECT_TRUE(isEmpty("m"));
}

TEST_F(TransferCommands, LocaliseASecondTimeHasNothingToDo) {
    addLinked(2, "Near", writeFile("elsewhere/b.mov", "linked"));
    EXPECT_EQ(run({"localise", project_, "--all"}).exitCode, 0);
    EXPECT_EQ(run({"localise", project_, "--all"}).exitCode, 0);
    EXPECT_EQ(contents("m/v2.mov"), "linked");
}

TEST_F(TransferCommands, LocaliseWithoutADriveTellsHowToAddOne) {
    open()->removeDrive('M');
    open()->removeDrive('N');
    Ended const ended = run({"localise", project_, "--all"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("project drives"));
}

/// Each file of a byte takes a page, so that more of them fit by their sizes than by the room there is.
TEST_F(TransferCommands, ADriveThatFillsUpEndsALocalisingAndWhatCameBeforeStays) {
    constexpr unsigned clipCount = 600;
    std::vector<NewClip> clips;
    for (unsigned number = 0; number < clipCount; ++number) {
        std::string const file = writeFile("elsewhere/" + std::to_string(number), "x");
        Ox::UUID uuid;
        uuid.bytes[0] = static_cast<std::uint8_t>(number / 256);
        uuid.bytes[1] = static_cast<std::uint8_t>(number % 256);
        NewClip clip;
        clip.cookie = Cookie(uuid, 'E', Cookie::wholeClip);
        clip.record.logType = logShot;
        clip.media = {
            {Cookie(uuid, 'V', 0),
             {MediaFileInfo(MaterialFilename('M', wide(std::to_string(number))), wide(file), 1), {}}}};
        clips.push_back(clip);
    }
    ASSERT_TRUE(open()->addClips(clips));
    fs::create_directories(path("kept"));
    std::string const script = "mount -t tmpfs -o size=2m playfile-test " + path("m") + "\n" + PLAYFILE_CLI +
                               " --preferences " + path("p.db") + " localise " + project_ +
                               " --all\ncode=$?\ncp -r " + path("m") + "/. " + path("kept") +
                               "\nexit $code\n";
    Ended const ended = runOther({"unshare", "--mount", "sh", "-c", script});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("make room"));
    std::size_t hereCount = 0;
    auto const project = open();
    for (NewClip const& clip : clips) {
        auto const entry = project->catalogue().findEntryForCookie(clip.media[0].first);
        std::string const kept = "kept/" + narrow(entry->materialFilename.getPath());
        EXPECT_EQ(!entry->isLinked(), fs::exists(path(kept))) << kept;
        EXPECT_FALSE(fs::exists(path(kept + ".partial")));
        hereCount += entry->isLinked() ? 0 : 1;
    }
    EXPECT_GT(hereCount, 100U);
    EXPECT_LT(hereCount, clipCount);
}

// ---- tasks ----

TEST_F(TransferCommands, TasksDoesAListOneAfterTheOther) {
    serve("/a.mov", "remote");
    addLinked(1, "Far", server_.url("/a.mov"));
    addLinked(2, "Near", writeFile("elsewhere/b.mov", "linked"));
    writeFile("list.json", R"({"tasks": [
        {"task": "download", "clips": ["Far"], "settings": {"Location": ")" +
                               path("out") + R"(", "ProxyExt": "mov", "Naming": "clip"}},
        {"task": "localise", "clips": ["Near"], "media": "originals"}]})");
    Ended const ended = run({"tasks", project_, path("list.json"), "--json"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    auto const report = nlohmann::json::parse(ended.out);
    ASSERT_EQ(report.size(), 2U);
    EXPECT_EQ(report[0]["title"], "Downloading media : Far");
    EXPECT_EQ(contents("out/Far.mov"), "remote");
    EXPECT_EQ(contents("m/v2.mov"), "linked");
}

TEST_F(TransferCommands, AListThatCannotBeUsedBeginsNothing) {
    addLinked(2, "Near", writeFile("elsewhere/b.mov", "linked"));
    for (char const* const entry :
         {R"({"task": "dance", "clips": ["Near"]})", R"({"task": "localise"})",
          R"({"task": "localise", "clips": 3})", R"({"task": "download", "clips": ["Near"]})",
          R"({"task": "localise", "clips": ["Nobody"]})", "7"}) {
        writeFile("list.json",
                  std::string(R"({"tasks": [{"task": "localise", "clips": ["Near"]}, )") + entry + "]}");
        EXPECT_EQ(run({"tasks", project_, path("list.json")}).exitCode, 1) << entry;
    }
    for (char const* const list : {"", "[]", "{\"tasks\": 1}", "{"}) {
        writeFile("list.json", list);
        EXPECT_EQ(run({"tasks", project_, path("list.json")}).exitCode, 1) << list;
    }
    EXPECT_TRUE(isEmpty("m"));
}

// ---- relocate ----

TEST_F(TransferCommands, RelocateMovesADrivesMaterialAndCorrectsTheProject) {
    addOwn(1, "One", "first");
    addOwn(2, "Two", "second");
    writeFile("m/deep/v1.sav", "companion");
    Ended const ended = run({"relocate", project_, "--drive", "M", "--to", "N", "--move"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_EQ(contents("n/deep/v1.mov"), "first");
    EXPECT_EQ(contents("n/deep/v1.sav"), "companion");
    EXPECT_EQ(contents("n/deep/v2.mov"), "second");
    EXPECT_TRUE(fs::is_empty(path("m/deep")));
    EXPECT_EQ(placeOf(1), path("n/deep/v1.mov"));
}

/// Between two file systems in memory, with companions and waveforms beside the files.
TEST_F(TransferCommands, RelocateMovesMaterialBetweenFileSystemsWhateverItsName) {
    std::vector<std::string> const stems = {"東京 駅", "Größe", "a*b?", "it's $5", "שלום"};
    fs::create_directories(path("staged/deep"));
    fs::create_directories(path("kept"));
    for (unsigned number = 0; number < stems.size(); ++number) {
        std::string const place = "deep/" + stems[number] + ".mov";
        for (char const* const extension : {".mov", ".sav", ".wfm"}) {
            writeFile("staged/deep/" + stems[number] + extension, stems[number] + extension);
        }
        addClip(number + 1, stems[number], {MaterialFilename('M', wide(place)), 1});
    }
    writeFile("staged/deep/aXb!.sav", "of nobody");
    std::string const script = "mount -t tmpfs -o size=4m playfile-test " + path("m") +
                               "\nmount -t tmpfs -o size=4m playfile-test " + path("n") + "\ncp -r " +
                               path("staged") + "/. " + path("m") + "\n" + PLAYFILE_CLI + " --preferences " +
                               path("p.db") + " relocate " + project_ +
                               " --drive M --to N --move\ncode=$?\ncp -r " + path("n") + "/. " +
                               path("kept") + "\nls " + path("m") + "/deep\nexit $code\n";
    Ended const ended = runOther({"unshare", "--mount", "sh", "-c", script});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    for (unsigned number = 0; number < stems.size(); ++number) {
        for (char const* const extension : {".mov", ".sav", ".wfm"}) {
            EXPECT_EQ(contents("kept/deep/" + stems[number] + extension), stems[number] + extension);
        }
        EXPECT_EQ(placeOf(number + 1), path("n/deep/" + stems[number] + ".mov"));
    }
    EXPECT_EQ(linesOf(ended.out).back(), "aXb!.sav");
}

TEST_F(TransferCommands, RelocateOfAClipCopiesItAndLeavesTheRest) {
    addOwn(1, "One", "first");
    addOwn(2, "Two", "second");
    EXPECT_EQ(run({"relocate", project_, "--clip", "Two", "--to", "N"}).exitCode, 0);
    EXPECT_EQ(contents("n/deep/v2.mov"), "second");
    EXPECT_EQ(contents("m/deep/v2.mov"), "second");
    EXPECT_FALSE(fs::exists(path("n/deep/v1.mov")));
}

TEST_F(TransferCommands, ADryRunListsWhatWouldBeCopiedAndWhyNotAndDoesNothing) {
    addOwn(1, "One", "first");
    addOwn(2, "Two", "second");
    addOwn(3, "Three", "third");
    fs::create_directories(path("n/deep"));
    writeFile("n/deep/v2.mov", "there");
    fs::remove(path("m/deep/v3.mov"));
    Ended const ended = run({"relocate", project_, "--drive", "M", "--to", "N", "--move", "--dry-run"});
    EXPECT_EQ(ended.exitCode, 0) << ended.err;
    EXPECT_THAT(
        linesOf(ended.out),
        testing::AllOf(Contains("copy  " + path("m/deep/v1.mov") + "  5 B"),
                       Contains("skip  " + path("m/deep/v2.mov") + ": there is a file at its target already"),
                       Contains("skip  " + path("m/deep/v3.mov") + ": it isn't there, or empty")));
    EXPECT_FALSE(fs::exists(path("n/deep/v1.mov")));
    auto const report = nlohmann::json::parse(
        run({"relocate", project_, "--drive", "M", "--to", "N", "--dry-run", "--json"}).out);
    EXPECT_EQ(report["neededBytes"], 5);
    EXPECT_EQ(report["files"].size(), 3U);
}

TEST_F(TransferCommands, RelocateRefusesDrivesThatAreNotThereAndNothingToRelocate) {
    Ended const ended = run({"relocate", project_, "--drive", "Q", "--to", "N"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_THAT(ended.err, HasSubstr("'Q'"));
    EXPECT_EQ(run({"relocate", project_, "--to", "N"}).exitCode, 2);
    EXPECT_EQ(run({"relocate", project_, "--drive", "M", "--clip", "x", "--to", "N"}).exitCode, 2);
}

TEST_F(TransferCommands, InterruptingARelocationEndsItBetweenTwoClips) {
    constexpr unsigned clipCount = 3000;
    std::vector<NewClip> clips;
    for (unsigned number = 0; number < clipCount; ++number) {
        writeFile("m/" + std::to_string(number), "whole");
        Ox::UUID uuid;
        uuid.bytes[0] = static_cast<std::uint8_t>(number / 256);
        uuid.bytes[1] = static_cast<std::uint8_t>(number % 256);
        NewClip clip;
        clip.cookie = Cookie(uuid, 'E', Cookie::wholeClip);
        clip.record.videoChannels = 1;
        clip.media = {{Cookie(uuid, 'V', 0),
                       {MediaFileInfo(MaterialFilename('M', wide(std::to_string(number))), 5), {}}}};
        clips.push_back(clip);
    }
    ASSERT_TRUE(open()->addClips(clips));
    Process process({PLAYFILE_CLI, "--preferences", path("p.db"), "relocate", project_, "--drive", "M",
                     "--to", "N", "--move"},
                    environment);
    EXPECT_THAT(process.readLine(), HasSubstr("Building file list"));
    while (fs::is_empty(path("n"))) {
        std::this_thread::yield();
    }
    process.send(SIGINT);
    std::string out;
    std::string err;
    EXPECT_EQ(process.wait(out, err), 128 + SIGINT);
    unsigned movedCount = 0;
    for (unsigned number = 0; number < clipCount; ++number) {
        bool const isMoved = fs::exists(path("n/" + std::to_string(number)));
        EXPECT_EQ(contents((isMoved ? "n/" : "m/") + std::to_string(number)), "whole");
        movedCount += isMoved ? 1 : 0;
    }
    EXPECT_LT(movedCount, clipCount);
}

TEST_F(TransferCommands, AFileThatCannotBeRelocatedIsAnError) {
    addOwn(1, "One", "first");
    writeFile("n/deep", "a file in the place of the folder");
    Ended const ended = run({"relocate", project_, "--clip", "One", "--to", "N", "--move"});
    EXPECT_EQ(ended.exitCode, 1);
    EXPECT_EQ(contents("m/deep/v1.mov"), "first");
    EXPECT_EQ(placeOf(1), path("m/deep/v1.mov"));
}

}  // namespace
}  // namespace tooltest
