/// Giving clips another identity.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "tests/files/ClipsFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Clips whose files bear their identity; files are renamed by a file manager that says so.
class RenameTest : public ClipsFixture {
protected:
    /// Files a channel under the name that its cookie gives it.
    void addNamed(CookieType type, unsigned char number, std::string const& extension) {
        Cookie const cookie = channel(type, number);
        std::string const path = "/media/" + cookie.asString().str() + extension;
        addFile(path);
        catalogue.addFile(cookie, path);
        catalogue.addEntry(cookie, MediaFileInfo(MaterialFilename(DriveId::none, wide(path)), 100));
    }
    Cookie renamed(CookieType type, unsigned char number) const { return convertCookie(to, type, number); }
    static std::string nameOf(Cookie const& cookie) { return cookie.asString().str(); }
    CallLog::Lines renames() const { return calls->with("fm.rename"); }

    Cookie const to = makeCookie(2, 'E', Cookie::wholeClip);
};

TEST_F(RenameTest, GivesTheFileTheNewIdentity) {
    addNamed('V', 0, ".mov");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), ElementsAre("fm.rename /media/" + nameOf(channel('V', 0)) + ".mov /media/" +
                                       nameOf(renamed('V', 0)) + ".mov 0"));
}

TEST_F(RenameTest, FilesTheNewNameInTheCatalogue) {
    addNamed('V', 0, ".mov");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(calls->with("catalogue."),
                ElementsAre("catalogue.removeFile " + nameOf(channel('V', 0)) + " 3 0",
                            "catalogue.addFile " + nameOf(renamed('V', 0)) + " /media/" +
                                nameOf(renamed('V', 0)) + ".mov 0"));
}

TEST_F(RenameTest, RenamesBeforeTheCatalogueIsChanged) {
    addNamed('V', 0, ".mov");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    CallLog::Lines const all = calls->all();
    EXPECT_LT(std::find(all.begin(), all.end(), renames().front()),
              std::find(all.begin(), all.end(), calls->with("catalogue.").front()));
}

TEST_F(RenameTest, ForgetsTheOpenFile) {
    addNamed('V', 0, ".mov");
    static_cast<void>(open(channel('V', 0)));
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

TEST_F(RenameTest, AnOpenProxyStaysOpen) {
    addNamed('V', 0, ".mov");
    addFile("/media/small.mov");
    catalogue.addFile(channel('V', 0), "/media/small.mov", levelProxy);
    static_cast<void>(open(channel('V', 0), proxy));
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_TRUE(isOpen(channel('V', 0), proxy));
}

TEST_F(RenameTest, APrivateCacheForgetsItInTheSharedOne) {
    addNamed('V', 0, ".mov");
    static_cast<void>(open(channel('V', 0)));
    PlayFileCache other(2, 4);
    EXPECT_TRUE(other.renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_EQ(cache().getOpenCount(), 0U);
}

TEST_F(RenameTest, AnUnknownClipIsNotRenamed) {
    EXPECT_FALSE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), IsEmpty());
}

TEST_F(RenameTest, AFileWithoutLinkNameIsNotRenamedButForgotten) {
    addNamed('V', 0, ".mov");
    catalogue.addEntry(channel('V', 0), MediaFileInfo());
    static_cast<void>(open(channel('V', 0)));
    EXPECT_FALSE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_EQ(cache().getOpenCount(), 0U);
    EXPECT_THAT(renames(), IsEmpty());
}

TEST_F(RenameTest, AFailedRenameLeavesTheCatalogueAsItWas) {
    addNamed('V', 0, ".mov");
    fileManager.renames = false;
    EXPECT_FALSE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(calls->with("catalogue."), IsEmpty());
}

TEST_F(RenameTest, OfALinkedFileTheLinkIsRenamed) {
    MaterialFilename const place(DriveId::none, wide("/media/" + nameOf(channel('V', 0)) + ".link"));
    catalogue.addEntry(channel('V', 0), MediaFileInfo(place, wide("/far/away.mov"), 100));
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), ElementsAre("fm.rename /media/" + nameOf(channel('V', 0)) + ".link /media/" +
                                       nameOf(renamed('V', 0)) + ".link 0"));
    EXPECT_EQ(narrow(catalogue.findEntryForCookie(renamed('V', 0))->physicalFilename), "/far/away.mov");
}

TEST_F(RenameTest, TheNameOfAFileWithoutExtensionGetsAFullStop) {
    addNamed('V', 0, "");
    EXPECT_TRUE(cache().renameMediaFile(channel('V', 0), renamed('V', 0)));
    EXPECT_THAT(renames(), ElementsAre("fm.rename /media/" + nameOf(channel('V', 0)) + " /media/" +
                                       nameOf(renamed('V', 0)) + ". 0"));
}

TEST_F(RenameTest, SoundTakesItsWaveformAlong) {
    addNamed('S', 1, ".wav");
    EXPECT_TRUE(cache().renameMediaFile(channel('S', 1), renamed('S', 1)));
    ASSERT_EQ(renames().size(), 2U);
    EXPECT_EQ(renames()[1], "fm.rename " + narrow(getWaveformDataFileFor(channel('S', 1))) + " " +
                                narrow(getWaveformDataFileFor(renamed('S', 1))) + " 0");
}

TEST_F(RenameTest, AWaveformThatCannotBeRenamedDoesNotCount) {
    addNamed('S', 1, ".wav");
    fileManager.renamesAtMost = 1;
    EXPECT_TRUE(cache().renameMediaFile(channel('S', 1), renamed('S', 1)));
}

TEST_F(RenameTest, AClipIsRenamedChannelByChannel) {
    addEdit(2, 1);
    addNamed('V', 0, ".mov");
    addNamed('V', 1, ".mov");
    addNamed('S', 1, ".wav");
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(calls->count("catalogue.addFile"), 3U);
    EXPECT_EQ(catalogue.openEdits(), 0);
}

TEST_F(RenameTest, AClipClosesItsFilesFirst) {
    addEdit(1, 0);
    addNamed('V', 0, ".mov");
    static_cast<void>(open(channel('V', 0)));
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(calls->count(".purge"), 1U);
}

TEST_F(RenameTest, ATakenIdentityIsRefusedBeforeAnythingIsClosed) {
    addEdit(1, 0);
    addNamed('V', 0, ".mov");
    catalogue.addEntry(renamed('V', 5), MediaFileInfo());
    static_cast<void>(open(channel('V', 0)));
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
    EXPECT_TRUE(isOpen(channel('V', 0)));
    EXPECT_EQ(calls->count("edit.open " + nameOf(edit)), calls->count("edit.close"));
}

TEST_F(RenameTest, AClipWithoutChannelsIsRenamed) {
    addEdit(0, 0);
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
}

TEST_F(RenameTest, AnUnknownEditIsNotRenamed) {
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
}

TEST_F(RenameTest, AFailureStopsNothingAndUndoesNothing) {
    addEdit(3, 0);
    addNamed('V', 0, ".mov");
    addNamed('V', 2, ".mov");
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(calls->count("catalogue.addFile"), 2U);
}

TEST_F(RenameTest, DoesNotGoPastTheLastVideoChannel) {
    addEdit(1, 0);
    addNamed('V', 0, ".mov");
    addNamed('V', 1, ".mov");
    EXPECT_TRUE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(renames().size(), 1U);
}

/// A file that can't be renamed stays where it is, and so is tried once more.
TEST_F(RenameTest, TakesTheFirstChannelAgainBehindTheHighestNumber) {
    addEdit(257, 0);
    addNamed('V', 0, ".mov");
    fileManager.renames = false;
    EXPECT_FALSE(cache().renameMediaFiles(edit, to));
    EXPECT_EQ(renames().size(), 2U);
}

}  // namespace
