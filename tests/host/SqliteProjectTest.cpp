#include "host/sqlite/SqliteProject.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <set>
#include <string>

#include "tests/fakes/CallLog.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SqliteProjectTest : public ::testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<SqliteProject> open() {
        error_.clear();
        return SqliteProject::open(folder_.name("a.project"), error_);
    }
    /// Runs statements on the file, whatever they do to it.
    void tamper(char const* sql) {
        SqliteDatabase database(folder_.file("a.project"));
        ASSERT_TRUE(database.run(sql)) << database.lastError();
    }
    static MediaFileInfo media(std::string const& path, bool isProxy = false) {
        MediaFileInfo file(MaterialFilename(DriveId::none, wide(path)), 10);
        file.isProxyFile = isProxy;
        return file;
    }
    /// A clip with a video, its proxy and a sound.
    static NewClip newClip(std::string const& name) { return newClipOf(Ox::UUID::generate(), name); }
    static NewClip newClipOf(Ox::UUID const& uuid, std::string const& name) {
        NewClip clip;
        clip.cookie = Cookie(uuid, 'E', Cookie::wholeClip);
        clip.record.name = wide(name);
        clip.record.logType = logShot;
        clip.record.videoChannels = 1;
        clip.record.audioChannels = 1;
        Cookie const video(uuid, 'V', 0);
        Cookie const sound(uuid, 'S', 1);
        clip.media = {{video, {media("/m/" + name + ".mov"), {media("/m/" + name + "-proxy.mov", true)}}},
                      {sound, {media("/m/" + name + ".wav"), {}}}};
        clip.startOffsets = {{sound, 480}};
        return clip;
    }
    /// One that has others on both sides, where there are dozens.
    static Ox::UUID middle() {
        Ox::UUID uuid = Ox::UUID::generate();
        uuid.bytes[0] = 0x7F;
        return uuid;
    }
    static std::vector<NewClip> newClips(int first, int count) {
        std::vector<NewClip> clips;
        for (int number = first; number < first + count; ++number) {
            clips.push_back(newClip("clip " + std::to_string(number)));
        }
        return clips;
    }
    static Cookie videoOf(NewClip const& clip) { return convertCookie(clip.cookie, 'V', 0); }
    static Cookie soundOf(NewClip const& clip) { return convertCookie(clip.cookie, 'S', 1); }
    static std::vector<std::string> namesOf(std::vector<ClipSummary> const& page) {
        std::vector<std::string> names;
        for (ClipSummary const& clip : page) {
            names.push_back(narrow(clip.name));
        }
        return names;
    }
    /// How many rows a project's tables have.
    [[nodiscard]] static std::int64_t rowsOf(SqliteProject& project, std::string const& table) {
        std::lock_guard const scope(project.file().lock);
        SqliteStatement count = project.file().prepare(("SELECT count(*) FROM " + table).c_str());
        return count.step() == SQLITE_ROW ? count.number(0) : -1;
    }

    TemporaryFolder folder_;
    std::string error_;
};

TEST_F(SqliteProjectTest, KeepsAClipWithAllThatBelongsToIt) {
    NewClip const clip = newClip("a");
    ASSERT_TRUE(open()->addClip(clip));
    auto const project = open();
    EXPECT_EQ(narrow(project->edits().find(clip.cookie)->name), "a");
    auto const video = project->catalogue().findEntryForCookie(videoOf(clip));
    EXPECT_EQ(narrow(video->getPhysicalFilename()), "/m/a.mov");
    EXPECT_EQ(video->getProxyFiles().size(), 1U);
    project->install();
    EXPECT_EQ(MaterialInfo::get_start_offset(soundOf(clip)), 480);
}

TEST_F(SqliteProjectTest, AddsAllClipsOrNone) {
    LogRecorder log;
    auto const project = open();
    tamper(
        "CREATE TRIGGER refuse BEFORE INSERT ON media WHEN NEW.path = '/m/clip 7.wav'"
        " BEGIN SELECT RAISE(ABORT, 'refused'); END");
    EXPECT_FALSE(project->addClips(newClips(0, 10)));
    EXPECT_EQ(project->countClips(), 0U);
    EXPECT_EQ(rowsOf(*project, "media"), 0);
    EXPECT_THAT(log.log().back(), HasSubstr("10 clips"));
}

TEST_F(SqliteProjectTest, AClipThatIsAddedAgainIsTheNewOne) {
    auto const project = open();
    NewClip clip = newClip("a");
    ASSERT_TRUE(project->addClip(clip));
    clip.record.name = wide("b");
    clip.media.pop_back();
    clip.startOffsets.clear();
    ASSERT_TRUE(project->addClip(clip));
    EXPECT_EQ(namesOf(project->listClips({}, 10)), std::vector<std::string>{"b"});
    EXPECT_FALSE(project->catalogue().fileExists(soundOf(clip)));
    EXPECT_EQ(rowsOf(*project, "media"), 2);
    EXPECT_EQ(rowsOf(*project, "start_offsets"), 0);
}

TEST_F(SqliteProjectTest, AddsOnlyWhatIsMissing) {
    auto const project = open();
    NewClip const there = newClip("a");
    ASSERT_TRUE(project->addClip(there));
    ASSERT_TRUE(project->edits().setName(there.cookie, L"mine"));
    EXPECT_TRUE(project->isThere(there));
    NewClip const other = newClip("b");
    EXPECT_FALSE(project->isThere(other));
    auto const added = project->addMissing({there, other, other});
    ASSERT_TRUE(added);
    EXPECT_EQ(added->clips, 1U);
    EXPECT_EQ(added->proxies, 1U);
    EXPECT_EQ(namesOf(project->listClips({}, 10)), (std::vector<std::string>{"b", "mine"}));
    EXPECT_EQ(rowsOf(*project, "media"), 6);
}

TEST_F(SqliteProjectTest, AClipOneOfWhoseFilesIsFiledIsThere) {
    auto const project = open();
    ASSERT_TRUE(project->addClip(newClip("a")));
    NewClip same = newClip("a");
    EXPECT_TRUE(project->isThere(same));
    EXPECT_EQ(project->addMissing({same})->clips, 0U);
    same.media.front().second.original->setLink(L"/far/a.mov");
    same.media.pop_back();
    EXPECT_FALSE(project->isThere(same));
    EXPECT_EQ(project->addMissing({same})->clips, 1U);
    EXPECT_EQ(project->addMissing({same})->clips, 0U);
}

TEST_F(SqliteProjectTest, AClipThatIsThereGetsTheProxiesThatItLacks) {
    auto const project = open();
    NewClip clip = newClip("a");
    ASSERT_TRUE(project->addClip(clip));
    for (auto& each : clip.media) {
        each.second.proxies.push_back(media("/m/new-proxy.mov", true));
    }
    EXPECT_EQ(project->addMissing({clip})->proxies, 1U);
    EXPECT_EQ(project->addMissing({clip})->proxies, 0U);
    EXPECT_EQ(project->catalogue().findEntryForCookie(videoOf(clip))->getProxyFiles().size(), 2U);
    EXPECT_EQ(project->catalogue().findEntryForCookie(soundOf(clip))->getProxyFiles().size(), 1U);
}

TEST_F(SqliteProjectTest, AddsAllThatIsMissingOrNothing) {
    LogRecorder log;
    auto const project = open();
    tamper(
        "CREATE TRIGGER refuse BEFORE INSERT ON media WHEN NEW.path = '/m/clip 7.wav'"
        " BEGIN SELECT RAISE(ABORT, 'refused'); END");
    EXPECT_FALSE(project->addMissing(newClips(0, 10)));
    EXPECT_EQ(project->countClips(), 0U);
}

TEST_F(SqliteProjectTest, FindsClipsByTheFirstDigits) {
    auto const project = open();
    NewClip const clip = newClipOf(middle(), "a");
    ASSERT_TRUE(project->addClip(clip));
    ASSERT_TRUE(project->addClips(newClips(0, 50)));
    std::string const digits = clip.cookie.asString(true).str();
    EXPECT_THAT(project->findClipsByDigits(digits, 10), ElementsAre(clip.cookie));
    EXPECT_THAT(project->findClipsByDigits(digits.substr(0, 12), 10), ElementsAre(clip.cookie));
    EXPECT_THAT(project->findClipsByDigits(digits.substr(0, 31) + "g", 10), IsEmpty());
    EXPECT_EQ(project->findClipsByDigits("", 7).size(), 7U);
}

TEST_F(SqliteProjectTest, RemovesAClipAndNothingElse) {
    auto const project = open();
    std::vector<NewClip> const clips = newClips(0, 2);
    auto const path = folder_.write("media.mov", "media");
    ASSERT_TRUE(project->addClips(clips));
    project->catalogue().addFile(videoOf(clips[0]), media(folder_.file("media.mov")));
    EXPECT_TRUE(project->removeClip(clips[0].cookie));
    EXPECT_FALSE(project->edits().open(clips[0].cookie));
    EXPECT_FALSE(project->catalogue().fileExists(videoOf(clips[0])));
    EXPECT_TRUE(project->catalogue().fileExists(videoOf(clips[1])));
    EXPECT_EQ(rowsOf(*project, "start_offsets"), 1);
    EXPECT_TRUE(folder_.holds("media.mov"));
}

TEST_F(SqliteProjectTest, ListsClipsInPagesByTheirNames) {
    auto const project = open();
    ASSERT_TRUE(project->addClips(newClips(0, 5)));
    auto const first = project->listClips({}, 3);
    EXPECT_THAT(namesOf(first), ElementsAre("clip 0", "clip 1", "clip 2"));
    auto const second = project->listClips(first.back(), 3);
    EXPECT_THAT(namesOf(second), ElementsAre("clip 3", "clip 4"));
    EXPECT_THAT(project->listClips(second.back(), 3), IsEmpty());
    EXPECT_EQ(project->countClips(), 5U);
}

TEST_F(SqliteProjectTest, APageEndsAmongClipsOfOneName) {
    auto const project = open();
    for (int number = 0; number < 5; ++number) {
        ASSERT_TRUE(project->addClip(newClip("")));
    }
    std::set<Cookie> listed;
    ClipSummary last;
    for (auto page = project->listClips(last, 2); !page.empty(); page = project->listClips(last, 2)) {
        last = page.back();
        for (ClipSummary const& clip : page) {
            EXPECT_TRUE(listed.insert(clip.cookie).second);
        }
    }
    EXPECT_EQ(listed.size(), 5U);
}

TEST_F(SqliteProjectTest, ListsTheStateOfMediaAsItWasSeenLast) {
    auto const project = open();
    NewClip const clip = newClip("a");
    ASSERT_TRUE(project->addClip(clip));
    project->catalogue().updateStatus(videoOf(clip), mediaAll);
    project->catalogue().findEntryForCookie(soundOf(clip))->setLinkedFilename(L"/far/a.wav");
    ClipSummary const listed = project->listClips({}, 1).at(0);
    EXPECT_EQ(listed.cookie, clip.cookie);
    EXPECT_EQ(listed.logType, logShot);
    EXPECT_EQ(listed.videoChannels, 1U);
    EXPECT_EQ(listed.audioChannels, 1U);
    EXPECT_EQ(listed.originals, 2U);
    EXPECT_EQ(listed.availableOriginals, 1U);
    EXPECT_EQ(listed.proxies, 1U);
    EXPECT_EQ(listed.availableProxies, 0U);
    EXPECT_EQ(listed.linked, 1U);
    EXPECT_EQ(listed.size, 30U);
}

TEST_F(SqliteProjectTest, FindsClipsByTheirNamesInAnyScript) {
    auto const project = open();
    for (std::string const name : {"\xC3\xA4\xC3\x9F", "\xE6\xBC\xA2\xE5\xAD\x97",
                                   "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D", "\xF0\x9F\x98\x80", "it's 100%", ""}) {
        NewClip const one = newClip(name);
        NewClip const other = newClip(name);
        ASSERT_TRUE(project->addClips({one, other}));
        EXPECT_THAT(project->findClips(wide(name)), testing::UnorderedElementsAre(one.cookie, other.cookie));
    }
    EXPECT_THAT(project->findClips(L"%"), IsEmpty());
}

TEST_F(SqliteProjectTest, AQuestionAboutOneClipCostsTheSameAmongThousands) {
    auto const costOfQuestions = [](SqliteProject& project, NewClip const& clip) {
        auto const before = project.file().getCost();
        LightweightString<wchar_t> name;
        EXPECT_TRUE(project.catalogue().findFileForCookie(videoOf(clip), name, DecodeFormat(1)));
        EXPECT_TRUE(project.catalogue().findEntryForCookie(Cookie(clip.cookie.uuid(), 'S', 255)));
        EXPECT_EQ(project.catalogue().getClipMediaFiles(clip.cookie).size(), 2U);
        EXPECT_TRUE(project.edits().find(clip.cookie));
        EXPECT_EQ(project.findClips(clip.record.name).size(), 1U);
        EXPECT_EQ(project.findClipsByDigits(clip.cookie.asString(true).str(), 2).size(), 1U);
        EXPECT_TRUE(project.isThere(clip));
        EXPECT_EQ(project.addMissing({clip})->clips, 0U);
        EXPECT_EQ(project.listClips({}, 1).size(), 1U);
        EXPECT_TRUE(project.edits().setName(clip.cookie, clip.record.name));
        project.catalogue().findEntryForCookie(videoOf(clip))->setLinkedFilename(L"/far/a");
        auto const after = project.file().getCost();
        EXPECT_EQ(after.fullScanSteps, 0);
        return after.machineSteps - before.machineSteps;
    };
    auto const project = open();
    NewClip const clip = newClipOf(middle(), "the one");
    ASSERT_TRUE(project->addClips(newClips(0, 40)) && project->addClip(clip));
    std::int64_t const amongFew = costOfQuestions(*project, clip);
    ASSERT_GT(amongFew, 0);
    ASSERT_TRUE(project->addClips(newClips(0, 2000)));
    EXPECT_EQ(costOfQuestions(*project, clip), amongFew);
}

TEST_F(SqliteProjectTest, PutsItsServicesInForceAndTakesThemOutAgain) {
    SystemCache* const catalogue = SystemCache::instance();
    iEditStore* const edits = iEditStore::instance();
    ProjectSpacesManager* const spaces = ProjectSpacesManager::instance();
    {
        auto const project = open();
        project->install();
        project->install();
        EXPECT_EQ(SystemCache::instance(), &project->catalogue());
        EXPECT_EQ(iEditStore::instance(), &project->edits());
        EXPECT_EQ(ProjectSpacesManager::instance(), &project->spaces());
    }
    EXPECT_EQ(SystemCache::instance(), catalogue);
    EXPECT_EQ(iEditStore::instance(), edits);
    EXPECT_EQ(ProjectSpacesManager::instance(), spaces);
}

TEST_F(SqliteProjectTest, BringsItsDrivesAndTakesThemAway) {
    DiskManager& drives = DiskManager::instance();
    drives.setDriveRoot(DriveId('X'), L"/x");
    {
        auto const project = open();
        ASSERT_TRUE(project->setDriveRoot(DriveId('A'), L"/a"));
        ASSERT_TRUE(project->setDriveForTask("import", DriveId('A')));
        EXPECT_TRUE(drives.getDriveRoot(DriveId('A')).empty());
        project->install();
        EXPECT_EQ(narrow(drives.getDriveRoot(DriveId('A'))), "/a/");
        EXPECT_EQ(drives.getDriveForTask("import", true), DriveId('A'));
        EXPECT_TRUE(drives.getDriveRoot(DriveId('X')).empty());
    }
    EXPECT_EQ(narrow(drives.getDriveRoot(DriveId('X'))), "/x/");
    EXPECT_TRUE(drives.getDriveRoot(DriveId('A')).empty());
}

TEST_F(SqliteProjectTest, WritesDownHowTheDrivesOfTheProcessChange) {
    DiskManager& drives = DiskManager::instance();
    {
        auto const project = open();
        project->install();
        drives.setDriveRoot(DriveId('A'), wide("/\xC3\xA4"));
        drives.setDriveRoot(DriveId('B'), L"/b");
        drives.setDriveForTask("render", DriveId('B'));
        drives.removeDrive(DriveId('B'));
    }
    drives.setDriveRoot(DriveId('C'), L"/c");
    DriveTable const kept = open()->getDrives();
    ASSERT_EQ(kept.roots.size(), 1U);
    EXPECT_EQ(narrow(kept.roots.at(DriveId('A'))), "/\xC3\xA4/");
    EXPECT_EQ(kept.driveOfTask.at("render"), DriveId('B'));
}

TEST_F(SqliteProjectTest, ADriveThatIsSetWhileInstalledIsInForceAtOnce) {
    auto const project = open();
    project->install();
    ASSERT_TRUE(project->setDriveRoot(DriveId('A'), L"/a"));
    EXPECT_TRUE(DiskManager::instance().isMaterialVolume(DriveId('A')));
    ASSERT_TRUE(project->removeDrive(DriveId('A')));
    EXPECT_FALSE(DiskManager::instance().isMaterialVolume(DriveId('A')));
    EXPECT_TRUE(project->getDrives().roots.empty());
}

TEST_F(SqliteProjectTest, ADriveWithoutARootIsNone) {
    auto const project = open();
    project->install();
    ASSERT_TRUE(project->setDriveRoot(DriveId('A'), L"/a"));
    ASSERT_TRUE(project->setDriveRoot(DriveId('A'), {}));
    EXPECT_FALSE(DiskManager::instance().isMaterialVolume(DriveId('A')));
    EXPECT_TRUE(project->getDrives().roots.empty());
}

TEST_F(SqliteProjectTest, WorksInALocalSpaceUntilAnotherIsCurrent) {
    auto const project = open();
    EXPECT_EQ(project->spaces().getCurrentProjectSpaceType(), ProjectSpacesManager::localSpace);
    EXPECT_FALSE(project->spaces().setCurrent(L"none"));
    ASSERT_TRUE(project->spaces().set({L"s", ProjectSpacesManager::sharedSpace, {}}));
    EXPECT_TRUE(project->spaces().setCurrent(L"s"));
    EXPECT_EQ(open()->spaces().getCurrentProjectSpaceType(), ProjectSpacesManager::sharedSpace);
    EXPECT_FALSE(project->spaces().setCurrent(L"none"));
    EXPECT_EQ(project->spaces().getCurrentProjectSpaceType(), ProjectSpacesManager::sharedSpace);
    EXPECT_TRUE(project->spaces().setCurrent({}));
    EXPECT_EQ(project->spaces().getCurrentProjectSpaceType(), ProjectSpacesManager::localSpace);
}

TEST_F(SqliteProjectTest, ARemoteSpaceHasItsRootsInOrder) {
    auto const project = open();
    project->spaces().set(
        {L"r", ProjectSpacesManager::remoteSpace, {{L"p1", L"l1", L"o1"}, {L"p2", L"l2", L"o2"}}});
    EXPECT_FALSE(project->spaces().getResourceForRemoteProjectSpace({}));
    auto const space = project->spaces().getResourceForRemoteProjectSpace(L"r");
    ASSERT_TRUE(space);
    auto const roots = space->getRoots();
    ASSERT_EQ(roots.size(), 2U);
    EXPECT_EQ(narrow(roots[0].path + roots[0].localPath + roots[0].otherPath), "p1l1o1");
    EXPECT_EQ(narrow(roots[1].path + roots[1].localPath + roots[1].otherPath), "p2l2o2");
    project->spaces().setCurrent(L"r");
    EXPECT_TRUE(project->spaces().getResourceForRemoteProjectSpace({}));
}

TEST_F(SqliteProjectTest, ASpaceThatIsSetAgainStaysCurrent) {
    auto const project = open();
    project->spaces().set({L"r", ProjectSpacesManager::remoteSpace, {{L"p1", L"", L""}}});
    project->spaces().setCurrent(L"r");
    project->spaces().set({L"r", ProjectSpacesManager::remoteSpace, {{L"p2", L"", L""}}});
    auto const roots = project->spaces().getResourceForRemoteProjectSpace({})->getRoots();
    ASSERT_EQ(roots.size(), 1U);
    EXPECT_EQ(narrow(roots[0].path), "p2");
    project->spaces().remove(L"r");
    EXPECT_THAT(project->spaces().getAll(), IsEmpty());
    EXPECT_EQ(rowsOf(*project, "space_roots"), 0);
}

TEST_F(SqliteProjectTest, AnOpenerMakesWhatIsBehindARemoteSpace) {
    class Opened final : public iRemoteProjectSpace {
    public:
        std::vector<RemoteRoot> getRoots() override { return {}; }
        std::vector<LightweightString<wchar_t>> getOriginalFiles(Cookie const&, int) override { return {}; }
        bool hasProxy(Cookie const&) override { return true; }
    };
    auto const project = open();
    std::string opened;
    project->spaces().set({L"r", ProjectSpacesManager::remoteSpace, {{L"p", L"", L""}}});
    project->spaces().setOpener([&](ProjectSpaceRecord const& space) {
        opened = narrow(space.name) + narrow(space.roots.at(0).path);
        return Ox::Ptr<iRemoteProjectSpace>(Ox::makePtr<Opened>());
    });
    EXPECT_TRUE(project->spaces().getResourceForRemoteProjectSpace(L"r")->hasProxy({}));
    EXPECT_EQ(opened, "rp");
}

TEST_F(SqliteProjectTest, StartOffsetsComeBeforeThoseOfHeaders) {
    auto const project = open();
    project->install();
    NewClip const clip = newClip("a");
    folder_.write("a.wav", "media");
    project->catalogue().addFile(soundOf(clip), media(folder_.file("a.wav")));
    SAV_HEADER header = make_header("sound", "linear_uncompressed", 48000.0, 48000.0, 0, 25.0, 0.0, 1.0, 1, 1,
                                    "unknown", 0, 0, L"a.wav", -1, 960, "", -1);
    ASSERT_EQ(MaterialInfo::write_header(soundOf(clip), header), 0);
    EXPECT_EQ(MaterialInfo::get_start_offset(soundOf(clip)), 960);
    ASSERT_TRUE(project->setStartOffset(soundOf(clip), -480));
    EXPECT_EQ(MaterialInfo::get_start_offset(soundOf(clip)), -480);
    EXPECT_EQ(MaterialInfo::get_start_offset(videoOf(clip)), 0);
}

TEST_F(SqliteProjectTest, BringsAFileOfTheFirstVersionToThisOne) {
    std::string const digits(32, 'a');
    tamper(
        ("PRAGMA application_id = 1347180880;"
         "CREATE TABLE media (clip TEXT NOT NULL, type INTEGER NOT NULL, channel INTEGER NOT NULL,"
         " position INTEGER NOT NULL, drive TEXT NOT NULL, path TEXT NOT NULL, link TEXT NOT NULL,"
         " kind INTEGER NOT NULL, status INTEGER NOT NULL, streams INTEGER NOT NULL, size INTEGER NOT NULL,"
         " PRIMARY KEY (clip, type, channel, position)) WITHOUT ROWID;"
         "INSERT INTO media VALUES ('" +
         digits + "', 86, 0, 0, 'B', 'Video/a.mov', '/far/a.mov', 512, 2, 3, 7);" +  //
         "PRAGMA user_version = 1")
            .c_str());
    auto const project = open();
    ASSERT_TRUE(project) << error_;
    Cookie const video(fromUTF8((digits + "-V000").c_str()));
    auto const entry = project->catalogue().findEntryForCookie(video);
    ASSERT_TRUE(entry);
    EXPECT_EQ(narrow(entry->getPhysicalFilename()), "/far/a.mov");
    EXPECT_EQ(entry->streamCount, 3U);
    EXPECT_TRUE(project->addClip(newClip("b")));
    EXPECT_EQ(rowsOf(*project, "pragma_user_version WHERE user_version = 3"), 1);
}

TEST_F(SqliteProjectTest, AStepToThisVersionThatFailsLeavesTheFileBefore) {
    tamper(
        "PRAGMA application_id = 1347180880; CREATE TABLE media (clip TEXT); CREATE TABLE drives (x);"
        "PRAGMA user_version = 1");
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, HasSubstr("drives"));
    SqliteDatabase database(folder_.file("a.project"));
    EXPECT_FALSE(database.prepare("SELECT 1 FROM clips"));
    EXPECT_TRUE(database.prepare("SELECT 1 FROM media"));
}

TEST_F(SqliteProjectTest, RefusesAFileOfALaterVersion) {
    ASSERT_TRUE(open());
    tamper("PRAGMA user_version = 4");
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, HasSubstr("later version"));
}

TEST_F(SqliteProjectTest, SeveralWhoHaveItOpenLoseNothing) {
    constexpr int rounds = 20;
    Ox::UUID const shared = Ox::UUID::generate();
    Cookie const video(shared, 'V', 0);
    ASSERT_TRUE(open()->addClips(newClips(0, 1)));
    {
        Threads const threads(3, [&] {
            std::string error;
            auto const project = SqliteProject::open(folder_.name("a.project"), error);
            for (int number = 0; number < rounds; ++number) {
                EXPECT_TRUE(project->addClips(newClips(0, 2)));
                project->catalogue().addFile(video, media("/m/p", true));
            }
        });
    }
    auto const project = open();
    EXPECT_EQ(project->countClips(), std::uint64_t{1 + 3 * rounds * 2});
    EXPECT_EQ(project->catalogue().findEntryForCookie(video)->getProxyFiles().size(),
              std::size_t{3 * rounds});
}

TEST_F(SqliteProjectTest, WhoWaitsForAnotherGivesUpInTime) {
    LogRecorder log;
    auto const project = open();
    auto const other = open();
    std::lock_guard const scope(other->file().lock);
    bool isGivenUp = false;
    other->file().change("a long one", [&] {
        isGivenUp = !project->addClip(newClip("a"));
        return true;
    });
    EXPECT_TRUE(isGivenUp);
    EXPECT_THAT(log.log().back(), AllOf(HasSubstr("1 clips"), HasSubstr("locked")));
    EXPECT_TRUE(project->addClip(newClip("a")));
}

TEST_F(SqliteProjectTest, NoQuestionWaitsForAChange) {
    auto const project = open();
    NewClip const clip = newClip("a");
    ASSERT_TRUE(project->addClip(clip));
    project->install();
    std::future<void> asked;
    {
        std::lock_guard const changing(project->file().lock);
        asked = std::async(std::launch::async, [&] {
            LightweightString<wchar_t> name;
            EXPECT_TRUE(project->catalogue().findFileForCookie(videoOf(clip), name, DecodeFormat(1)));
            EXPECT_EQ(project->catalogue().getClipMediaFiles(clip.cookie).size(), 2U);
            EXPECT_EQ(MaterialInfo::get_start_offset(soundOf(clip)), 480);
            EXPECT_TRUE(project->edits().open(clip.cookie));
            EXPECT_EQ(project->listClips({}, 1).size(), 1U);
            EXPECT_EQ(project->findClips(L"a").size(), 1U);
            EXPECT_EQ(ProjectSpacesManager::instance()->getCurrentProjectSpaceType(), 0);
        });
        EXPECT_EQ(asked.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    }
    asked.get();
}

/// Limits the length of every file that this process writes, as a full disk does.
class FullDiskLimit {
public:
    explicit FullDiskLimit(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit const limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDiskLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
    FullDiskLimit(FullDiskLimit const&) = delete;
    FullDiskLimit& operator=(FullDiskLimit const&) = delete;

private:
    rlimit before_{};
};

TEST_F(SqliteProjectTest, OnAFullDiskNothingOfAChangeIsKeptAndTheRestStays) {
    LogRecorder log;
    auto const project = open();
    std::vector<NewClip> const clips = newClips(0, 5);
    ASSERT_TRUE(project->addClips(clips));
    {
        FullDiskLimit const full(256 * 1024);
        EXPECT_FALSE(project->addClips(newClips(5, 5000)));
    }
    EXPECT_THAT(log.log().back(), HasSubstr("make room"));
    EXPECT_EQ(project->countClips(), 5U);
    EXPECT_TRUE(project->addClips(newClips(5, 5)));
    EXPECT_EQ(open()->countClips(), 10U);
    std::lock_guard const scope(project->file().lock);
    EXPECT_TRUE(project->file().isWhole());
}

TEST_F(SqliteProjectTest, RefusesAFileThatMayNotBeWritten) {
    constexpr uid_t nobody = 65534;
    ASSERT_TRUE(open()->addClip(newClip("a")));
    namespace fs = std::filesystem;
    fs::permissions(folder_.path(), fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(folder_.file("a.project"), fs::perms::owner_read | fs::perms::others_read);
    uid_t const before = geteuid();
    bool const isRoot = before == 0;
    if (!isRoot) {
        fs::permissions(folder_.path(), fs::perms::owner_read | fs::perms::owner_exec);
    }
    ASSERT_EQ(isRoot ? seteuid(nobody) : 0, 0);
    EXPECT_FALSE(open());
    ASSERT_EQ(isRoot ? seteuid(before) : 0, 0);
    fs::permissions(folder_.path(), fs::perms::owner_all);
    EXPECT_THAT(error_, AllOf(HasSubstr("a.project"), HasSubstr("can't be used")));
}

}  // namespace
}  // namespace test
