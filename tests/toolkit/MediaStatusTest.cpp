/// Whether the files of a catalogue entry are there.
#include <gtest/gtest.h>

#include <memory>

#include "tests/fakes/ScriptedFileManager.h"
#include "toolkit/catalogue/FsysDirectoryEntry.h"

namespace test {
namespace {

class MediaStatusTest : public testing::Test {
protected:
    static MediaFileInfo file(std::string const& path) {
        return {MaterialFilename(DriveId::none, wide(path)), 1};
    }

    std::shared_ptr<CallLog> const calls_ = std::make_shared<CallLog>();
    ScriptedFileManager files_{calls_};
    Ox::Ptr<FsysDirectoryEntry> const entry_ = Ox::makePtr<FsysDirectoryEntry>(
        Cookie(), file("/original"), std::vector<MediaFileInfo>{file("/p1"), file("/p2")});
};

TEST_F(MediaStatusTest, IsAvailableIfTheOriginalExists) {
    files_.addFile("/original");
    EXPECT_EQ(entry_->updateStatus(mediaOriginal), MediaFileInfo::available);
}

TEST_F(MediaStatusTest, IsMissingIfTheOriginalDoesNotExist) {
    files_.addFile("/p1");
    EXPECT_EQ(entry_->updateStatus(mediaOriginal), MediaFileInfo::missing);
    EXPECT_EQ(entry_->status, MediaFileInfo::missing);
}

TEST_F(MediaStatusTest, OneProxyIsEnough) {
    files_.addFile("/p2");
    EXPECT_EQ(entry_->updateStatus(mediaProxy), MediaFileInfo::available);
}

TEST_F(MediaStatusTest, KeepsTheStatusOfEveryProxy) {
    files_.addFile("/p2");
    static_cast<void>(entry_->updateStatus(mediaProxy));
    EXPECT_EQ(entry_->getProxyFiles()[0].status, MediaFileInfo::missing);
    EXPECT_EQ(entry_->getProxyFiles()[1].status, MediaFileInfo::available);
}

TEST_F(MediaStatusTest, LeavesWhatIsNotAskedFor) {
    static_cast<void>(entry_->updateStatus(mediaProxy));
    EXPECT_EQ(entry_->status, MediaFileInfo::available);
}

TEST_F(MediaStatusTest, EitherIsEnoughWhereBothAreAskedFor) {
    files_.addFile("/p1");
    EXPECT_EQ(entry_->updateStatus(mediaAll), MediaFileInfo::available);
}

TEST_F(MediaStatusTest, ALinkIsAvailableIfItsTargetExists) {
    FsysDirectoryEntry entry(
        Cookie(), MediaFileInfo(MaterialFilename(DriveId::none, wide("/link")), wide("/target"), 1), {});
    files_.addFile("/link");
    EXPECT_EQ(entry.updateStatus(mediaOriginal), MediaFileInfo::missing);
    files_.addFile("/target");
    EXPECT_EQ(entry.updateStatus(mediaOriginal), MediaFileInfo::available);
    EXPECT_TRUE(entry.isLinked());
}

}  // namespace
}  // namespace test
