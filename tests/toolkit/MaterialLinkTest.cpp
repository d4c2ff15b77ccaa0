#include "toolkit/catalogue/MaterialLink.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "tests/fakes/CallLog.h"
#include "tests/fakes/FailingFileManager.h"
#include "tests/fakes/FullDisk.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/catalogue/MediaFileInfo.h"

namespace test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using Name = LightweightString<wchar_t>;

class MaterialLinkTest : public testing::Test {
protected:
    bool create(Name const& target, bool replaceExisting = false) {
        return MaterialLink::createLink(link_, target, replaceExisting);
    }
    [[nodiscard]] std::string target() const { return narrow(MaterialLink::readLink(link_)); }
    [[nodiscard]] std::ptrdiff_t fileCount() const {
        using std::filesystem::directory_iterator;
        return std::distance(directory_iterator(folder_.path()), directory_iterator());
    }

    LogRecorder log_;
    TemporaryFolder folder_;
    Name const link_ = folder_.name("link.mov");
};

TEST_F(MaterialLinkTest, IsReadBackAsItWasWritten) {
    for (std::string const path : {"/m/a.mov", "relative", "https://store/a b.mov",
                                   "/m/\xE6\xBC\xA2\xF0\x9F\x98\x80", "/m/two\nlines\n", " /m/ "}) {
        ASSERT_TRUE(create(wide(path), true));
        EXPECT_EQ(target(), path);
    }
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(MaterialLinkTest, HoldsTheTargetAsPlainText) {
    ASSERT_TRUE(create(L"/m/a.mov"));
    EXPECT_EQ(folder_.read("link.mov"), "playfile link 1\n/m/a.mov");
}

TEST_F(MaterialLinkTest, OtherFilesAreNoLinks) {
    EXPECT_EQ(target(), "");
    folder_.write("link.mov", "/m/a.mov");
    EXPECT_EQ(target(), "");
    folder_.write("link.mov", "");
    EXPECT_EQ(target(), "");
    std::filesystem::create_directory(folder_.file("folder"));
    EXPECT_TRUE(MaterialLink::readLink(folder_.name("folder")).empty());
}

TEST_F(MaterialLinkTest, TheLongestTargetIsOneAndALongerOneIsNone) {
    Name const longest(std::wstring(MaterialLink::longestTarget, L'n'));
    ASSERT_TRUE(create(longest));
    EXPECT_EQ(MaterialLink::readLink(link_), longest);
    EXPECT_FALSE(create(longest + L"n", true));
    folder_.write("link.mov", folder_.read("link.mov") + "n");
    EXPECT_EQ(target(), "");
}

TEST_F(MaterialLinkTest, ReplacesALinkOnlyIfToldTo) {
    ASSERT_TRUE(create(L"/m/a"));
    EXPECT_FALSE(create(L"/m/b"));
    EXPECT_EQ(target(), "/m/a");
    EXPECT_TRUE(create(L"/m/b", true));
    EXPECT_EQ(target(), "/m/b");
}

TEST_F(MaterialLinkTest, NeverReplacesMedia) {
    folder_.write("link.mov", "media");
    EXPECT_FALSE(create(L"/m/a", true));
    EXPECT_EQ(folder_.read("link.mov"), "media");
    EXPECT_THAT(log_.log().back(), AllOf(HasSubstr("link.mov"), HasSubstr("move it away")));
}

TEST_F(MaterialLinkTest, NeverFollowsASymbolicLinkWhenItWrites) {
    folder_.write("victim", "precious");
    std::filesystem::create_symlink(folder_.file("victim"), folder_.file("link.mov"));
    EXPECT_FALSE(create(L"/m/a"));
    EXPECT_TRUE(create(L"/m/a", true));
    EXPECT_EQ(folder_.read("victim"), "precious");
    EXPECT_FALSE(std::filesystem::is_symlink(folder_.path() / "link.mov"));
    EXPECT_EQ(target(), "/m/a");
}

TEST_F(MaterialLinkTest, NeverFollowsASymbolicLinkWhenItReads) {
    ASSERT_TRUE(MaterialLink::createLink(folder_.name("other"), L"/m/a", false));
    std::filesystem::create_symlink(folder_.file("other"), folder_.file("link.mov"));
    EXPECT_EQ(target(), "");
}

TEST_F(MaterialLinkTest, MakesTheFoldersInWhichItLies) {
    Name const deep = folder_.name("drive/Video/link.mov");
    ASSERT_TRUE(MaterialLink::createLink(deep, L"/m/a", false));
    EXPECT_EQ(narrow(MaterialLink::readLink(deep)), "/m/a");
}

TEST_F(MaterialLinkTest, ABareNameLiesInTheCurrentFolder) {
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    EXPECT_TRUE(MaterialLink::createLink(L"bare.mov", L"/m/a", false));
    std::filesystem::current_path(before);
    EXPECT_TRUE(folder_.holds("bare.mov"));
}

TEST_F(MaterialLinkTest, NeedsAPlaceAndATarget) {
    EXPECT_FALSE(create({}));
    EXPECT_FALSE(MaterialLink::createLink({}, L"/m/a", true));
    EXPECT_EQ(fileCount(), 0);
}

TEST_F(MaterialLinkTest, AFullDiskLeavesTheLinkBefore) {
    ASSERT_TRUE(create(L"/m/a"));
    {
        FullDisk const disk(20);
        EXPECT_FALSE(create(L"/m/another", true));
    }
    EXPECT_EQ(target(), "/m/a");
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(MaterialLinkTest, WhateverFailsTheLinkIsTheOldOrTheNewOne) {
    FailingFileManager files;
    files.stopFailing();
    ASSERT_TRUE(create(L"/m/a"));
    int number = 0;
    do {
        files.failAt(++number);
        bool const isDone = create(L"/m/b", true);
        files.stopFailing();
        EXPECT_EQ(target(), isDone ? "/m/b" : "/m/a");
        EXPECT_EQ(fileCount(), 1);
        ASSERT_TRUE(create(L"/m/a", true));
    } while (number < 10);
}

TEST_F(MaterialLinkTest, AMediaFileWritesItsOwn) {
    MediaFileInfo file(MaterialFilename(DriveId::none, link_), L"/m/a", 1);
    EXPECT_TRUE(file.createLinkFile(false));
    EXPECT_EQ(target(), "/m/a");
    EXPECT_FALSE(file.createLinkFile(false));
    file.setLink(L"/m/b");
    EXPECT_TRUE(file.createLinkFile(true));
    EXPECT_EQ(target(), "/m/b");
}

TEST_F(MaterialLinkTest, AMediaFileWithoutALinkOrAPlaceWritesNone) {
    EXPECT_FALSE(MediaFileInfo(MaterialFilename(DriveId::none, link_), 1).createLinkFile(true));
    EXPECT_FALSE(MediaFileInfo(MaterialFilename(), L"/m/a", 1).createLinkFile(true));
    EXPECT_EQ(fileCount(), 0);
}

}  // namespace
}  // namespace test
