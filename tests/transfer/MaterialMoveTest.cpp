/// Which files a relocation takes, and what it says. Whole transcripts of the log.
#include "transfer/MaterialMove.h"

#include <cstring>

#include "tests/transfer/TransferFixture.h"
#include "toolkit/services/NumberText.h"
#include "toolkit/services/ResourceText.h"
#include "toolkit/services/Watchdog.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

bool escapeIsPressed = false;

class MaterialMoveTest : public TransferFixture {
protected:
    MaterialMoveTest() {
        installEscapeTest([] { return escapeIsPressed; });
    }
    ~MaterialMoveTest() override {
        installEscapeTest(nullptr);
        escapeIsPressed = false;
    }

    /// A clip with a file on a drive, of as many bytes as its number.
    void addClipWithFile(unsigned number, char drive, std::vector<MediaFileInfo> const& proxies = {}) {
        std::string const name = "v" + std::to_string(number) + ".mov";
        addClip(number, "Clip");
        catalogue_.setReferences(clip(number), 4, {video(number)});
        write(std::string(drive == 'M' ? "m/" : "n/") + name, std::string(number, 'x'));
        catalogue_.addEntry(video(number), own(drive, name), proxies);
    }
    static CookieVec items(std::vector<unsigned> const& numbers) {
        CookieVec cookies;
        for (unsigned const number : numbers) {
            cookies.add(clip(number));
        }
        return cookies;
    }
    void relocate(std::vector<unsigned> const& numbers, char to = 'N',
                  MaterialMove::eType type = MaterialMove::copyFiles) {
        MaterialMove::relocate(DriveId(to), items(numbers), type, LoggerHandle(log_));
    }
    static std::string textOf(ResId id) { return narrow(resourceStrW(id)); }
    [[nodiscard]] Lines lines() const { return recorded({"log "}); }
};

TEST_F(MaterialMoveTest, NoItemsAreNothingToDo) {
    relocate({});
    EXPECT_THAT(lines(), ElementsAre("log 5 Building file list", "log 0 " + textOf(10624)));
}

TEST_F(MaterialMoveTest, AnItemThatRefersToNothingIsCountedAndThenThereIsNothingToDo) {
    addClip(1, "Clip");
    relocate({1, 2});
    EXPECT_THAT(lines(), ElementsAre("log 5 Building file list",
                                     "log 0 Source contains 2 item(s), referencing 0 material file(s)",
                                     "log 0 " + textOf(10624)));
}

TEST_F(MaterialMoveTest, UnavailableShotsAndThoseThatAreThereAreCounted) {
    addClip(1, "Clip");
    catalogue_.setReferences(clip(1), 4, {video(8), video(9)});
    addClipWithFile(2, 'N');
    relocate({1, 2});
    EXPECT_THAT(lines(),
                ElementsAre("log 5 Building file list",
                            "log 0 Source contains 2 item(s), referencing 3 material file(s)",
                            "log 0 Skipping 2 unavailable material file(s)",
                            "log 0 Ignoring 1 material file(s) which are already on the destination drive",
                            "log 0 " + textOf(10624)));
}

TEST_F(MaterialMoveTest, TheWholeOfACopy) {
    addClipWithFile(1, 'M');
    addClipWithFile(2, 'M');
    relocate({1, 2});
    EXPECT_THAT(lines(),
                ElementsAre("log 5 Building file list",
                            "log 0 Source contains 2 item(s), referencing 2 material file(s)", "log 0  ",
                            "log 0 2 file(s) to process", "log 0  ", "log 5 " + textOf(11566)));
    EXPECT_THAT(recorded({"copy"}),
                ElementsAre("copy m/v1.mov n/v1.mov 1 told", "copy m/v2.mov n/v2.mov 1 told"));
    EXPECT_TRUE(folder_.holds("m/v1.mov"));
}

TEST_F(MaterialMoveTest, VideoIsAskedForAsVideoAndAllElseAsSound) {
    addClip(1, "Clip");
    catalogue_.setReferences(clip(1), 4, {video(1), sound(1), makeCookie(1, 'I', 0)});
    relocate({1});
    EXPECT_THAT(recorded({"catalogue.getDriveForCookie"}),
                ElementsAre("catalogue.getDriveForCookie " + video(1).asString().str() + " 1",
                            "catalogue.getDriveForCookie " + sound(1).asString().str() + " 2",
                            "catalogue.getDriveForCookie " + makeCookie(1, 'I', 0).asString().str() + " 2"));
}

TEST_F(MaterialMoveTest, AReferenceThatStandsForNoMediaIsNoShot) {
    Ox::UUID uuid;
    std::uint32_t const words[2] = {1, 647};
    std::memcpy(uuid.bytes.data(), words, sizeof(words));
    std::uint32_t const first = 647;
    Ox::UUID other;
    std::memcpy(other.bytes.data(), &first, sizeof(first));
    addClip(1, "Clip");
    catalogue_.setReferences(clip(1), 4, {Cookie(uuid, 'V', 0), Cookie(other, 'V', 0), video(1)});
    CookieVec const shots = buildShotList(items({7, 1}));
    EXPECT_THAT(std::vector<Cookie>(shots.begin(), shots.end()),
                ElementsAre(Cookie(other, 'V', 0), video(1)));
    EXPECT_EQ(catalogue_.openEdits(), 0);
}

TEST_F(MaterialMoveTest, AClipsOwnFileComesBeforeItsProxiesInTheirOrder) {
    write("m/p2.mov", "22");
    write("m/p1.mov", "1");
    addClipWithFile(3, 'M', {asProxy(own('M', "p2.mov")), asProxy(own('M', "p1.mov"))});
    LogicalMediaFile const file = makeLogicalMediaFile(video(3), 'N');
    ASSERT_THAT(file.files, SizeIs(3));
    EXPECT_EQ(file.cookie, video(3));
    EXPECT_TRUE(file.entry);
    EXPECT_EQ(file.files[0].fileSize, 3U);
    EXPECT_EQ(file.files[1].fileSize, 2U);
    EXPECT_TRUE(file.files[1].isProxy());
    EXPECT_EQ(file.files[2].fileSize, 1U);
}

TEST_F(MaterialMoveTest, AProxyOnAnotherDriveIsTakenWhereItsClipsFileIsNot) {
    write("m/p.mov", "1");
    addClipWithFile(1, 'N', {asProxy(own('M', "p.mov")), asProxy(own('N', "q.mov"))});
    LogicalMediaFile const file = makeLogicalMediaFile(video(1), 'N');
    ASSERT_THAT(file.files, SizeIs(1));
    EXPECT_EQ(narrow(file.files[0].materialFilename.getPath()), "p.mov");
}

TEST_F(MaterialMoveTest, AMissingFileAndAnEmptyOneAreLeftOut) {
    write("m/empty.mov", "");
    catalogue_.addEntry(video(1), own('M', "missing.mov"), {asProxy(own('M', "empty.mov"))});
    EXPECT_THAT(makeLogicalMediaFile(video(1), 'N').files, IsEmpty());
    EXPECT_FALSE(makeLogicalMediaFile(video(2), 'N').entry);
    std::vector<LogicalMediaFile> out;
    CookieVec shots;
    shots.add(video(1));
    shots.add(video(2));
    getMaterialFiles(shots, out, 'N');
    EXPECT_THAT(out, IsEmpty());
}

// ---- A whole drive ----

TEST_F(MaterialMoveTest, ADrivesListIsMadeOfTheProjectsClips) {
    MaterialMove::relocate('N', DriveId('M'), MaterialMove::copyFiles, LoggerHandle(log_));
    EXPECT_THAT(recorded({"projdb"}), ElementsAre("projdb.search 1 32844"));
    EXPECT_THAT(lines(), ElementsAre("log 5 Building file list", "log 0 " + textOf(10624)));
}

/// Deliberate: what is on the drive itself isn't in the list.
TEST_F(MaterialMoveTest, ADrivesListHoldsTheFilesOfItsShotsThatLieOnOtherDrives) {
    write("n/p.mov", "proxy");
    addClipWithFile(1, 'M', {asProxy(own('N', "p.mov"))});
    addClipWithFile(2, 'N', {asProxy(own('M', "q.mov"))});
    std::vector<LogicalMediaFile> files;
    getMaterialFilesOnDrive('M', files);
    ASSERT_THAT(files, SizeIs(1));
    ASSERT_THAT(files[0].files, SizeIs(1));
    EXPECT_EQ(narrow(files[0].files[0].materialFilename.getPath()), "p.mov");
}

TEST_F(MaterialMoveTest, TheWholeOfACopyOfADrivesList) {
    write("n/p1.mov", "proxy");
    write("n/p2.mov", "proxy");
    addClipWithFile(1, 'M', {asProxy(own('N', "p1.mov"))});
    addClipWithFile(2, 'M', {asProxy(own('N', "p2.mov"))});
    addClipWithFile(3, 'N', {asProxy(own('M', "q.mov"))});
    std::filesystem::create_directories(folder_.path() / "o");
    DiskManager::instance().setDriveRoot('O', folder_.name("o"));
    MaterialMove::relocate('O', DriveId('M'), MaterialMove::copyFiles, LoggerHandle(log_));
    DiskManager::instance().removeDrive('O');
    EXPECT_THAT(recorded({"log ", "copy"}),
                ElementsAre("log 5 Building file list", "log 0  ", "log 0 2 file(s) to process", "log 0  ",
                            "copy n/p1.mov o/p1.mov 1 told", "copy n/p2.mov o/p2.mov 1 told",
                            "log 5 " + textOf(11566)));
    EXPECT_EQ(folder_.read("o/p2.mov"), "proxy");
    EXPECT_TRUE(folder_.holds("n/p2.mov"));
}

/// Deliberate: '0' is no drive here, and a drive like any other where items are relocated.
TEST_F(MaterialMoveTest, AShotWithoutADriveIsOnNoDriveNotEvenOnNone) {
    addClip(1, "Clip");
    catalogue_.setReferences(clip(1), 4, {video(1)});
    write("n/p.mov", "proxy");
    catalogue_.addEntry(video(1), own(DriveId::none, folder_.file("x")), {asProxy(own('N', "p.mov"))});
    std::vector<LogicalMediaFile> files;
    getMaterialFilesOnDrive(DriveId::none, files);
    EXPECT_THAT(files, IsEmpty());
    relocate({1}, 'M');
    EXPECT_EQ(calls_->count("Skipping"), 0U);
    EXPECT_THAT(recorded({"copy"}), SizeIs(1));
}

// ---- Space ----

class RelocationSpace : public MaterialMoveTest {
protected:
    static constexpr std::uint64_t mebibyte = 1048576;
};

TEST_F(RelocationSpace, ExactlyEnoughIsRefused) {
    addClipWithFile(1, 'M');
    files_.freeBytes = mebibyte;
    std::filesystem::resize_file(folder_.path() / "m/v1.mov", mebibyte);
    relocate({1});
    std::string const text = narrow(resourceStrW(11043)
                                        .substitute(L"$NUM1$", bytesAsString(mebibyte, true))
                                        .substitute(L"$NUM2$", bytesAsString(mebibyte, true)));
    EXPECT_EQ(lines().back(), "log 0 " + text);
    EXPECT_THAT(recorded({"copy", "log.start"}), IsEmpty());
    EXPECT_FALSE(SystemWatchdog::isHeldOff());
}

TEST_F(RelocationSpace, TheBytesOfAllFilesAreNeeded) {
    write("m/p.mov", std::string(mebibyte / 2, 'x'));
    addClipWithFile(1, 'M', {asProxy(own('M', "p.mov"))});
    std::filesystem::resize_file(folder_.path() / "m/v1.mov", mebibyte / 2);
    files_.freeBytes = mebibyte;
    relocate({1});
    EXPECT_THAT(recorded({"copy"}), IsEmpty());
    files_.freeBytes = mebibyte + 1;
    relocate({1});
    EXPECT_THAT(recorded({"copy"}), SizeIs(2));
}

// ---- Escape, watchdog, notification ----

/// Notes what drives are said to have changed, and whether the watchdog was held off then.
class Notified : public MaterialMoveTest {
protected:
    Notified() {
        guard_ = DiskManager::instance().addListener(
            Ox::makePtr<Ox::FunctionCallback<int, DiskNotification>>([this](DiskNotification const& told) {
                calls_->add("log notified " + std::to_string(told.message) + " " +
                            std::to_string(told.paths.size()) + " " + std::to_string(told.time) + " " +
                            (SystemWatchdog::isHeldOff() ? "held off" : "watched"));
                type_ = told.type;
                return 0;
            }));
    }

    Ox::Ptr<Ox::Guard> guard_;
    NotifyMsgType type_ = 0;
};

TEST_F(Notified, BeforeTheClosingLineWithTheWatchdogHeldOff) {
    addClipWithFile(1, 'M');
    relocate({1});
    Lines const all = lines();
    ASSERT_GE(all.size(), 2U);
    EXPECT_EQ(all[all.size() - 2], "log notified 3 0 0.000000 held off");
    EXPECT_EQ(all.back(), "log 5 " + textOf(11566));
    EXPECT_EQ(type_, NotifyMsgTypeDictionary::instance().getDiskChangeType());
    EXPECT_FALSE(SystemWatchdog::isHeldOff());
}

TEST_F(Notified, NotWhereThereIsTooLittleSpaceOrNothingToDo) {
    addClipWithFile(1, 'M');
    files_.freeBytes = 0;
    relocate({1});
    relocate({});
    EXPECT_EQ(calls_->count("notified"), 0U);
}

TEST_F(Notified, AnEscapeEndsTheWorkBetweenClipsAndAllThatClosesItStillComes) {
    addClipWithFile(1, 'M');
    addClipWithFile(2, 'M');
    files_.onCopy = [](auto const&, auto const&) {
        escapeIsPressed = true;
        return std::optional<iFileManager::eCopyRC>();
    };
    relocate({1, 2});
    EXPECT_THAT(recorded({"copy"}), SizeIs(1));
    EXPECT_EQ(calls_->count("notified 3"), 1U);
    EXPECT_EQ(lines().back(), "log 5 " + textOf(11566));
}

TEST_F(Notified, TheWatchdogWatchesAgainWhenSomethingThrows) {
    addClipWithFile(1, 'M');
    files_.onCopy = [](auto const&, auto const&) -> std::optional<iFileManager::eCopyRC> {
        throw std::runtime_error("broken");
    };
    EXPECT_THROW(relocate({1}), std::runtime_error);
    EXPECT_FALSE(SystemWatchdog::isHeldOff());
}

TEST_F(MaterialMoveTest, OneClipThatFailsDoesNotKeepTheRestFromBeingCopied) {
    addClipWithFile(1, 'M');
    addClipWithFile(2, 'M');
    files_.onCopy = [](std::string const& source, auto const&) {
        return source == "m/v1.mov" ? std::optional(iFileManager::copyFailed) : std::nullopt;
    };
    relocate({1, 2});
    EXPECT_TRUE(folder_.holds("n/v2.mov"));
}

TEST_F(MaterialMoveTest, ProgressGoesFromNothingToAllByBytes) {
    addClipWithFile(1, 'M');
    write("m/p.mov", "123");
    catalogue_.addEntry(video(1), own('M', "v1.mov"), {asProxy(own('M', "p.mov"))});
    relocate({1});
    ASSERT_FALSE(log_->fractions.empty());
    EXPECT_TRUE(std::is_sorted(log_->fractions.begin(), log_->fractions.end()));
    EXPECT_DOUBLE_EQ(log_->fractions.back(), 1.0);
    EXPECT_THAT(log_->fractions, testing::Contains(testing::DoubleEq(0.25)));
}

}  // namespace
}  // namespace test
