#include "toolkit/services/WriteProblem.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

#include "ole/os/OS.h"

namespace test {
namespace {

std::string textOf(int number) {
    return writeProblemText(iErrorService::systemErrorBase + static_cast<OxResult>(number)).c_str();
}

TEST(WriteProblem, TellsWhatHelpsOnAFullDisk) {
    EXPECT_EQ(textOf(ENOSPC), "No space left on device; make room on the drive, or choose another one");
}

TEST(WriteProblem, TellsWhatHelpsWhereNothingMayBeWritten) {
    EXPECT_EQ(textOf(EROFS), "Read-only file system; choose a folder that may be written to");
}

TEST(WriteProblem, TellsWhatHelpsWhenTheDriveHasGone) {
    EXPECT_EQ(textOf(EIO), "Input/output error; see whether the drive is still there, or choose another one");
}

TEST(WriteProblem, SaysNoMoreThanItKnows) {
    EXPECT_EQ(textOf(EBUSY), "Device or resource busy");
    EXPECT_EQ(writeProblemText(7777), LightweightString<char>("result 7777"));
}

TEST(WriteProblem, RemembersWhatTheFileManagerMetLast) {
    EXPECT_FALSE(OS()->getFileManager().openFile(L"/no-such-folder/file", iFile::writeAccess,
                                                 iFile::createAlways, iFile::shared));
    EXPECT_EQ(lastWriteError(), iErrorService::systemErrorBase + ENOENT);
}

TEST(WriteProblem, IsAFailureOnAThreadThatHasMetNone) {
    std::thread([] { EXPECT_EQ(lastWriteError(), oxFailure); }).join();
}

}  // namespace
}  // namespace test
