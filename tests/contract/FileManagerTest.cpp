#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <filesystem>
#include <memory>

#include "host/remote/RemoteStores.h"
#include "ole/os/OS.h"
#include "tests/fakes/FailingFileManager.h"
#include "tests/fakes/ForwardingFileManager.h"
#include "tests/fakes/ForwardingOS.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using Name = LightweightString<wchar_t>;

/// What every file manager must do, run on each that there is.
enum class eImplementation { posix, forwarding, behindForwardingOS, behindRemoteStores };

class FileManagerContract : public ::testing::TestWithParam<eImplementation> {
protected:
    void SetUp() override {
        if (GetParam() == eImplementation::forwarding) {
            forwarding_ = std::make_unique<ForwardingFileManager>();
        } else if (GetParam() == eImplementation::behindForwardingOS) {
            system_ = std::make_unique<ForwardingOS>();
        } else if (GetParam() == eImplementation::behindRemoteStores) {
            remoteStores_ = std::make_unique<RemoteStores>();
        }
    }
    static iFileManager& files() { return OS()->getFileManager(); }

    Ox::Ptr<iFile> open(Name const& name, std::uint32_t access, iFile::eOpenBehaviour behaviour,
                        iFile::eShareMode share = iFile::shared) {
        return files().openFile(name, access, behaviour, share);
    }
    static std::string contents(Ox::Ptr<iFile> const& file) {
        char buffer[64] = {};
        return {buffer, file->read(buffer, sizeof(buffer))};
    }
    iFileManager::eCopyRC copy(std::string const& from, std::string const& to, bool replaceExisting = false) {
        return files().copyFile(folder_.name(from), folder_.name(to), replaceExisting, nullptr, nullptr);
    }
    static OxResult lastError() { return OS()->getErrors().getLastError(); }

    TemporaryFolder folder_;

private:
    std::unique_ptr<ForwardingFileManager> forwarding_;
    std::unique_ptr<ForwardingOS> system_;
    std::unique_ptr<RemoteStores> remoteStores_;
};

TEST_P(FileManagerContract, ReadsWhatWasWritten) {
    auto const written = open(folder_.name("new"), iFile::writeAccess, iFile::createAlways);
    ASSERT_TRUE(written);
    EXPECT_EQ(5U, written->write("hello", 5));

    EXPECT_EQ("hello", contents(open(folder_.name("new"), iFile::readAccess, iFile::existingOnly)));
}

TEST_P(FileManagerContract, OpensNoFileThatIsNotThere) {
    EXPECT_FALSE(open(folder_.name("missing"), iFile::readAccess, iFile::existingOnly));
    EXPECT_EQ(iErrorService::systemErrorBase + ENOENT, lastError());
}

TEST_P(FileManagerContract, OpensNoFolderAsAFile) {
    EXPECT_FALSE(open(folder_.name("."), iFile::readAccess, iFile::existingOnly));
}

TEST_P(FileManagerContract, CreateAlwaysEmptiesAFile) {
    Name const name = folder_.write("full", "old contents");
    EXPECT_TRUE(open(name, iFile::writeAccess, iFile::createAlways));
    EXPECT_EQ(0U, files().getFileSize(name));
}

TEST_P(FileManagerContract, OpenOrCreateKeepsWhatIsThere) {
    Name const name = folder_.write("full", "old contents");
    EXPECT_TRUE(open(name, iFile::readAccess | iFile::writeAccess, iFile::openOrCreate));
    EXPECT_EQ(12U, files().getFileSize(name));
}

TEST_P(FileManagerContract, ReadsFromThePositionThatWasSet) {
    auto const file = open(folder_.write("text", "0123456789"), iFile::readAccess, iFile::existingOnly);
    ASSERT_TRUE(file->setPosition(7));
    EXPECT_EQ("789", contents(file));
    EXPECT_EQ(10U, file->getPosition());
}

TEST_P(FileManagerContract, ReadsNothingBehindTheEnd) {
    auto const file = open(folder_.write("text", "0123"), iFile::readAccess, iFile::existingOnly);
    ASSERT_TRUE(file->setPosition(100));
    EXPECT_EQ("", contents(file));
}

TEST_P(FileManagerContract, RefusesAPositionThatNoFileHas) {
    auto const file = open(folder_.write("text", "0123"), iFile::readAccess, iFile::existingOnly);
    EXPECT_FALSE(file->setPosition(0xFFFF'FFFF'FFFF'FFFF));
}

TEST_P(FileManagerContract, LetsReadersShareAFile) {
    Name const name = folder_.write("text", "0123");
    auto const first = open(name, iFile::readAccess, iFile::existingOnly, iFile::shared);
    EXPECT_EQ("0123", contents(open(name, iFile::readAccess, iFile::existingOnly, iFile::shared)));
}

TEST_P(FileManagerContract, KeepsOthersOutOfAnExclusiveFile) {
    Name const name = folder_.write("text", "0123");
    auto const alone = open(name, iFile::writeAccess, iFile::openOrCreate, iFile::exclusive);
    ASSERT_TRUE(alone);
    EXPECT_FALSE(open(name, iFile::readAccess, iFile::existingOnly, iFile::shared));
}

TEST_P(FileManagerContract, DoesNotEmptyAFileThatAnotherHoldsExclusively) {
    Name const name = folder_.write("text", "0123");
    auto const alone = open(name, iFile::readAccess, iFile::existingOnly, iFile::exclusive);
    EXPECT_FALSE(open(name, iFile::writeAccess, iFile::createAlways, iFile::shared));
    EXPECT_EQ(4U, files().getFileSize(name));
}

TEST_P(FileManagerContract, TakesNamesOfAnyLanguage) {
    Name const name = folder_.write("Ümläut \xE6\xBC\xA2\xE5\xAD\x97 %s.mov", "x");
    EXPECT_TRUE(files().fileExists(name));
}

TEST_P(FileManagerContract, CopiesAFile) {
    folder_.write("from", "contents");
    EXPECT_EQ(iFileManager::copied, copy("from", "to"));
    EXPECT_EQ("contents", folder_.read("to"));
}

TEST_P(FileManagerContract, CopiesAnEmptyFile) {
    folder_.write("from", "");
    EXPECT_EQ(iFileManager::copied, copy("from", "to"));
    EXPECT_TRUE(folder_.holds("to"));
}

TEST_P(FileManagerContract, CopiesNoFileThatIsNotThere) {
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("missing", "to"));
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_P(FileManagerContract, CopiesNoFolder) {
    std::filesystem::create_directory(folder_.file("from"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("from", "to"));
}

TEST_P(FileManagerContract, CopyLeavesAnExistingDestinationAlone) {
    folder_.write("from", "new");
    folder_.write("to", "old");
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("from", "to", false));
    EXPECT_EQ("old", folder_.read("to"));
}

TEST_P(FileManagerContract, CopyReplacesAnExistingDestination) {
    folder_.write("from", "new");
    folder_.write("to", "old and longer");
    EXPECT_EQ(iFileManager::copied, copy("from", "to", true));
    EXPECT_EQ("new", folder_.read("to"));
}

TEST_P(FileManagerContract, ACopyMakesTheFoldersInWhichItComesToLie) {
    folder_.write("from", "contents");
    EXPECT_EQ(iFileManager::copied, copy("from", "a/b/to", false));
    EXPECT_EQ("contents", folder_.read("a/b/to"));
}

TEST_P(FileManagerContract, ACopyBelowAFileFails) {
    folder_.write("from", "contents");
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("from", "from/b/to", false));
    EXPECT_EQ("contents", folder_.read("from"));
}

TEST_P(FileManagerContract, ACopyOntoItselfIsDoneAndLosesNothing) {
    folder_.write("from", "contents");
    EXPECT_EQ(iFileManager::copied, copy("from", "from", true));
    EXPECT_EQ("contents", folder_.read("from"));
}

TEST_P(FileManagerContract, ACopyOntoAnotherNameOfItselfIsDoneAndLosesNothing) {
    folder_.write("from", "contents");
    std::filesystem::create_hard_link(folder_.file("from"), folder_.file("to"));
    EXPECT_EQ(iFileManager::copied, copy("from", "to", true));
    EXPECT_EQ("contents", folder_.read("from"));
}

TEST_P(FileManagerContract, CopyFollowsNoLinkAtTheDestination) {
    folder_.write("from", "contents");
    folder_.write("victim", "precious");
    std::filesystem::create_symlink(folder_.file("victim"), folder_.file("to"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("from", "to", true));
    EXPECT_EQ("precious", folder_.read("victim"));
}

TEST_P(FileManagerContract, CopyDoesNotWaitAtAPipe) {
    folder_.write("from", "contents");
    ASSERT_EQ(0, mkfifo(folder_.file("pipe").c_str(), 0600));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("from", "pipe", true));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("pipe", "to", true));
    EXPECT_TRUE(folder_.holds("pipe"));
}

TEST_P(FileManagerContract, RenamesAFile) {
    Name const from = folder_.write("from", "contents");
    EXPECT_TRUE(files().renameFile(from, folder_.name("to"), false));
    EXPECT_EQ("contents", folder_.read("to"));
    EXPECT_FALSE(files().fileExists(from));
}

TEST_P(FileManagerContract, RenameReplacesNothingUnlessTold) {
    Name const from = folder_.write("from", "new");
    Name const to = folder_.write("to", "old");
    EXPECT_FALSE(files().renameFile(from, to, false));
    EXPECT_EQ("old", folder_.read("to"));
    EXPECT_EQ("new", folder_.read("from"));
}

TEST_P(FileManagerContract, RenameReplacesWhenTold) {
    Name const from = folder_.write("from", "new");
    EXPECT_TRUE(files().renameFile(from, folder_.write("to", "old"), true));
    EXPECT_EQ("new", folder_.read("to"));
}

TEST_P(FileManagerContract, DeletesAFile) {
    Name const name = folder_.write("text", "x");
    EXPECT_TRUE(files().deleteFile(name));
    EXPECT_FALSE(files().fileExists(name));
    EXPECT_FALSE(files().deleteFile(name));
}

TEST_P(FileManagerContract, TellsSizeAndFullNameOfAFile) {
    Name const name = folder_.write("text", "0123456789");
    EXPECT_EQ(10U, files().getFileInfo(name).size);
    EXPECT_EQ(name, files().getFileInfo(name).name);
    EXPECT_EQ(10U, files().getFileSize(name));
}

TEST_P(FileManagerContract, AMissingFileHasNoSize) {
    EXPECT_EQ(0U, files().getFileInfo(folder_.name("missing")).size);
    EXPECT_EQ(0U, files().getFileSize(folder_.name("missing")));
}

TEST_P(FileManagerContract, MakesAFolderAndThoseAboveIt) {
    EXPECT_TRUE(files().createDirectory(folder_.name("a/b/c")));
    EXPECT_TRUE(std::filesystem::is_directory(folder_.file("a/b/c")));
}

TEST_P(FileManagerContract, AFolderThatIsThereCountsAsMade) {
    EXPECT_TRUE(files().createDirectory(folder_.name("a")));
    EXPECT_TRUE(files().createDirectory(folder_.name("a/")));
}

TEST_P(FileManagerContract, MakesNoFolderWhereAFileLies) {
    EXPECT_FALSE(files().createDirectory(folder_.write("text", "x")));
    EXPECT_FALSE(files().createDirectory(folder_.name("text/below")));
    EXPECT_FALSE(files().createDirectory(L""));
}

TEST_P(FileManagerContract, NamesWithASchemeAreRemote) {
    EXPECT_TRUE(files().isRemote(L"https://host/clip.mov"));
    EXPECT_TRUE(files().isRemote(L"s3+tls://bucket"));
}

TEST_P(FileManagerContract, NamesInAFileSystemAreNotRemote) {
    for (auto const* name : {L"/media/clip.mov", L"clip.mov", L"", L"://x", L"C://x", L"/a://b", L"9p://x"}) {
        EXPECT_FALSE(files().isRemote(name)) << toUTF8(name).c_str();
    }
}

TEST_P(FileManagerContract, KnowsTheVolumeOfAFileAndOfAFolder) {
    struct statvfs status {};
    ASSERT_EQ(0, statvfs(folder_.path().c_str(), &status));
    for (Name const& name : {folder_.write("text", "x"), folder_.name(".")}) {
        Ox::Ptr<iVolume> const volume = files().getVolume(name);
        ASSERT_TRUE(volume);
        EXPECT_EQ(status.f_bsize, volume->getBlockSize());
    }
}

TEST_P(FileManagerContract, KnowsWhatIsFreeOnAVolume) {
    struct statvfs status {};
    ASSERT_EQ(0, statvfs(folder_.path().c_str(), &status));
    double const expected = static_cast<double>(status.f_bavail) * static_cast<double>(status.f_frsize);
    double const found = static_cast<double>(files().getVolume(folder_.name("."))->getFreeBytes());
    EXPECT_NEAR(found / expected, 1.0, 0.05);
}

TEST_P(FileManagerContract, FindsWhatGoesOnBehindTheFullStopInTheOrderOfTheNames) {
    for (char const* const name : {"take.wav", "take.sav", "take.a.b", "take", "takes.wav", "atake.wav"}) {
        folder_.write(name, "12345");
    }
    std::vector<iFileManager::DirectoryItem> items;
    files().findFiles(folder_.name("take.*"), items, true, false);
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(items[0].name, L"take.a.b");
    EXPECT_EQ(items[1].name, L"take.sav");
    EXPECT_EQ(items[2].name, L"take.wav");
    EXPECT_EQ(items[2].size, 5U);
}

TEST_P(FileManagerContract, OnlyTheClosingStarOfAPatternStandsForOthers) {
    for (char const* const name : {"a*b.sav", "axb.sav", "a[x]b.sav", "a?b.sav"}) {
        folder_.write(name, "1");
    }
    for (std::string const stem : {"a*b", "a[x]b", "a?b"}) {
        std::vector<iFileManager::DirectoryItem> items;
        files().findFiles(folder_.name(stem + ".*"), items, true, false);
        ASSERT_EQ(items.size(), 1U) << stem;
        EXPECT_EQ(toUTF8(items[0].name).str(), stem + ".sav");
    }
}

TEST_P(FileManagerContract, FindsFilesAndFoldersAsItIsAsked) {
    folder_.write("x.file", "1");
    ASSERT_TRUE(files().createDirectory(folder_.name("x.folder")));
    std::vector<iFileManager::DirectoryItem> items;
    files().findFiles(folder_.name("x.*"), items, false, false);
    EXPECT_TRUE(items.empty());
    files().findFiles(folder_.name("x.*"), items, false, true);
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].name, L"x.folder");
    files().findFiles(folder_.name("x.*"), items, true, true);
    EXPECT_EQ(items.size(), 3U);
}

TEST_P(FileManagerContract, FindsOneNameAndNothingInAFolderThatIsNotThere) {
    folder_.write("one.wav", "1");
    std::vector<iFileManager::DirectoryItem> items;
    files().findFiles(folder_.name("one.wav"), items, true, false);
    EXPECT_EQ(items.size(), 1U);
    files().findFiles(folder_.name("missing/one.*"), items, true, true);
    EXPECT_EQ(items.size(), 1U);
}

TEST_P(FileManagerContract, KnowsNoVolumeOfAPathThatIsNotThere) {
    EXPECT_FALSE(files().getVolume(folder_.name("missing")));
    EXPECT_EQ(iErrorService::systemErrorBase + ENOENT, lastError());
    EXPECT_FALSE(files().getVolume(Name()));
}

TEST_P(FileManagerContract, TheMountedNameOfALocalFileIsItsName) {
    EXPECT_EQ(Name(L"/media/clip.mov"), files().getMountedFilename(L"/media/clip.mov"));
}

TEST_P(FileManagerContract, ShowsNoControlCharacters) {
    EXPECT_EQ(Name(L"/a\uFFFDb/c\uFFFD\uFFFDd.mov"), files().getDisplayFilename(L"/a\nb/c\x7F\x9B"
                                                                                L"d.mov"));
}

TEST_P(FileManagerContract, ShowsNothingThatNoTextMayHold) {
    wchar_t const malformed[] = {L'a', wchar_t(0xD800), wchar_t(0x110000), L'b', 0};
    EXPECT_EQ(Name(L"a\uFFFD\uFFFDb"), files().getDisplayFilename(malformed));
}

TEST_P(FileManagerContract, SeparatesFoldersWithASlash) {
    EXPECT_EQ(L'/', files().getPathSeparator());
}

INSTANTIATE_TEST_SUITE_P(Implementations, FileManagerContract,
                         ::testing::Values(eImplementation::posix, eImplementation::forwarding,
                                           eImplementation::behindForwardingOS,
                                           eImplementation::behindRemoteStores),
                         [](auto const& tested) -> std::string {
                             switch (tested.param) {
                                 case eImplementation::posix:
                                     return "Posix";
                                 case eImplementation::forwarding:
                                     return "Forwarding";
                                 case eImplementation::behindForwardingOS:
                                     return "BehindForwardingOS";
                                 default:
                                     return "BehindRemoteStores";
                             }
                         });

TEST(FailingFileManager, FailsAtOneCallOnly) {
    FailingFileManager files;
    files.failAt(2);
    EXPECT_TRUE(files.fileExists(L"/"));
    EXPECT_FALSE(files.fileExists(L"/"));
    EXPECT_TRUE(files.fileExists(L"/"));
    EXPECT_EQ(1, files.getFailures());
}

TEST(FailingFileManager, FailsFromACallOn) {
    FailingFileManager files;
    files.failAt(2, FailingFileManager::eHowLong::fromThenOn);
    EXPECT_TRUE(files.fileExists(L"/"));
    EXPECT_FALSE(files.fileExists(L"/"));
    EXPECT_FALSE(files.fileExists(L"/"));
}

TEST(FailingFileManager, IsInForceWhileItLives) {
    iFileManager const* const before = &OS()->getFileManager();
    {
        FailingFileManager const files;
        EXPECT_EQ(&files, &OS()->getFileManager());
    }
    EXPECT_EQ(before, &OS()->getFileManager());
}

}  // namespace
}  // namespace test
