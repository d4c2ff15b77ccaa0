#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/fakes/CallLog.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/services/Paths.h"

namespace test {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double bytesPerMiB = 1048576.0;

class DrivesTest : public testing::Test {
protected:
    [[nodiscard]] std::string letters() const {
        std::string all;
        for (auto const& drive : drives_.getDrives()) {
            all += drive->getId().letter();
        }
        return all;
    }

    TemporaryFolder folder_;
    DiskManager& drives_ = DiskManager::instance();
};

TEST_F(DrivesTest, StandInTheOrderOfTheirLetters) {
    drives_.setDriveRoot(DriveId('C'), L"/c");
    drives_.setDriveRoot(DriveId('A'), L"/a");
    drives_.setDriveRoot(DriveId('B'), L"/b");
    drives_.removeDrive(DriveId('A'));
    EXPECT_EQ(letters(), "BC");
}

TEST_F(DrivesTest, AreFoundByTheirLetter) {
    drives_.setDriveRoot(DriveId('A'), L"/a");
    ASSERT_TRUE(drives_.getDriveWithUniqueId(DriveId('A')));
    EXPECT_EQ(drives_.getDriveWithUniqueId(DriveId('A'))->getId(), DriveId('A'));
    EXPECT_FALSE(drives_.getDriveWithUniqueId(DriveId('B')));
    EXPECT_FALSE(drives_.getDriveWithUniqueId(DriveId::none));
}

TEST_F(DrivesTest, TheFoldersOfADriveAreThoseOfTheFilesInThem) {
    for (wchar_t const* const root : {L"/a", L"/a/"}) {
        drives_.setDriveRoot(DriveId('A'), root);
        auto const drive = drives_.getDriveWithUniqueId(DriveId('A'));
        EXPECT_EQ(drive->getLocation('V'), getPath(L"/a/Video/x.mov"));
        EXPECT_EQ(drive->getLocation('S'), getPath(L"/a/Sound/x.wav"));
        EXPECT_EQ(drive->getLocation(0), getPath(L"/a/x"));
    }
}

TEST_F(DrivesTest, MaterialLiesInTheFolderOfItsMedium) {
    Ox::UUID const clip = Ox::UUID::generate();
    EXPECT_EQ(narrow(MediaDrive::getFolder(Cookie(clip, 'V', 0))), "Video/");
    EXPECT_EQ(narrow(MediaDrive::getFolder(Cookie(clip, 'S', 1))), "Sound/");
    EXPECT_EQ(narrow(MediaDrive::getFolder(Cookie(clip, 'E', 255))), "");
}

TEST_F(DrivesTest, TellTheirSpaceInBytesAndInMiB) {
    drives_.setDriveRoot(DriveId('A'), folder_.name(""));
    auto const bytes = static_cast<double>(drives_.getDriveWithUniqueId(DriveId('A'))->getSpaceBytes());
    EXPECT_GT(bytes, 0.0);
    EXPECT_THAT(drives_.getSpaceForRecording(DriveId('A')) * bytesPerMiB, DoubleNear(bytes, bytes / 10));
}

TEST_F(DrivesTest, ADriveThatCannotBeReachedHasNoSpace) {
    drives_.setDriveRoot(DriveId('A'), folder_.name("none"));
    EXPECT_EQ(drives_.getDriveWithUniqueId(DriveId('A'))->getSpaceBytes(), 0U);
    EXPECT_EQ(drives_.getSpaceForRecording(DriveId('A')), 0.0);
    EXPECT_EQ(drives_.getSpaceForRecording(DriveId('B')), 0.0);
}

TEST_F(DrivesTest, TheNameOfAVolumeStandsBeforeAPath) {
    drives_.setDriveRoot(DriveId('A'), L"/a");
    EXPECT_TRUE(drives_.isMaterialVolume('A'));
    EXPECT_FALSE(drives_.isMaterialVolume('B'));
    EXPECT_EQ(narrow(drives_.getMaterialVolumeName('A', false)), "/a/");
    EXPECT_EQ(narrow(drives_.getMaterialVolumeName('B', false)), "");
}

TEST_F(DrivesTest, AnotherTableTakesThePlaceOfAllDrivesAndTasks) {
    drives_.setDriveRoot(DriveId('A'), L"/a");
    drives_.setDriveForTask("import", DriveId('A'));
    DriveTable const before = drives_.exchangeTable({{{DriveId('B'), L"/b/"}}, {{"import", DriveId('B')}}});
    EXPECT_EQ(letters(), "B");
    EXPECT_EQ(drives_.getDriveForTask("import", true), DriveId('B'));
    drives_.exchangeTable(before);
    EXPECT_EQ(letters(), "A");
}

/// Notes what it is told, and what holds by then.
class NotingKeeper : public iDriveKeeper {
public:
    NotingKeeper() : before_(DiskManager::install(this)) {}
    ~NotingKeeper() override { DiskManager::install(before_); }

    void driveChanged(DriveId const& drive) override {
        told.push_back(drive.letter() + narrow(DiskManager::instance().getDriveRoot(drive)));
    }
    void taskChanged(char const* task) override {
        told.push_back(std::string(task) + DiskManager::instance().getDriveForTask(task, true).letter());
    }

    std::vector<std::string> told;

private:
    iDriveKeeper* const before_;
};

TEST_F(DrivesTest, AKeeperIsToldOfEachChangeOnceItHolds) {
    NotingKeeper keeper;
    drives_.setDriveRoot(DriveId('A'), L"/a");
    drives_.setDriveForTask("render", DriveId('A'));
    drives_.removeDrive(DriveId('A'));
    EXPECT_THAT(keeper.told, ElementsAre("A/a/", "renderA", "A"));
}

TEST_F(DrivesTest, AKeeperIsNotToldOfATableThatIsPutInPlace) {
    NotingKeeper keeper;
    drives_.exchangeTable({});
    EXPECT_THAT(keeper.told, IsEmpty());
}

}  // namespace
}  // namespace test
