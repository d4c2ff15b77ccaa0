#include "transfer/CopyMaterialFile.h"

#include "tests/fakes/ForwardingFileManager.h"
#include "tests/transfer/TransferFixture.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/services/ResourceText.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class CopyMaterialFileTest : public TransferFixture {
protected:
    /// Files an entry and relocates it to N.
    void relocate(MediaFileInfo const& original, std::vector<MediaFileInfo> const& proxies = {},
                  MaterialMove::eType type = MaterialMove::copyFiles) {
        catalogue_.addEntry(video(), original, proxies);
        copyMaterialFile(makeLogicalMediaFile(video(), 'N'), 'N', type, LoggerHandle(log_));
    }
    void move(MediaFileInfo const& original, std::vector<MediaFileInfo> const& proxies = {}) {
        relocate(original, proxies, MaterialMove::moveFiles);
    }
    /// The names of the catalogue's files, drive and path.
    Lines filed() {
        auto const entry = catalogue_.findEntryForCookie(video());
        auto const name = [](MediaFileInfo const& info) {
            return std::string(1, info.materialFilename.getDrive().letter()) + ":" +
                   narrow(info.materialFilename.getPath());
        };
        Lines names{name(*entry)};
        for (MediaFileInfo const& proxy : entry->getProxyFiles()) {
            names.push_back(name(proxy));
        }
        return names;
    }
    /// The folder of a drive's own video, from the fixture's folder on.
    static std::string videoFolder(std::string const& drive) {
        return drive + "/" + narrow(MediaDrive::getFolder(video()));
    }
};

TEST_F(CopyMaterialFileTest, ACopyKeepsPathSourceAndCatalogue) {
    write("m/deep/er/v.mov", "12345");
    relocate(own('M', "deep/er/v.mov"));
    EXPECT_EQ(folder_.read("n/deep/er/v.mov"), "12345");
    EXPECT_TRUE(folder_.holds("m/deep/er/v.mov"));
    EXPECT_THAT(filed(), ElementsAre("M:deep/er/v.mov"));
    EXPECT_THAT(recorded({"log"}), IsEmpty());
}

TEST_F(CopyMaterialFileTest, AMoveDeletesThenCorrectsTheCatalogueThenBringsCompanions) {
    write("m/v.mov", "12345");
    write("m/v.note", "companion");
    move(own('M', "v.mov"));
    EXPECT_THAT(recorded({"copy", "delete"}), ElementsAre("copy m/v.mov n/v.mov 1 told", "delete m/v.mov",
                                                          "copy m/v.note n/v.note 1", "delete m/v.note"));
    EXPECT_THAT(filed(), ElementsAre("N:v.mov"));
    EXPECT_EQ(catalogue_.findEntryForCookie(video())->size, 5U);
}

TEST_F(CopyMaterialFileTest, AMovedProxyIsFiledAsOne) {
    write("m/v.mov", "1");
    write("m/p.mov", "22");
    move(own('M', "v.mov"), {asProxy(own('M', "p.mov"))});
    EXPECT_EQ(folder_.read("n/p.mov"), "22");
    EXPECT_THAT(filed(), ElementsAre("N:v.mov", "N:p.mov"));
    EXPECT_FALSE(folder_.holds("m/p.mov"));
}

TEST_F(CopyMaterialFileTest, ATypeThatIsNeitherIsACopy) {
    write("m/v.mov", "1");
    relocate(own('M', "v.mov"), {}, static_cast<MaterialMove::eType>(7));
    EXPECT_TRUE(folder_.holds("m/v.mov"));
    EXPECT_TRUE(folder_.holds("n/v.mov"));
}

TEST_F(CopyMaterialFileTest, WhatIsAtTheTargetStaysAndSoDoSourceAndCatalogueAlsoInAMove) {
    write("m/v.mov", "new");
    write("m/v.note", "companion");
    write("n/v.mov", "old");
    move(own('M', "v.mov"));
    EXPECT_EQ(folder_.read("n/v.mov"), "old");
    EXPECT_TRUE(folder_.holds("m/v.mov"));
    EXPECT_FALSE(folder_.holds("n/v.note"));
    EXPECT_THAT(filed(), ElementsAre("M:v.mov"));
    EXPECT_THAT(recorded({"log", "copy", "delete"}), IsEmpty());
}

// ---- Failure ----

class FailedCopies : public CopyMaterialFileTest {
protected:
    /// Moves a file whose copy fails with a code; the lines of the log.
    Lines failWith(std::uint32_t code) {
        write("m/v.mov", "1");
        write("m/v.note", "companion");
        files_.onCopy = [code](auto const&, auto const&) { return static_cast<iFileManager::eCopyRC>(code); };
        move(own('M', "v.mov"));
        return recorded({"log "});
    }
    [[nodiscard]] std::string names() const {
        return " (" + folder_.file("m/v.mov") + " -> " + folder_.file("n/v.mov") + ")";
    }
};

TEST_F(FailedCopies, TwoNamesTheDestinationInAPlainLine) {
    setResourceText(11259, L"$FILE$ and $FILE$");
    EXPECT_THAT(failWith(2),
                ElementsAre("log 0 " + folder_.file("n/v.mov") + " and " + folder_.file("n/v.mov")));
    setResourceText(11259, {});
}

TEST_F(FailedCopies, EveryOtherCodeNamesBothInAnError) {
    for (std::uint32_t const code : {1U, 3U, 4U, 5U, 99U}) {
        calls_->clear();
        EXPECT_THAT(failWith(code), ElementsAre("log 4 " + narrow(resourceStrW(10995)) + names())) << code;
    }
}

TEST_F(FailedCopies, SourceCatalogueAndCompanionsStay) {
    failWith(4);
    EXPECT_TRUE(folder_.holds("m/v.mov"));
    EXPECT_THAT(filed(), ElementsAre("M:v.mov"));
    EXPECT_EQ(calls_->count("note"), 0U);
    EXPECT_EQ(calls_->count("delete"), 0U);
}

TEST_F(FailedCopies, AFailureDoesNotKeepTheProxyFromBeingCopied) {
    write("m/v.mov", "1");
    write("m/p.mov", "22");
    files_.onCopy = [](std::string const& source, auto const&) {
        return source == "m/v.mov" ? std::optional(iFileManager::copyFailed) : std::nullopt;
    };
    relocate(own('M', "v.mov"), {asProxy(own('M', "p.mov"))});
    EXPECT_TRUE(folder_.holds("n/p.mov"));
}

/// By bytes: a file of 1 that fails, one of 2 that is there already, one of 1 that fails; then the end, once.
TEST_F(FailedCopies, AFileThatFailsAndOneThatIsPassedOverAreCountedOnAndTheirPiecesEndedOnce) {
    write("m/v.mov", "1");
    write("m/p.mov", "22");
    write("m/q.mov", "1");
    write("n/p.mov", "there");
    files_.onCopy = [](auto const&, auto const&) { return iFileManager::copyFailed; };
    relocate(own('M', "v.mov"), {asProxy(own('M', "p.mov")), asProxy(own('M', "q.mov"))});
    EXPECT_THAT(recorded({"copy"}), SizeIs(2));
    EXPECT_THAT(log_->fractions, ElementsAre(0.25, 0.75, 1.0, 1.0));
}

// ---- Companions ----

TEST_F(CopyMaterialFileTest, CompanionsAreWhatLiesBesideTheFileAndIsNoMedia) {
    for (char const* const name : {"v.mov", "v.wav", "v.sav", "v.wf.dat", "other.sav", "v2.sav"}) {
        write(std::string("m/") + name, "x");
    }
    relocate(own('M', "v.mov"));
    EXPECT_TRUE(folder_.holds("n/v.sav"));
    EXPECT_TRUE(folder_.holds("n/v.wf.dat"));
    for (char const* const name : {"n/v.wav", "n/other.sav", "n/v2.sav"}) {
        EXPECT_FALSE(folder_.holds(name)) << name;
    }
}

TEST_F(CopyMaterialFileTest, WildcardsInAClipsOwnNameStandForThemselves) {
    write("m/a*.mov", "x");
    write("m/a*.sav", "mine");
    write("m/ab.sav", "another clip's");
    move(own('M', "a*.mov"));
    EXPECT_TRUE(folder_.holds("n/a*.sav"));
    EXPECT_TRUE(folder_.holds("m/ab.sav"));
    EXPECT_FALSE(folder_.holds("n/ab.sav"));
}

TEST_F(CopyMaterialFileTest, NobodyLooksForAProxysCompanions) {
    write("m/p.mov", "x");
    write("m/p.sav", "x");
    relocate(own('N', "v.mov"), {asProxy(own('M', "p.mov"))});
    EXPECT_TRUE(folder_.holds("n/p.mov"));
    EXPECT_FALSE(folder_.holds("n/p.sav"));
}

TEST_F(CopyMaterialFileTest, ACompanionThatFailsIsNotSpokenOfAndStays) {
    write("m/v.mov", "x");
    write("m/v.sav", "x");
    files_.onCopy = [](std::string const& source, auto const&) {
        return source == "m/v.sav" ? std::optional(iFileManager::copyFailed) : std::nullopt;
    };
    move(own('M', "v.mov"));
    EXPECT_TRUE(folder_.holds("m/v.sav"));
    EXPECT_THAT(recorded({"log "}), IsEmpty());
    EXPECT_FALSE(folder_.holds("m/v.mov"));
}

// ---- Links ----

class LinkedMaterial : public CopyMaterialFileTest {
protected:
    LinkedMaterial() {
        std::filesystem::create_directories(folder_.path() / "o");
        DiskManager::instance().setDriveRoot('O', folder_.name("o"));
    }
    ~LinkedMaterial() override { DiskManager::instance().removeDrive('O'); }

    /// A link at M to a file of the tree; the link file is really there.
    MediaFileInfo linkTo(std::string const& target) {
        write(target, "media");
        MaterialLink::createLink(full("m/v.mov"), full(target), true);
        return linked('M', "v.mov", target);
    }
};

TEST_F(LinkedMaterial, ALinkIntoAThirdDrivesOwnFolderIsWrittenForTheDestination) {
    relocate(linkTo(videoFolder("o") + "x.mov"));
    EXPECT_EQ(MaterialLink::readLink(full("n/v.mov")), full(videoFolder("n") + "x.mov"));
    EXPECT_THAT(recorded({"copy"}), IsEmpty());
    EXPECT_FALSE(folder_.holds(videoFolder("n") + "x.mov"));
}

TEST_F(LinkedMaterial, ALinkToAFileOnTheDestinationIsCopiedAsAFile) {
    relocate(linkTo(videoFolder("n") + "x.mov"));
    EXPECT_THAT(recorded({"copy"}), ElementsAre("copy m/v.mov n/v.mov 1 told"));
    EXPECT_EQ(MaterialLink::readLink(full("n/v.mov")), full(videoFolder("n") + "x.mov"));
}

TEST_F(LinkedMaterial, ALinkToAnyOtherFolderIsCopiedAsAFile) {
    relocate(linkTo("elsewhere/x.mov"));
    EXPECT_THAT(recorded({"copy"}), SizeIs(1));
    EXPECT_FALSE(isLinkedLocal(linked('M', "v.mov", "elsewhere/x.mov")));
}

TEST_F(LinkedMaterial, AMovedLinkIsFiledAtItsNewPlace) {
    move(linkTo(videoFolder("o") + "x.mov"));
    EXPECT_FALSE(folder_.holds("m/v.mov"));
    EXPECT_TRUE(folder_.holds(videoFolder("o") + "x.mov"));
    EXPECT_THAT(filed(), ElementsAre("N:v.mov"));
}

TEST_F(LinkedMaterial, ALinkThatCannotBeWrittenIsCodeOne) {
    MediaFileInfo const link = linkTo(videoFolder("o") + "x.mov");
    std::filesystem::remove_all(folder_.path() / "n");
    folder_.write("n", "a file in the place of the drive");
    relocate(link);
    EXPECT_THAT(recorded({"log 4"}),
                ElementsAre("log 4 " + narrow(resourceStrW(10995)) + " (" + folder_.file("m/v.mov") + " -> " +
                            folder_.file("n/v.mov") + ")"));
}

TEST_F(LinkedMaterial, ADestinationThatHasGoneIsAFailureAndNothingElse) {
    catalogue_.addEntry(video(), linkTo(videoFolder("o") + "x.mov"), {});
    copyMaterialFile(makeLogicalMediaFile(video(), 'Q'), 'Q', MaterialMove::moveFiles, LoggerHandle(log_));
    EXPECT_THAT(recorded({"log "}), SizeIs(1));
    EXPECT_TRUE(folder_.holds("m/v.mov"));
    EXPECT_THAT(filed(), ElementsAre("M:v.mov"));
}

TEST_F(LinkedMaterial, OnlyAFileOfTheKindElsewhereIsALink) {
    MediaFileInfo info = linked('M', "v.mov", videoFolder("o") + "x.mov");
    EXPECT_TRUE(isLinkedLocal(info));
    info.kind = 1;
    EXPECT_FALSE(isLinkedLocal(info));
}

TEST_F(LinkedMaterial, AFileIsInADrivesFolderOnlyByItsExactName) {
    auto const found = findMediaLocationFromFile(full(videoFolder("o") + "x.mov"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->getId(), DriveId('O'));
    EXPECT_FALSE(findMediaLocationFromFile(full(videoFolder("o") + "deeper/x.mov")));
    EXPECT_FALSE(findMediaLocationFromFile(full("o/x.mov")));
    EXPECT_FALSE(findMediaLocationFromFile({}));
    std::string upper = videoFolder("o");
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return std::toupper(c); });
    EXPECT_FALSE(findMediaLocationFromFile(full(upper + "x.mov")));
}

TEST_F(LinkedMaterial, SoundFoldersCountToo) {
    auto const found =
        findMediaLocationFromFile(DiskManager::instance().getDriveWithUniqueId('O')->getLocation('S') +
                                  LightweightString<wchar_t>(L"x.wav"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->getId(), DriveId('O'));
}

// ---- The small ones ----

TEST_F(CopyMaterialFileTest, ProgressWithoutSomebodyToTellGoesOn) {
    EXPECT_EQ(progress(nullptr, 1, 0), 1);
}

TEST_F(CopyMaterialFileTest, ProgressTellsTheFractionWithoutAText) {
    LoggerHandle handle(log_);
    EXPECT_EQ(progress(static_cast<ProgressReportClient*>(&handle), 1, 4), 1);
    EXPECT_THAT(log_->fractions, ElementsAre(0.25));
    EXPECT_EQ(log_->progressTexts, "");
}

TEST_F(CopyMaterialFileTest, ANameTellsItsMaterialByTheLetterOfItsCookie) {
    auto const typeOf = [](Cookie const& cookie) {
        return getMaterialTypeFromName(wide("/m/") + cookie.asWString() + wide(".mov"));
    };
    EXPECT_EQ(typeOf(video()), 1U);
    EXPECT_EQ(typeOf(sound(1)), 2U);
    EXPECT_EQ(typeOf(makeCookie(1, 'I', 0)), 128U);
    EXPECT_EQ(typeOf(makeCookie(1, 'E', 255)), 128U);
    EXPECT_EQ(getMaterialTypeFromName(L"whatever.mov"), 128U);
    EXPECT_EQ(getMaterialTypeFromName({}), 128U);
}

TEST_F(CopyMaterialFileTest, ASizeIsThatOfANameOnADriveOrOfAPath) {
    write("m/sub/v.mov", "12345");
    EXPECT_EQ(ToolsGetfilesize("M:sub/v.mov"), 5U);
    EXPECT_EQ(ToolsGetfilesize(folder_.file("m/sub/v.mov").c_str()), 5U);
    EXPECT_EQ(ToolsGetfilesize("Q:sub/v.mov"), 0U);
    EXPECT_EQ(ToolsGetfilesize("M"), 0U);
    EXPECT_EQ(ToolsGetfilesize(""), 0U);
}

TEST_F(CopyMaterialFileTest, TheLastComponentIsFoundBehindSeparatorsOfEitherSystem) {
    LightweightString<wchar_t> const path(L"C:\\a/b\\c.mov");
    EXPECT_EQ(stripPath2(path), L"c.mov");
    EXPECT_EQ(path, L"C:\\a/b\\c.mov");
    EXPECT_EQ(stripPath2(L"/x/y"), L"y");
    EXPECT_EQ(stripPath2({}), L"");
}

/// The files of a system whose paths have backslashes.
class BackslashFiles : public ForwardingFileManager {
public:
    [[nodiscard]] wchar_t getPathSeparator() const override { return L'\\'; }
};

TEST_F(CopyMaterialFileTest, WhereTheSeparatorIsABackslashTheOtherOneIsForeign) {
    BackslashFiles const files;
    LightweightString<wchar_t> const path(L"/a\\b/c.mov");
    EXPECT_EQ(stripPath2(path), L"c.mov");
    EXPECT_EQ(path, L"/a\\b/c.mov");
    EXPECT_EQ(stripPath2(L"C:\\a\\c.mov"), L"c.mov");
    EXPECT_EQ(stripPath2(L"c.mov"), L"c.mov");
}

}  // namespace
}  // namespace test
