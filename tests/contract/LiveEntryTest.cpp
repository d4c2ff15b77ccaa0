/// What is changed through an entry of a catalogue is in the catalogue.
#include "tests/contract/CatalogueContract.h"
#include "tests/support/Threads.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/services/Paths.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LiveEntryContract : public CatalogueContract {
protected:
    [[nodiscard]] Ox::Ptr<FsysDirectoryEntry> entry() { return catalogue_->findEntryForCookie(video_); }
    /// A file of no drive whose place is in the test's folder.
    [[nodiscard]] MediaFileInfo inFolder(std::string const& name, bool isProxy = false) const {
        return own(folder_.file(name), isProxy);
    }
    static MediaFileInfo linkedProxy(std::string const& place, std::string const& target) {
        MediaFileInfo file = proxy(place);
        file.setLink(wide(target));
        return file;
    }
};

TEST_P(LiveEntryContract, ALinkIsInTheCatalogueAtOnce) {
    catalogue_->addFile(video_, own("/m/a"));
    entry()->setLinkedFilename(L"/far/a");
    EXPECT_EQ(found(video_), "/far/a");
    EXPECT_TRUE(entry()->isLinked());
    EXPECT_EQ(narrow(entry()->getLinkedFilename()), "/far/a");
    EXPECT_EQ(entry()->kind, MediaFileInfo::kindElsewhere);
}

TEST_P(LiveEntryContract, AnEmptyLinkMeansTheFileAtTheMaterialsPlace) {
    catalogue_->addFile(video_, MediaFileInfo(MaterialFilename(DriveId::none, L"/m/a"), L"/far/a", 1));
    entry()->setLinkedFilename({});
    EXPECT_EQ(found(video_), "/m/a");
    EXPECT_FALSE(entry()->isLinked());
    EXPECT_TRUE(entry()->getLinkedFilename().empty());
    EXPECT_EQ(entry()->kind, MediaFileInfo::kindHere);
}

TEST_P(LiveEntryContract, ItsOwnPlaceIsNoLink) {
    catalogue_->addFile(video_, MediaFileInfo(MaterialFilename(DriveId::none, L"/m/a"), L"/far/a", 1));
    entry()->setLinkedFilename(L"/m/a");
    EXPECT_EQ(found(video_), "/m/a");
    EXPECT_FALSE(entry()->isLinked());
    EXPECT_EQ(entry()->kind, MediaFileInfo::kindHere);
}

TEST_P(LiveEntryContract, AnEntryShowsItsOwnChangesAlsoWhenItIsSliced) {
    catalogue_->addFile(video_, own("/m/a"));
    auto const changed = entry();
    changed->setLinkedFilename(L"/far/a");
    MediaFileInfo const sliced = *changed;
    EXPECT_EQ(narrow(sliced.getPhysicalFilename()), "/far/a");
    EXPECT_EQ(sliced.kind, MediaFileInfo::kindElsewhere);
}

TEST_P(LiveEntryContract, AnEntryShowsWhatItWasAskedForUntilItChangesSomethingItself) {
    catalogue_->addFile(video_, own("/m/a"));
    auto const held = entry();
    entry()->setLinkedFilename(L"/far/a");
    EXPECT_FALSE(held->isLinked());
    held->addFile(proxy("/m/p"));
    EXPECT_TRUE(held->isLinked());
}

TEST_P(LiveEntryContract, TwoWhoChangeDifferentThingsLoseNothing) {
    catalogue_->addFile(video_, own("/m/a"));
    auto const one = entry();
    auto const other = entry();
    one->addFile(proxy("/m/p"));
    other->setLinkedFilename(L"/far/a");
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p"));
    EXPECT_EQ(found(video_), "/far/a");
}

TEST_P(LiveEntryContract, ManyWhoChangeOneCookieLoseNothing) {
    constexpr int threadCount = 4;
    constexpr int changes = 10;
    catalogue_->addFile(video_, own("/m/a"));
    {
        Threads const threads(threadCount, [&] {
            auto const mine = entry();
            for (int number = 0; number < changes; ++number) {
                mine->addFile(proxy("/m/p"));
            }
        });
    }
    EXPECT_EQ(entry()->getProxyFiles().size(), std::size_t{threadCount * changes});
}

TEST_P(LiveEntryContract, WithoutAnOriginalThereIsNothingToLink) {
    catalogue_->addFile(video_, proxy("/m/p"));
    entry()->setLinkedFilename(L"/far/a");
    EXPECT_EQ(found(video_), "none, untouched");
}

TEST_P(LiveEntryContract, TakesTheSizeOfThePhysicalFile) {
    folder_.write("a.mov", "12345");
    catalogue_->addFile(video_, own("/m/a"));
    entry()->setLinkedFilename(folder_.name("a.mov"));
    entry()->updateFileSize();
    EXPECT_EQ(entry()->size, 5U);
}

TEST_P(LiveEntryContract, AFileThatIsNotThereHasNoSize) {
    catalogue_->addFile(video_, inFolder("none.mov"));
    entry()->updateFileSize();
    EXPECT_EQ(entry()->size, 0U);
}

TEST_P(LiveEntryContract, TheSizeOfOneFileIsNotKeptOfAnother) {
    folder_.write("a.mov", "12345");
    catalogue_->addFile(video_, inFolder("a.mov"));
    auto const held = entry();
    catalogue_->addFile(video_, own("/m/b"));
    held->updateFileSize();
    EXPECT_EQ(entry()->size, 7U);
}

TEST_P(LiveEntryContract, AddsAProxyBesideAndAnOriginalInPlace) {
    catalogue_->addFile(video_, own("/m/a"));
    auto const changed = entry();
    changed->addFile(proxy("/m/p1"));
    changed->addFile(proxy("/m/p2"));
    changed->addFile(own("/m/b"));
    EXPECT_EQ(found(video_), "/m/b");
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p1", "/m/p2"));
    EXPECT_EQ(changed->getProxyFiles().size(), 2U);
}

TEST_P(LiveEntryContract, AFileWithALinkFileAtItsPlaceIsLinked) {
    auto const target = folder_.write("target.mov", "12345");
    ASSERT_TRUE(MaterialLink::createLink(folder_.name("a.mov"), target, false));
    catalogue_->addFile(video_, own("/m/a"));
    entry()->addFile(inFolder("a.mov"));
    EXPECT_EQ(found(video_), narrow(target));
    EXPECT_TRUE(entry()->isLinked());
    EXPECT_EQ(entry()->size, 5U);
}

TEST_P(LiveEntryContract, RemovesTheProxyOfTheseNamesAndNoOther) {
    catalogue_->addFile(video_, own("/m/a"));
    catalogue_->addFile(video_, proxy("/m/p1"));
    catalogue_->addFile(video_, proxy("/m/p2"));
    auto const changed = entry();
    changed->removeFile(changed->getProxyFiles().front());
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p2"));
    EXPECT_EQ(found(video_), "/m/a");
}

TEST_P(LiveEntryContract, RemovesTheOriginalOfTheseNamesAndNoOther) {
    catalogue_->addFile(video_, own("/m/a"));
    catalogue_->addFile(video_, proxy("/m/p"));
    entry()->removeFile(own("/m/b"));
    EXPECT_EQ(found(video_), "/m/a");
    entry()->removeFile(*entry());
    EXPECT_EQ(found(video_), "none, untouched");
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p"));
}

TEST_P(LiveEntryContract, RemovingThroughAnEntryDeletesNothing) {
    auto const path = folder_.write("a.mov", "media");
    catalogue_->addFile(video_, inFolder("a.mov"));
    entry()->removeFile(inFolder("a.mov"));
    EXPECT_TRUE(fileExists(path));
}

TEST_P(LiveEntryContract, ForgetsACookieWithItsLastFileAndKnowsItAgainWithTheNext) {
    catalogue_->addFile(video_, own("/m/a"));
    auto const changed = entry();
    changed->removeFile(own("/m/a"));
    EXPECT_FALSE(catalogue_->fileExists(video_));
    changed->addFile(own("/m/b"));
    EXPECT_EQ(found(video_), "/m/b");
}

TEST_P(LiveEntryContract, RealisesALinkAtTheMaterialsPlace) {
    catalogue_->addFile(video_, inFolder("a.mov"));
    auto const changed = entry();
    EXPECT_FALSE(changed->realiseLinks(true));
    changed->setLinkedFilename(L"/far/a");
    EXPECT_TRUE(changed->realiseLinks(false));
    EXPECT_EQ(narrow(MaterialLink::readLink(folder_.name("a.mov"))), "/far/a");
}

TEST_P(LiveEntryContract, RealisesALinkInPlaceOfAnotherOnlyIfToldTo) {
    catalogue_->addFile(video_, inFolder("a.mov"));
    auto const changed = entry();
    changed->setLinkedFilename(L"/far/a");
    ASSERT_TRUE(changed->realiseLinks(false));
    changed->setLinkedFilename(L"/far/b");
    EXPECT_FALSE(changed->realiseLinks(false));
    EXPECT_EQ(narrow(MaterialLink::readLink(folder_.name("a.mov"))), "/far/a");
    EXPECT_TRUE(changed->realiseLinks(true));
    EXPECT_EQ(narrow(MaterialLink::readLink(folder_.name("a.mov"))), "/far/b");
}

TEST_P(LiveEntryContract, AProxyThatCameToItsPlaceIsLinkedNoMore) {
    auto const path = folder_.write("p.mov", "12345");
    catalogue_->addFile(video_, proxy("/m/other"));
    catalogue_->addFile(video_, linkedProxy(narrow(path), "/far/p.mov"));
    catalogue_->renameProxyFile(video_, path, path);
    MediaFileInfo const renamed = entry()->getProxyFiles()[1];
    EXPECT_EQ(narrow(renamed.getPhysicalFilename()), narrow(path));
    EXPECT_EQ(renamed.kind, MediaFileInfo::kindHere);
    EXPECT_EQ(renamed.size, 5U);
    EXPECT_EQ(renamed.status, MediaFileInfo::available);
    EXPECT_TRUE(renamed.isProxy());
}

TEST_P(LiveEntryContract, AProxyIsRenamedOnItsDrive) {
    DiskManager::instance().setDriveRoot(DriveId('Q'), wide("/q"));
    MediaFileInfo file(MaterialFilename(DriveId('Q'), wide("Video/p1")), 1);
    file.isProxyFile = true;
    catalogue_->addFile(video_, file);
    catalogue_->renameProxyFile(video_, L"/q/Video/p1", L"/q/Video/p2");
    catalogue_->renameProxyFile(video_, L"/q/Video/p1", L"/q/Video/p3");
    EXPECT_EQ(entry()->getProxyFiles()[0].materialFilename, MaterialFilename(DriveId('Q'), wide("Video/p2")));
    DiskManager::instance().removeDrive(DriveId('Q'));
}

TEST_P(LiveEntryContract, OnlyAProxyIsRemovedAsOne) {
    catalogue_->addFile(video_, own("/m/a"));
    catalogue_->addFile(video_, proxy("/m/p"));
    catalogue_->removeProxyFile(video_, own("/m/a"));
    catalogue_->removeProxyFile(video_, own("/m/p"));
    EXPECT_THAT(proxiesOf(video_), ElementsAre("/m/p"));
    catalogue_->removeProxyFile(video_, proxy("/m/p"));
    EXPECT_THAT(proxiesOf(video_), IsEmpty());
    EXPECT_EQ(found(video_), "/m/a");
}

TEST_P(LiveEntryContract, KeepsWhatALookAtTheFilesTold) {
    folder_.write("p.mov", "media");
    catalogue_->addFile(video_, inFolder("a.mov"));
    catalogue_->addFile(video_, inFolder("p.mov", true));
    EXPECT_EQ(catalogue_->updateStatus(video_, mediaAll), MediaFileInfo::available);
    EXPECT_EQ(entry()->status, MediaFileInfo::missing);
    EXPECT_EQ(entry()->getProxyFiles()[0].status, MediaFileInfo::available);
    EXPECT_EQ(catalogue_->updateStatus(sound_, mediaAll), MediaFileInfo::missing);
}

TEST_P(LiveEntryContract, TheStatusOfOneFileIsNotKeptOfAnother) {
    catalogue_->addFile(video_, inFolder("a.mov"));
    auto const held = entry();
    catalogue_->addFile(video_, own("/m/b"));
    EXPECT_EQ(held->updateStatus(mediaOriginal), MediaFileInfo::missing);
    EXPECT_EQ(entry()->status, MediaFileInfo::available);
}

TEST_P(LiveEntryContract, TellsTheDriveOfACookie) {
    catalogue_->addFile(video_, MediaFileInfo(MaterialFilename(DriveId('Q'), L"Video/a"), 1));
    catalogue_->addFile(sound_, own("/m/s"));
    EXPECT_EQ(catalogue_->getDriveForCookie(video_, videoChannel), DriveId('Q'));
    EXPECT_EQ(catalogue_->getDriveForCookie(sound_, audioChannel), DriveId(DriveId::none));
    Cookie const edit(clip_, 'E', Cookie::wholeClip);
    EXPECT_EQ(catalogue_->getDriveForCookie(edit, videoChannel), DriveId('Q'));
    EXPECT_EQ(catalogue_->getDriveForCookie(edit, audioChannel), DriveId(DriveId::none));
}

TEST_P(LiveEntryContract, TheDriveOfAnUnknownCookieIsNotAvailable) {
    EXPECT_EQ(catalogue_->getDriveForCookie(video_, videoChannel).letter(), '\0');
}

TEST_P(LiveEntryContract, TakesFilesOfKnownKindsAsMedia) {
    EXPECT_TRUE(catalogue_->isEligible(L"a.MOV"));
    EXPECT_TRUE(catalogue_->isEligible(L"a.wav"));
    EXPECT_TRUE(catalogue_->isEligible(L"A001_C001.R3D"));
    EXPECT_TRUE(catalogue_->isEligible(L"still.dng"));
    EXPECT_FALSE(catalogue_->isEligible(L"a.xml"));
    EXPECT_FALSE(catalogue_->isEligible(L"mov"));
}

TEST_P(LiveEntryContract, AnEntryOutlivesItsCatalogue) {
    catalogue_->addFile(video_, own("/m/a"));
    auto const left = entry();
    catalogue_ = nullptr;
    left->setLinkedFilename(L"/far/a");
    EXPECT_EQ(narrow(left->getPhysicalFilename()), "/far/a");
}

INSTANTIATE_TEST_SUITE_P(Implementations, LiveEntryContract, ::testing::Bool(), CatalogueContract::nameOf);

}  // namespace
}  // namespace test
