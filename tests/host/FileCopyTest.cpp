#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <vector>

#include "host/posix/Rename.h"
#include "ole/os/OS.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

constexpr std::size_t mebibyte = 1024 * 1024;

/// A memory file system, so that a copy from it can't be done by sharing blocks.
constexpr char const* otherFileSystem = "/dev/shm";

bool isOnAnotherFileSystem(std::string const& a, std::string const& b) {
    struct stat first {};
    struct stat second {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev != second.st_dev;
}

/// Copies files with a function that is told of the progress.
class FileCopyTest : public ::testing::Test {
protected:
    struct Step {
        unsigned long copied;
        unsigned long total;
    };

    static std::string pattern(std::size_t byteCount) {
        std::string text(byteCount, '\0');
        for (std::size_t index = 0; index < byteCount; ++index) {
            text[index] = static_cast<char>(index * 2654435761U >> 13U);
        }
        return text;
    }

    iFileManager::eCopyRC copy(std::string const& from, std::string const& to, bool replaceExisting = false) {
        return OS()->getFileManager().copyFile(fromUTF8(from.c_str()), fromUTF8(to.c_str()), replaceExisting,
                                               &FileCopyTest::note, this);
    }

    TemporaryFolder folder_;
    std::vector<Step> steps_;
    std::function<bool(Step const&)> goesOn_ = [](Step const&) { return true; };

private:
    static int note(void* context, unsigned long copied, unsigned long total) {
        auto& self = *static_cast<FileCopyTest*>(context);
        self.steps_.push_back({copied, total});
        return self.goesOn_({copied, total}) ? 1 : 0;
    }
};

TEST_F(FileCopyTest, TellsProgressUpToTheWhole) {
    folder_.write("from", pattern(9 * mebibyte + 1));
    ASSERT_EQ(iFileManager::copied, copy(folder_.file("from"), folder_.file("to")));
    ASSERT_FALSE(steps_.empty());
    EXPECT_EQ(9 * mebibyte + 1, steps_.back().copied);
    EXPECT_EQ(9 * mebibyte + 1, steps_.back().total);
}

TEST_F(FileCopyTest, CopiesEveryByteOfALargeFile) {
    folder_.write("from", pattern(9 * mebibyte + 1));
    ASSERT_EQ(iFileManager::copied, copy(folder_.file("from"), folder_.file("to")));
    EXPECT_TRUE(folder_.read("from") == folder_.read("to"));
}

TEST_F(FileCopyTest, CopiesFromAnotherFileSystem) {
    ASSERT_TRUE(isOnAnotherFileSystem(otherFileSystem, folder_.path()));
    std::string const from = std::string(otherFileSystem) + "/playfile-copy-" + std::to_string(getpid());
    std::string const contents = pattern(3 * mebibyte + 7);
    std::ofstream(from, std::ios::binary) << contents;
    EXPECT_EQ(iFileManager::copied, copy(from, folder_.file("to")));
    EXPECT_TRUE(contents == folder_.read("to"));
    std::filesystem::remove(from);
}

TEST_F(FileCopyTest, CopiesAFileWhoseSizeTheSystemDoesNotTell) {
    EXPECT_EQ(iFileManager::copied, copy("/proc/version", folder_.file("to")));
    EXPECT_NE("", folder_.read("to"));
}

TEST_F(FileCopyTest, StopsWhenTold) {
    folder_.write("from", pattern(9 * mebibyte));
    goesOn_ = [](Step const&) { return false; };
    EXPECT_EQ(iFileManager::copyStopped, copy(folder_.file("from"), folder_.file("to")));
    EXPECT_EQ(1U, steps_.size());
}

TEST_F(FileCopyTest, AStoppedCopyLeavesNoDestination) {
    folder_.write("from", pattern(9 * mebibyte));
    goesOn_ = [](Step const&) { return false; };
    ASSERT_EQ(iFileManager::copyStopped, copy(folder_.file("from"), folder_.file("to")));
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(FileCopyTest, AStoppedCopyOverAFileLeavesNoHalfFile) {
    folder_.write("from", pattern(9 * mebibyte));
    folder_.write("to", "old");
    goesOn_ = [](Step const&) { return false; };
    ASSERT_EQ(iFileManager::copyStopped, copy(folder_.file("from"), folder_.file("to"), true));
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(FileCopyTest, AnExceptionOfTheProgressLeavesNoDestination) {
    folder_.write("from", pattern(9 * mebibyte));
    goesOn_ = [](Step const&) -> bool { throw std::runtime_error("no"); };
    EXPECT_THROW(static_cast<void>(copy(folder_.file("from"), folder_.file("to"))), std::runtime_error);
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(FileCopyTest, DoesNotRemoveAFileThatTookTheDestinationsName) {
    folder_.write("from", pattern(9 * mebibyte));
    goesOn_ = [this](Step const&) {
        std::filesystem::remove(folder_.file("to"));
        folder_.write("to", "another's");
        return false;
    };
    EXPECT_EQ(iFileManager::copyStopped, copy(folder_.file("from"), folder_.file("to")));
    EXPECT_EQ("another's", folder_.read("to"));
}

TEST_F(FileCopyTest, AFullDiskFailsTheCopyAndLeavesNoDestination) {
    folder_.write("from", pattern(9 * mebibyte));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit const least{4 * mebibyte, 4 * mebibyte};
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &least));
    EXPECT_EQ(iFileManager::copyFailed, copy(folder_.file("from"), folder_.file("to")));
    EXPECT_EQ(iErrorService::systemErrorBase + EFBIG, OS()->getErrors().getLastError());
    EXPECT_FALSE(folder_.holds("to"));
}

class RenameInStepsTest : public ::testing::Test {
protected:
    bool rename(std::string const& from, std::string const& to) {
        return renameInSteps(folder_.file(from), folder_.file(to));
    }
    TemporaryFolder folder_;
};

TEST_F(RenameInStepsTest, RenamesAFile) {
    folder_.write("from", "contents");
    EXPECT_TRUE(rename("from", "to"));
    EXPECT_EQ("contents", folder_.read("to"));
    EXPECT_FALSE(folder_.holds("from"));
}

TEST_F(RenameInStepsTest, RenamesAFolder) {
    std::filesystem::create_directories(folder_.file("from/inside"));
    EXPECT_TRUE(rename("from", "to"));
    EXPECT_TRUE(folder_.holds("to/inside"));
    EXPECT_FALSE(folder_.holds("from"));
}

TEST_F(RenameInStepsTest, ReplacesNoFile) {
    folder_.write("from", "new");
    folder_.write("to", "old");
    EXPECT_FALSE(rename("from", "to"));
    EXPECT_EQ("old", folder_.read("to"));
    EXPECT_EQ("new", folder_.read("from"));
}

TEST_F(RenameInStepsTest, ReplacesNoFolder) {
    std::filesystem::create_directory(folder_.file("from"));
    std::filesystem::create_directory(folder_.file("to"));
    EXPECT_FALSE(rename("from", "to"));
    EXPECT_TRUE(folder_.holds("from"));
}

TEST_F(RenameInStepsTest, AMissingFileLeavesNothingBehind) {
    EXPECT_FALSE(rename("missing", "to"));
    EXPECT_FALSE(folder_.holds("to"));
}

}  // namespace
}  // namespace test
